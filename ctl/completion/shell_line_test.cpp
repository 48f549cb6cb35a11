#include "ctl/completion/shell_line.h"

#include <gtest/gtest.h>

namespace {

TEST(ShellLine, SplitsWhatIsStillTyped) {
  const struct {
    std::string line;
    std::vector<std::string> words;
    std::string last = {};  // as it was typed
    char quote = '\0';
  } cases[] = {
      {"", {""}},
      {"ctl", {"ctl"}, "ctl"},
      {"ctl  get ", {"ctl", "get", ""}},
      {"ctl get mo", {"ctl", "get", "mo"}, "mo"},
      {"ctl set mode=72", {"ctl", "set", "mode=72"}, "mode=72"},
      {"set 'position[1]=", {"set", "position[1]="}, "'position[1]=", '\''},
      {"set 'position[1]'=9", {"set", "position[1]=9"}, "'position[1]'=9"},
      {R"(set "a \"b)", {"set", "a \"b"}, R"("a \"b)", '"'},
      {R"(set "a\b" x)", {"set", "a\\b", "x"}, "x"},
      {R"(set 'a\' x)", {"set", "a\\", "x"}, "x"},
      {R"(set position\[1\]=a\ b)", {"set", "position[1]=a b"}, R"(position\[1\]=a\ b)"},
      {"set a\\", {"set", "a"}, "a\\"},
      {"set ''", {"set", ""}, "''"},
      {"set '' ", {"set", "", ""}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    const ShellLine line = shellLine(c.line);
    EXPECT_EQ(line.words, c.words);
    EXPECT_EQ(c.line.substr(line.begin), c.last);
    EXPECT_EQ(line.quote, c.quote);
  }
}

TEST(ShellReply, GoesOnFromWhatTheShellKeeps) {
  const struct {
    std::string word;
    std::string typed;
    std::string replaced;
    std::string reply;
  } cases[] = {
      {"mode=720p/50", "mode=7", "7", "720p/50"},
      {"mode=720p/50", "mode=", "", "720p/50"},
      {"position[1]=", "pos", "pos", R"(position\[1\]=)"},
      {"position[1]=", "'pos", "pos", "position[1]="},
      {"position[1]=", "\"pos", "pos", "position[1]="},
      {"position[1]=7", "'position[1]'=", "", "7"},
      {"position[1]=7", R"(position\[1\]=)", "", "7"},
      {"name=frame store", R"(name=frame\ s)", R"(frame\ s)", R"(frame\ store)"},
      {"name=frame store", "'name=frame s", "name=frame s", "name=frame store"},
      {"name=it's", "name=i", "i", R"(it\'s)"},
      {"name=it's", "'name=i", "name=i", R"(name=it'\''s)"},
      {"name=a\"$b", "\"name=a", "name=a", R"(name=a\"\$b)"},
      {"name=größe", "name=", "", "größe"},
      // The shell keeps something else, or wants something else replaced.
      {"mode=720p/50", "node=7", "7", ""},
      {"mode=720p/50", "mode=7", "8", ""},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.typed + " -> " + c.word);
    EXPECT_EQ(shellReply(c.word, c.typed, c.replaced), c.reply);
  }
}

}  // namespace

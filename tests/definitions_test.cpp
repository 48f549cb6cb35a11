// Definition texts, each a file: in unreadable/ and refused/ those that end the start, in warned/
// and silent/ those that are served. NAME.err beside the text is what is written to standard
// error; silent texts have none. A first line "# constants: a=1 b=2" gives the command line's
// constants.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/harness/service_test.h"

namespace {

std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file) << path;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::vector<std::filesystem::path> textsIn(const std::string& folder) {
  std::vector<std::filesystem::path> texts;
  for (const auto& entry :
       std::filesystem::directory_iterator(std::string(DEFINITIONS_DIRECTORY) + "/" + folder)) {
    if (entry.path().extension() == ".def") texts.push_back(entry.path());
  }
  std::sort(texts.begin(), texts.end());
  return texts;
}

std::vector<std::string> constantsOf(const std::string& text) {
  const std::string mark = "# constants: ";
  if (!text.starts_with(mark)) return {};
  std::istringstream words(text.substr(mark.size(), text.find('\n') - mark.size()));
  return {std::istream_iterator<std::string>(words), std::istream_iterator<std::string>()};
}

std::string expectedErrors(std::filesystem::path text) {
  return contentsOf(text.replace_extension(".err"));
}

std::string testName(const testing::TestParamInfo<std::filesystem::path>& text) {
  return text.param.stem();
}

class DefinitionFileTest : public ServiceTest,
                           public testing::WithParamInterface<std::filesystem::path> {
 protected:
  void expectRefusal(const std::string& messages) {
    const std::string text = contentsOf(GetParam());
    std::vector<std::string> arguments = {"--debug"};
    for (const std::string& constant : constantsOf(text)) arguments.push_back(constant);
    const Ending ending = runToEnd(text, arguments);
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.out, messages);
    EXPECT_EQ(ending.err, expectedErrors(GetParam()));
  }

  void expectService() {
    const std::string text = contentsOf(GetParam());
    serve(text, constantsOf(text));
    expectFacts({{"start()", "0"}});
  }
};

class UnreadableText : public DefinitionFileTest {};

TEST_P(UnreadableText, EndsTheReading) { expectRefusal("Parsing file.\n"); }

INSTANTIATE_TEST_SUITE_P(Definitions, UnreadableText, testing::ValuesIn(textsIn("unreadable")),
                         testName);

class RefusedText : public DefinitionFileTest {};

TEST_P(RefusedText, EndsTheStart) {
  expectRefusal("Parsing file.\nMaking parameter definitions.\n");
}

INSTANTIATE_TEST_SUITE_P(Definitions, RefusedText, testing::ValuesIn(textsIn("refused")), testName);

class WarnedText : public DefinitionFileTest {};

TEST_P(WarnedText, IsServed) {
  expectErrors(expectedErrors(GetParam()));
  expectService();
}

INSTANTIATE_TEST_SUITE_P(Definitions, WarnedText, testing::ValuesIn(textsIn("warned")), testName);

class SilentText : public DefinitionFileTest {};

TEST_P(SilentText, IsServed) { expectService(); }

INSTANTIATE_TEST_SUITE_P(Definitions, SilentText, testing::ValuesIn(textsIn("silent")), testName);

}  // namespace

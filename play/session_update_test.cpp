#include "play/session_update.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "play/engine_device.h"
#include "play/session_reader.h"
#include "tests/harness/temp_dir.h"

namespace {

using Files = std::map<std::string, std::string>;

// Plays the session "s" of `files`, and gives those that change.
Files updated(const Files& files, std::vector<size_t>* undecided = nullptr) {
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [&](const std::string& name, std::string& text) {
    text = files.at(name);
    return 0;
  };
  readSession("s", files.at("s"), readFile, session, errors);
  for (const SessionError& error : errors) ADD_FAILURE() << shownError(error);
  const StartDevice start = [](const PlayConstants& constants) {
    return startEngineDevice(
        "a rw { rangeValid { 0..9 } default { 3 } }\nb rw { rangeValid { 0..(a) } }\n", constants);
  };
  SessionUpdate update;
  EXPECT_FALSE(playSession(session, start, {}, update));
  Files result;
  for (const UpdatedFile& file : update.files()) result[file.name] = file.text;
  if (undecided != nullptr) {
    for (const Operation* operation : update.undecided()) {
      undecided->push_back(operation->place.line);
    }
  }
  return result;
}

std::string updated(const std::string& text) {
  const Files files = updated(Files{{"s", text}});
  return files.empty() ? "(as before)" : files.at("s");
}

TEST(SessionUpdate, WritesWhatHasHappened) {
  const struct {
    const char* before;
    const char* after;
  } cases[] = {
      {"", "(as before)"},
      {"up", "(as before)"},
      {"up\nget a -> 3 # right\n", "(as before)"},
      {"up ->\nget a\n", "up -> a=3 b=\nget a -> 3\n"},
      // An empty outcome is only written where something else was expected.
      {"set a 1\ncommit\n", "set a 1\ncommit -> a=1 b=\n"},
      {"set a 1 -> a=1 # c\n", "set a 1 -> # c\n"},
      {"set a 77 # c", "set a 77 -> refused: parameter value is invalid # c"},
      {"set a 7 -> refused: parameter value is invalid\n", "set a 7 ->\n"},
      // All else stays, byte for byte.
      {"# c\r\n\n  \nup # \t d\r\nget   a    ->   7   # e\r\n",
       "# c\r\n\n  \nup # \t d\r\nget   a    ->   3   # e\r\n"},
      {"\xEF\xBB\xBFget a\nget b -> 1", "\xEF\xBB\xBFget a -> \"\"\nget b -> \"\""},
      // New arrows are below those before.
      {"up      -> x\nget a\nget a b a\n",
       "up      -> a=3 b=\nget a   -> 3\nget a b a -> 3 \"\" 3\n"},
      // What differs from round to round is left alone, and so is what is met with a variable.
      {"for x in 1 2: set a $x\nfor x in 1 2: single_set a $x", "(as before)"},
      {"for x in 1 2: validate a $x", "for x in 1 2: validate a $x -> true"},
      {"for x in 1 2: single_set a $x -> a=$x", "(as before)"},
      {"for x in 1 2: validate a $x -> $x", "for x in 1 2: validate a $x -> true"},
      {"for x in 1 2: single_set a $x -> $x", "(as before)"},
  };
  for (const auto& c : cases) EXPECT_EQ(updated(std::string(c.before)), c.after) << c.before;
}

TEST(SessionUpdate, NamesWhatItCannotWrite) {
  std::vector<size_t> lines;
  updated(Files{{"s", "up\nfor x in 1 2:\n  single_set a $x -> 5\n  get a -> $x\n  get b -> 1\n"}},
          &lines);
  EXPECT_EQ(lines, std::vector<size_t>{3});
}

TEST(SessionUpdate, WritesIncludedFilesAsWell) {
  EXPECT_EQ(updated(Files{{"s", "include t\nset a 1\ninclude t\ncommit\n"},
                          {"t", "get b -> 1\nget a -> 1\n"}}),
            (Files{{"s", "include t\nset a 1\ninclude t\ncommit -> a=1 b=\n"},
                   {"t", "get b -> \"\"\nget a -> 1\n"}}));
}

std::string contentsOf(const std::string& name) {
  std::ifstream file(name, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

size_t filesIn(const std::string& directory) {
  const auto files = std::filesystem::directory_iterator(directory);
  return static_cast<size_t>(std::distance(begin(files), end(files)));
}

TEST(ReplaceFile, KeepsPermissionsAndLinks) {
  const TempDir folder;
  const std::string name = folder.path() + "/s";
  const std::string link = folder.path() + "/link";
  std::ofstream(name) << "old";
  ASSERT_EQ(chmod(name.c_str(), 0640), 0);
  ASSERT_EQ(symlink("s", link.c_str()), 0);
  EXPECT_EQ(replaceFile(link, "new\n"), 0);
  EXPECT_EQ(contentsOf(name), "new\n");
  EXPECT_TRUE(std::filesystem::is_symlink(link));
  struct stat status {};
  ASSERT_EQ(stat(name.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(filesIn(folder.path()), 2U);
}

TEST(ReplaceFile, LeavesTheOldFileWhereItFails) {
  const TempDir folder;
  EXPECT_EQ(replaceFile(folder.path() + "/none", "new"), ENOENT);
  EXPECT_EQ(filesIn(folder.path()), 0U);
  // A directory is no file to be replaced.
  ASSERT_EQ(mkdir((folder.path() + "/d").c_str(), 0700), 0);
  EXPECT_EQ(replaceFile(folder.path() + "/d", "new"), EISDIR);
  EXPECT_EQ(filesIn(folder.path()), 1U);
}

}  // namespace

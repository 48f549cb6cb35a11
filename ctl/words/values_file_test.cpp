#include "ctl/words/values_file.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "ctl/service/exit_status.h"

namespace {

class ValuesFileTest : public testing::Test {
 protected:
  ValuesFileTest() {
    std::string path = testing::TempDir() + "values_file_XXXXXX";
    EXPECT_NE(mkdtemp(path.data()), nullptr);
    directory_ = path;
  }
  ~ValuesFileTest() override { std::filesystem::remove_all(directory_); }

  [[nodiscard]] std::string path(const std::string& name = "file") const {
    return directory_ + "/" + name;
  }
  void write(const std::string& text) const { std::ofstream(path(), std::ios::binary) << text; }
  [[nodiscard]] std::string text(const std::string& name = "file") const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string directory_;
};

const std::vector<Assignment> VALUES = {
    {"mode", "wide"}, {"note", " two\nlines "}, {"title[a=b]", "größe"}, {"empty", ""}};

TEST_F(ValuesFileTest, ReadsWhatItHasWritten) {
  writeValuesFile(path(), VALUES);
  EXPECT_EQ(text(), "mode=wide\nnote=\" two\\nlines \"\ntitle[a=b]=größe\nempty=\n");
  EXPECT_EQ(readValuesFile(path()), VALUES);
  writeValuesFile(path(), {});
  EXPECT_EQ(text(), "");
  EXPECT_EQ(readValuesFile(path()), std::vector<Assignment>());
}

TEST_F(ValuesFileTest, ReadsLinesInTheirOrder) {
  const struct {
    const char* what;
    std::string text;
    std::vector<Assignment> values;
  } cases[] = {
      {"empty lines", "\n\nb=2\n\na=1\n\n", {{"b", "2"}, {"a", "1"}}},
      {"no newline at the end", "a=1\nb=2", {{"a", "1"}, {"b", "2"}}},
      {"a byte order mark",
       "\xef\xbb\xbf"
       "a=1\n",
       {{"a", "1"}}},
      {"a sign in a value", "a=1=2\n", {{"a", "1=2"}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    write(c.text);
    EXPECT_EQ(readValuesFile(path()), c.values);
  }
}

using ValuesFileDeathTest = ValuesFileTest;

TEST_F(ValuesFileDeathTest, EndsTheProgramForWhatCannotBeRead) {
  const struct {
    std::string text;
    std::string complaint;
  } cases[] = {
      {"a=1\nb\n", "file, line 2: this is not NAME=VALUE"},
      {"a=1\n\nb=2\na=1\n", "file, line 4: a is given two values"},
      {"a=\"1\n", "file, line 1: the quoted text has no closing \""},
      {"a=\"1\"2\n", "file, line 1: there is more behind the closing \""},
      {"\"a\" 1\n", "file, line 1: this is not NAME=VALUE"},
      {"a=\"\\y\"\n", "file, line 1: a \"\\\\\" is followed by neither"},
      {"a=\xff\n", "file, line 1: this is not UTF-8, or has a NUL byte"},
      {"a=\"\\x00\"\n", "file, line 1: this is not UTF-8, or has a NUL byte"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    write(c.text);
    EXPECT_EXIT(readValuesFile(path()), testing::ExitedWithCode(STATUS_USAGE), c.complaint);
  }
  EXPECT_EXIT(readValuesFile(path("none")), testing::ExitedWithCode(STATUS_USAGE),
              "cannot read .*/none: No such file or directory");
  EXPECT_EXIT(readValuesFile(path(".")), testing::ExitedWithCode(STATUS_USAGE),
              "cannot read .*: Is a directory");
  EXPECT_EXIT(static_cast<void>(readValuesFile("/dev/zero")), testing::ExitedWithCode(STATUS_USAGE),
              "cannot read /dev/zero: File too large");
}

TEST_F(ValuesFileTest, ReplacesTheFileAndKeepsItsModeAndLinks) {
  write("old");
  ASSERT_EQ(chmod(path().c_str(), 0640), 0);
  ASSERT_EQ(symlink("file", path("link").c_str()), 0);
  struct stat before = {};
  ASSERT_EQ(stat(path().c_str(), &before), 0);
  writeValuesFile(path("link"), {{"a", "1"}});
  struct stat after = {};
  ASSERT_EQ(stat(path().c_str(), &after), 0);
  EXPECT_EQ(text(), "a=1\n");
  EXPECT_EQ(after.st_mode & 07777U, 0640U);
  EXPECT_NE(after.st_ino, before.st_ino);  // it was replaced, not overwritten
  EXPECT_TRUE(std::filesystem::is_symlink(path("link")));
  // Nothing else is left.
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path("")), {}), 2);
}

TEST_F(ValuesFileTest, MakesAFileWithTheUsualMode) {
  const mode_t mask = umask(027);
  writeValuesFile(path(), {{"a", "1"}});
  umask(mask);
  struct stat status = {};
  ASSERT_EQ(stat(path().c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
}

TEST_F(ValuesFileDeathTest, LeavesTheOldFileWhereItCannotBeWritten) {
  EXPECT_EXIT(writeValuesFile(path("no/file"), VALUES), testing::ExitedWithCode(STATUS_REFUSED),
              "cannot write .*/no/file: No such file or directory");
  EXPECT_EXIT(writeValuesFile("/dev/full", VALUES), testing::ExitedWithCode(STATUS_REFUSED),
              "cannot write /dev/full: No space left on device");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(path("")), {}), 0);
}

TEST_F(ValuesFileTest, WritesIntoWhatCannotBeReplaced) {
  ASSERT_EQ(mkfifo(path().c_str(), 0600), 0);
  const int reader = open(path().c_str(), O_RDONLY | O_NONBLOCK);
  writeValuesFile(path(), {{"a", "1"}});
  char read4[4] = {};
  EXPECT_EQ(read(reader, read4, 4), 4);
  EXPECT_EQ(std::string(read4, 4), "a=1\n");
  close(reader);
}

}  // namespace

// A group of processes with a limit of memory, as devices have it: what passes it is killed, so
// that a call has to stay below it by itself.
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/harness/service_test.h"

namespace {

constexpr size_t LIMIT = 100'000'000;

// Below the group of this process, in the first of the system's two interfaces that lets it.
class MemoryGroup {
 public:
  explicit MemoryGroup(size_t limit) {
    make("/sys/fs/cgroup/memory" + ownPath(":memory:"), "memory.limit_in_bytes", limit);
    if (!exists()) make("/sys/fs/cgroup" + ownPath("0::"), "memory.max", limit);
  }
  // Its processes have ended.
  ~MemoryGroup() {
    if (exists()) rmdir(path_.c_str());
  }
  MemoryGroup(const MemoryGroup&) = delete;
  MemoryGroup& operator=(const MemoryGroup&) = delete;

  [[nodiscard]] bool exists() const { return !path_.empty(); }
  [[nodiscard]] bool add(pid_t pid) const {
    return write(path_ + "/cgroup.procs", static_cast<size_t>(pid));
  }

 private:
  static bool write(const std::string& file, size_t number) {
    std::ofstream stream(file);
    stream << number << std::flush;
    return stream.good();
  }
  // The path behind `mark` in the list of this process's groups.
  static std::string ownPath(const std::string& mark) {
    std::ifstream list("/proc/self/cgroup");
    for (std::string line; std::getline(list, line);) {
      const size_t found = line.find(mark);
      if (found != std::string::npos) return line.substr(found + mark.size());
    }
    return "";
  }
  void make(const std::string& parent, const std::string& limitFile, size_t limit) {
    const std::string path = parent + "/ostrel-test-" + std::to_string(getpid());
    std::error_code error;
    if (!std::filesystem::create_directory(path, error)) return;
    if (write(path + "/" + limitFile, limit)) {
      path_ = path;
    } else {
      rmdir(path.c_str());
    }
  }

  std::string path_;
};

// A list of `count` names, each spelled in its own way.
std::string spellings(int count) {
  std::string list = "['a[0'";
  for (int i = 1; i < count; ++i) list.append(", 'a[").append(std::to_string(i)).append("'");
  return list + "]";
}

class MemoryGroupTest : public ServiceTest {
 protected:
  MemoryGroupTest() : ServiceTest({.limits = {}}) {}
};

TEST_F(MemoryGroupTest, HoldsADaemonThatIsAskedForManyRanges) {
  const MemoryGroup group(LIMIT);
  if (!group.exists()) GTEST_SKIP() << "this process may not make groups with a limit of memory";
  std::string text = "b rw { rangeValid { 0..9 } }\na rw { rangeValid { 0";
  for (int i = 2; text.size() < 99'000; i += 2) text.append(",\n").append(std::to_string(i));
  ASSERT_NO_FATAL_FAILURE(serve(text + " } }\n"));
  ASSERT_TRUE(group.add(daemon().process().pid()));
  ASSERT_EQ(client().answer("start()"), "0");
  for (const int names : {20'000, 200'000}) {
    SCOPED_TRACE(names);
    EXPECT_EQ(client().answer("get_range_bulk(0, " + spellings(names) + ")"),
              "Get range failed because of internal error");
    EXPECT_EQ(client().answer("get_range(0, 'b')"), "([], [(0, 9)])");
  }
  expectOrderlyEnd();
}

TEST_F(MemoryGroupTest, HoldsADaemonThatAnswersForManyNames) {
  const MemoryGroup group(LIMIT);
  if (!group.exists()) GTEST_SKIP() << "this process may not make groups with a limit of memory";
  serve("b rw { rangeValid { 0..9 } }\na rw { rangeValid { 0..9 } }\n");
  ASSERT_TRUE(group.add(daemon().process().pid()));
  ASSERT_EQ(client().answer("start()"), "0");
  const std::string answer = client().answer("get_range_bulk(0, " + spellings(20'000) + ")");
  EXPECT_TRUE(answer.starts_with("([], [('a[0', 0, 9), ('a[1', 0, 9)")) << answer.substr(0, 100);
  EXPECT_EQ(client().answer("get_range(0, 'b')"), "([], [(0, 9)])");
  expectOrderlyEnd();
}

}  // namespace

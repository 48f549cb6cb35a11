#include "startup/definition_reader.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <map>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

namespace {

// The descriptors that poll() was asked to wait for.
std::vector<int> polled;

}  // namespace

// In the place of the C library's poll(), to see what is waited for. The library's headers may hold
// a definition of that name.
extern "C" int notedPoll(pollfd* descriptors, nfds_t count, int patience) __asm__("poll");
int notedPoll(pollfd* descriptors, nfds_t count, int patience) {
  for (nfds_t i = 0; i < count; ++i) polled.push_back(descriptors[i].fd);
  // Not every kind of machine has a system call poll.
  const timespec limit = {.tv_sec = patience / 1000, .tv_nsec = patience % 1000 * 1'000'000L};
  return ppoll(descriptors, count, patience < 0 ? nullptr : &limit, nullptr);
}

namespace {

using File = std::unique_ptr<FILE, int (*)(FILE*)>;

// A stream that gives `text`.
File streamOf(const std::string& text) {
  File file(tmpfile(), fclose);
  EXPECT_EQ(fwrite(text.data(), 1, text.size(), file.get()), text.size());
  rewind(file.get());
  return file;
}

// Takes the definitions in, as far as these tests look at them.
class Registry : public DefinitionRegistry {
 public:
  [[nodiscard]] const std::string* findConstant(std::string_view name) const override {
    static_cast<void>(name);
    return nullptr;
  }
  int registerIndex(std::unique_ptr<IndexDef> index) override {
    const std::string name = index->name();
    return indices_.emplace(name, std::move(index)).second ? 0 : 1;
  }
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override {
    const auto found = indices_.find(name);
    return found == indices_.end() ? nullptr : found->second.get();
  }
  int registerParm(std::unique_ptr<ParmDef> parm) override {
    parms_.push_back(std::move(parm));
    return 0;
  }
  int finish(std::string& name) override {
    static_cast<void>(name);
    finished_ = true;
    return 0;
  }

  [[nodiscard]] std::vector<std::string> parmNames() const {
    std::vector<std::string> names;
    for (const auto& parm : parms_) names.push_back(parm->name());
    return names;
  }
  [[nodiscard]] bool isFinished() const { return finished_; }

 private:
  std::map<std::string, std::unique_ptr<IndexDef>, std::less<>> indices_;
  std::vector<std::unique_ptr<ParmDef>> parms_;
  bool finished_ = false;
};

TEST(ReadPiece, EndsAPieceAtItsNewlineOrAfter1024Bytes) {
  const std::string full(MAX_PIECE_LENGTH, 'x');
  struct PieceCase {
    const char* what;
    std::string text;
    std::vector<std::string> pieces;
  };
  const PieceCase cases[] = {
      {"nothing", "", {}},
      {"lines", "a\n\nb\n", {"a\n", "\n", "b\n"}},
      {"no newline at the end", "a\nb", {"a\n", "b"}},
      {"NUL bytes", std::string("a\0b\n\0c", 6), {std::string("a\0b\n", 4), std::string("\0c", 2)}},
      {"1023 and the newline", full.substr(1) + "\nb", {full.substr(1) + "\n", "b"}},
      {"1024, the newline alone", full + "\nb", {full, "\n", "b"}},
      {"1025", full + "y\nb", {full, "y\n", "b"}},
      {"2048 at the end", full + full, {full, full}},
  };
  for (const PieceCase& c : cases) {
    SCOPED_TRACE(c.what);
    const File file = streamOf(c.text);
    std::vector<std::string> pieces;
    std::string piece;
    while (readPiece(file.get(), piece)) pieces.push_back(piece);
    EXPECT_EQ(pieces, c.pieces);
    EXPECT_TRUE(piece.empty());
  }
}

TEST(ReadFirstPiece, LeavesOutAByteOrderMarkInFront) {
  const std::string mark = "\xEF\xBB\xBF";
  const std::string full(MAX_PIECE_LENGTH, 'x');
  struct FirstCase {
    const char* what;
    std::string text;
    std::vector<std::string> pieces;
  };
  const FirstCase cases[] = {
      {"nothing", "", {}},
      {"no mark", "a\nb", {"a\n", "b"}},
      {"the mark alone", mark, {}},
      {"a line", mark + "a\nb\n", {"a\n", "b\n"}},
      {"an empty line", mark + "\nb\n", {"\n", "b\n"}},
      {"no newline", mark + "a", {"a"}},
      {"1023 and the newline", mark + full.substr(1) + "\nb", {full.substr(1) + "\n", "b"}},
      {"1024", mark + full + "\nb", {full, "\n", "b"}},
      {"two marks", mark + mark + "a\n", {mark + "a\n"}},
      {"half a mark", mark.substr(0, 2) + "a\n", {mark.substr(0, 2) + "a\n"}},
      {"a mark in the next line", "a\n" + mark + "b\n", {"a\n", mark + "b\n"}},
      {"a mark behind a blank", " " + mark + "b\n", {" " + mark + "b\n"}},
  };
  for (const FirstCase& c : cases) {
    SCOPED_TRACE(c.what);
    const File file = streamOf(c.text);
    std::vector<std::string> pieces;
    std::string piece;
    for (bool isRead = readFirstPiece(file.get(), piece); isRead;
         isRead = readPiece(file.get(), piece)) {
      pieces.push_back(piece);
    }
    EXPECT_EQ(pieces, c.pieces);
  }
}

struct Reading {
  int result;
  std::string out;
  std::string err;
};

Reading readStream(FILE* in, Registry& registry) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int result = loadDefinitions(in, registry);
  return {result, testing::internal::GetCapturedStdout(), testing::internal::GetCapturedStderr()};
}

Reading readText(const std::string& text, Registry& registry) {
  return readStream(streamOf(text).get(), registry);
}

const char* const BOTH_STEPS = "Parsing file.\nMaking parameter definitions.\n";

TEST(ReadDefinitions, BuildsWhatTheTextDefines) {
  Registry registry;
  const Reading reading = readText("gain rw\n{ rangeValid { 0..9 } }\nhue rw {}\n", registry);
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.out, BOTH_STEPS);
  EXPECT_EQ(reading.err, "");
  EXPECT_EQ(registry.parmNames(), (std::vector<std::string>{"gain", "hue"}));
  EXPECT_TRUE(registry.isFinished());
}

TEST(ReadDefinitions, BuildsNothingFromAnEmptyText) {
  Registry registry;
  const Reading reading = readText("", registry);
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.out, BOTH_STEPS);
  EXPECT_EQ(reading.err, "");
  EXPECT_TRUE(registry.isFinished());
}

TEST(ReadDefinitions, StopsAtTheFirstLineThatIsRefused) {
  Registry registry;
  const Reading reading = readText("gain rw {}\n\nhue no {}\npan never {}\n", registry);
  EXPECT_EQ(reading.result, 1);
  EXPECT_EQ(reading.out, "Parsing file.\n");
  EXPECT_TRUE(reading.err.starts_with("Error on line 3\n")) << reading.err;
  EXPECT_EQ(reading.err.find("pan"), std::string::npos) << reading.err;
  EXPECT_FALSE(registry.isFinished());
}

// A stream that gives `text`, then fails instead of ending.
File failingStream(std::string& text) {
  const auto read = [](void* cookie, char* buffer, size_t size) -> ssize_t {
    std::string& rest = *static_cast<std::string*>(cookie);
    if (rest.empty()) {
      errno = EIO;
      return -1;
    }
    const size_t count = rest.copy(buffer, size);
    rest.erase(0, count);
    return static_cast<ssize_t>(count);
  };
  return {fopencookie(&text, "r", {.read = read, .write = {}, .seek = {}, .close = {}}), fclose};
}

TEST(ReadDefinitions, ReportsAStreamThatCannotBeReadToItsEnd) {
  // What is before the failure, of a line or of several, is not built.
  for (std::string text : {"", "gain rw {}\n", "gain rw {}\nhue no"}) {
    SCOPED_TRACE(text);
    const File file = failingStream(text);
    Registry registry;
    const Reading reading = readStream(file.get(), registry);
    EXPECT_EQ(reading.result, 1);
    EXPECT_EQ(reading.out, "Parsing file.\n");
    EXPECT_EQ(reading.err, "Error reading parameter definitions: Input/output error\n");
    EXPECT_FALSE(registry.isFinished());
  }
}

TEST(ReadDefinitions, CountsColumnsBehindAByteOrderMark) {
  Registry registry;
  const Reading reading = readText("\xEF\xBB\xBFhue no {}\n", registry);
  EXPECT_EQ(reading.result, 1);
  EXPECT_EQ(reading.err, "Error on line 1\nInvalid parameter access type\nhue no {}\n    ^\n");
}

// A pipe whose text comes piece by piece, each written when those before have been read.
class SlowPipe {
 public:
  explicit SlowPipe(int flags) { EXPECT_EQ(pipe2(ends_.data(), O_CLOEXEC | flags), 0); }
  ~SlowPipe() { writer_.join(); }
  SlowPipe(const SlowPipe&) = delete;
  SlowPipe& operator=(const SlowPipe&) = delete;

  // `between` is called before each piece.
  template <typename Between>
  void write(std::vector<std::string> pieces, Between between) {
    writer_ = std::thread([this, pieces = std::move(pieces), between] {
      for (const std::string& piece : pieces) {
        int unread = 0;
        do {
          usleep(20000);
        } while (ioctl(ends_[0], FIONREAD, &unread) == 0 && unread > 0);
        between();
        EXPECT_EQ(::write(ends_[1], piece.data(), piece.size()),
                  static_cast<ssize_t>(piece.size()));
      }
      close(ends_[1]);
    });
  }
  [[nodiscard]] int readEnd() const { return ends_[0]; }

 private:
  std::array<int, 2> ends_ = {};
  std::thread writer_;
};

const std::vector<std::string> SLOW_TEXT = {"gain r", "w {}\nhue rw", " {}\n"};

TEST(ReadDefinitions, WaitsForANonBlockingStream) {
  Registry registry;
  SlowPipe slow(O_NONBLOCK);
  const File file(fdopen(slow.readEnd(), "r"), fclose);
  slow.write(SLOW_TEXT, [] {});
  polled.clear();
  const Reading reading = readStream(file.get(), registry);
  EXPECT_EQ(reading.result, 0);
  EXPECT_EQ(reading.err, "");
  // Once at most for each piece and for the end, not again and again.
  EXPECT_LE(polled.size(), SLOW_TEXT.size() + 1);
  EXPECT_EQ(polled, std::vector<int>(polled.size(), slow.readEnd()));
  EXPECT_EQ(registry.parmNames(), (std::vector<std::string>{"gain", "hue"}));
  // Its mode is not changed: others may share it.
  EXPECT_NE(fcntl(slow.readEnd(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(ReadDefinitions, GoesOnAfterASignal) {
  Registry registry;
  struct sigaction action {};
  action.sa_handler = [](int) {};
  ASSERT_EQ(sigaction(SIGUSR1, &action, nullptr), 0);  // it interrupts what waits
  for (const int flags : {0, O_NONBLOCK}) {
    SCOPED_TRACE(flags);
    SlowPipe slow(flags);
    const File file(fdopen(slow.readEnd(), "r"), fclose);
    slow.write(SLOW_TEXT, [reader = pthread_self()] { pthread_kill(reader, SIGUSR1); });
    const Reading reading = readStream(file.get(), registry);
    EXPECT_EQ(reading.result, 0);
    EXPECT_EQ(reading.err, "");
  }
}

TEST(ReadDefinitions, CountsThePiecesOfALongLineAsLines) {
  Registry registry;
  const std::string blanks(MAX_PIECE_LENGTH + 1, ' ');
  const Reading reading = readText("gain rw {}\n" + blanks + "\nhue no {}\n", registry);
  EXPECT_EQ(reading.result, 1);
  EXPECT_TRUE(reading.err.starts_with("Error on line 4\n")) << reading.err;
}

TEST(ReadDefinitions, HandsOnThatTheDefinitionsCannotBeBuilt) {
  Registry registry;
  const Reading reading = readText("gain rw { index { channel } }\n", registry);
  EXPECT_EQ(reading.result, 1);
  EXPECT_EQ(reading.out, BOTH_STEPS);
  EXPECT_NE(reading.err, "");
}

}  // namespace

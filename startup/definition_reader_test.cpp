#include "startup/definition_reader.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <memory>
#include <vector>

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

struct Reading {
  int result;
  std::string out;
  std::string err;
};

Reading readStream(FILE* in, Registry& registry) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const int result = readDefinitions(in, registry);
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
  // What stands before the failure, of a line or of several, is not built.
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

// Every session of the tree is played by the engine and by a daemon on a bus, with one outcome.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "play/engine_device.h"
#include "play/known_device.h"
#include "play/player.h"
#include "play/session_line.h"
#include "play/session_reader.h"
#include "tests/harness/service_test.h"
#include "tests/harness/session_device.h"
#include "tests/support/database.h"
#include "vid_std.h"

namespace {

namespace fs = std::filesystem;

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int readFile(const std::string& name, std::string& text) {
  if (!fs::is_regular_file(name)) return ENOENT;
  text = contentsOf(name);
  return 0;
}

// The text that a session is about: the one of whose name its own is, or begins with, such as
// picture.ostrel for picture-modes.session.
fs::path textOf(const fs::path& session) {
  for (std::string name = session.stem(); !name.empty(); name.resize(name.rfind('-'))) {
    fs::path text = session.parent_path() / (name + ".ostrel");
    if (fs::exists(text)) return text;
    if (name.find('-') == std::string::npos) break;
  }
  return {};
}

std::vector<std::string> sessionFiles() {
  std::vector<std::string> files;
  for (const char* const directory : {EXAMPLES_DIRECTORY, SESSIONS_DIRECTORY}) {
    for (const auto& entry : fs::directory_iterator(directory)) {
      if (entry.path().extension() == ".session") files.push_back(entry.path());
    }
  }
  std::ranges::sort(files);
  return files;
}

// What has become of each operation, as a text. What the bus cannot do is left out.
class Talk final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override {
    const std::string_view word = played.operation.word->word;
    if (word == "try" || word == "why") return;
    const std::string line = std::to_string(played.operation.place.line) + " " + played.variables +
                             ": " + std::string(operationText(played.operation)) + " -> " +
                             played.outcome.shown();
    lines_.push_back(line);
    if (!played.isAsExpected) unexpected_.push_back(line);
  }
  [[nodiscard]] const std::vector<std::string>& lines() const { return lines_; }
  [[nodiscard]] const std::vector<std::string>& unexpected() const { return unexpected_; }

 private:
  std::vector<std::string> lines_;
  std::vector<std::string> unexpected_;
};

class PlayedBothWays : public ServiceTest, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    initVidStdTables();
    ASSERT_NE(textOf(GetParam()), fs::path()) << "no definition text for " << GetParam();
    text_ = contentsOf(textOf(GetParam()));
    std::vector<SessionError> errors;
    readSession(GetParam(), contentsOf(GetParam()), readFile, session_, errors);
    for (const SessionError& error : errors) ADD_FAILURE() << shownError(error);
  }

  void play(const StartDevice& start, Talk& talk) {
    const auto error = playSession(session_, start, {}, talk);
    EXPECT_FALSE(error) << shownError(*error);
    EXPECT_EQ(talk.unexpected(), std::vector<std::string>());
  }

  // A daemon of its own for each start of the device.
  std::unique_ptr<Device> startOnBus(const PlayConstants& constants) {
    std::vector<std::string> arguments;
    for (const auto& [name, value] : constants) arguments.push_back(name + "=" + value);
    endDaemon();
    serve(text_, arguments);
    if (HasFatalFailure()) return nullptr;
    isServing_ = true;
    return std::make_unique<SessionDevice>(client(), [this, constants] {
      Database database;
      define(database, text_, constants);
      return knownDevice(database);
    });
  }

  // The lines that refused values have left in its log are of no interest here.
  void endDaemon() {
    if (!isServing_) return;
    static_cast<void>(daemon().newLogLines());
    expectOrderlyEnd();
    isServing_ = false;
  }

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
  Session session_;
  bool isServing_ = false;
};

TEST_P(PlayedBothWays, HasOneOutcome) {
  Talk engine;
  play([this](const PlayConstants& constants) { return startEngineDevice(text(), constants); },
       engine);
  Talk bus;
  play([this](const PlayConstants& constants) { return startOnBus(constants); }, bus);
  endDaemon();
  EXPECT_GT(engine.lines().size(), 0U);
  EXPECT_EQ(engine.lines(), bus.lines());
}

std::string caseName(const testing::TestParamInfo<std::string>& file) {
  std::string name = fs::path(file.param).stem();
  std::ranges::replace_if(
      name, [](char c) { return isalnum(c) == 0; }, '_');
  return name;
}

INSTANTIATE_TEST_SUITE_P(Sessions, PlayedBothWays, testing::ValuesIn(sessionFiles()), caseName);

}  // namespace

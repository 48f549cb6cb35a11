// What clients do with a daemon is recorded as a session; playing it gives the same.
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "tests/harness/service_test.h"
#include "tests/harness/temp_dir.h"

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

Lines linesOf(const std::string& text) {
  std::istringstream stream(text);
  Lines lines;
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

constexpr const char* PICTURE = EXAMPLES_DIRECTORY "/picture.ostrel";

class RecordTest : public ServiceTest {
 protected:
  void SetUp() override { serve(contentsOf(PICTURE)); }

  // Begins to record what the clients of the bus do.
  void record() {
    recorder_ = std::make_unique<Process>(Process::Options{
        .command = {OSTREL_PLAY, "--record=" + session(), "--bus=" + bus().address(), PICTURE, "--",
                    "sh", "-c", "echo ready; read line"},
        .inputStaysOpen = true,
        .outputToPipe = true});
    ASSERT_EQ(recorder_->readLine(), "ready") << recorder_->errorsSoFar();
  }
  // Returns the session.
  std::string endRecording() {
    recorder_->write("\n");
    const Ending ending = recorder_->waitForEnd();
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(ending.status, 0);
    return contentsOf(session());
  }
  // Plays the session without a bus.
  void expectTheSame() {
    Process player({.command = {OSTREL_PLAY, "--quiet", PICTURE, session()}});
    const Ending ending = player.waitForEnd();
    EXPECT_EQ(ending.out, "");
    EXPECT_EQ(ending.err, "");
    EXPECT_EQ(ending.status, 0);
  }
  Process& recorder() { return *recorder_; }
  [[nodiscard]] std::string session() const { return directory_.path() + "/recorded.session"; }

 private:
  TempDir directory_;
  std::unique_ptr<Process> recorder_;
};

TEST_F(RecordTest, WritesWhatClientsDo) {
  Client other(bus().address());
  record();
  EXPECT_EQ(client().answer("single_set('mode', '720p/50')"), "()");
  const std::string id = client().answer("start()");
  const std::string name = "t" + id;
  static_cast<void>(client().answer("set(" + id + ", 'position[1]', '4000')"));
  static_cast<void>(other.answer("get_range(" + id + ", 'position[1]')"));
  static_cast<void>(client().answer("commit(" + id + ")"));
  static_cast<void>(other.answer("single_get_bulk(2, ['mode', 'position[1]'])"));
  static_cast<void>(other.answer("single_set('mode', 'sepia')"));
  static_cast<void>(other.answer("get(900, 'mode')"));
  static_cast<void>(other.answer("reset_bulk(" + id + ", @as [])"));
  const Lines expected = {
      "single_set mode 720p/50         -> blanking= mode=720p/50 position[1]= position[2]=",
      "start " + name + "                        ->",
      name + ": set position[1] 4000        ->",
      name + ": range position[1]           -> 0..1279",
      name + ": commit                      -> position[1]=1279",
      "single_get mode position[1]     -> 720p/50 1279",
      "single_set mode sepia           -> refused: parameter value is invalid",
      "start t900",
      "end t900",
      "t900: get mode                  -> refused: invalid transaction id",
      "# reset_bulk of no names"};
  EXPECT_EQ(linesOf(endRecording()), expected);
  expectTheSame();
}

TEST_F(RecordTest, BeginsWhereTheDeviceStands) {
  static_cast<void>(client().answer("single_set('mode', '720p/50')"));
  static_cast<void>(client().answer("single_set('position[2]', '77')"));
  record();
  static_cast<void>(client().answer("single_get('position[2]')"));
  const Lines lines = linesOf(endRecording());
  // The device was never brought up.
  EXPECT_EQ(lines,
            (Lines{"up mode=720p/50 position[2]=77", "# up does not bring back blanking=, but 10",
                   "# up does not bring back position[1]=, but 960",
                   "single_get position[2]          -> 77"}));
  expectTheSame();
}

TEST_F(RecordTest, EndsWithTheDaemon) {
  record();
  static_cast<void>(client().answer("single_get('mode')"));
  static_cast<void>(client().answer("die()"));
  static_cast<void>(daemon().waitForEnd());
  forgetDaemon();
  const Ending ending = recorder().waitForEnd();
  EXPECT_EQ(ending.err, "ostrel-play: the daemon has ended before the command\n");
  EXPECT_EQ(ending.status, 2);
  EXPECT_EQ(linesOf(contentsOf(session())), (Lines{"single_get mode                 -> \"\"",
                                                   "# no operation: die with the arguments ()"}));
}

TEST_F(RecordTest, WithoutACommandASignalEndsIt) {
  Process recorder(
      {.command = {OSTREL_PLAY, "--record=" + session(), "--bus=" + bus().address(), PICTURE}});
  while (recorder.running() && recorder.errorsSoFar().empty()) usleep(1000);
  static_cast<void>(client().answer("single_get('mode')"));
  kill(recorder.pid(), SIGINT);
  const Ending ending = recorder.waitForEnd();
  EXPECT_EQ(ending.err, "ostrel-play: recording on " + bus().address() + " until SIGINT\n");
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(linesOf(contentsOf(session())), (Lines{"single_get mode                 -> \"\""}));
}

// Calls at random, of all kinds, right and wrong.
class RandomCalls {
 public:
  explicit RandomCalls(unsigned seed) : random_(seed) {}

  std::string next() {
    const std::string id = std::to_string(number(0, 12));
    const std::string one = "'" + name() + "'";
    const std::string pair = one + ", " + value();
    const std::string two = "['" + name() + "', '" + name() + "']";
    const std::string values = "[" + value() + ", " + value() + "]";
    const Lines calls = {"start()",
                         "set(" + id + ", " + pair + ")",
                         "set(" + id + ", " + pair + ")",
                         "set_status(" + id + ", " + pair + ")",
                         "set_bulk(" + id + ", " + two + ", " + values + ")",
                         "set_status_bulk(" + id + ", [" + one + "], " + values + ")",
                         "reset(" + id + ", " + one + ")",
                         "reset_status_bulk(" + id + ", " + two + ")",
                         "commit(" + id + ")",
                         "commit(" + id + ")",
                         "get(" + id + ", " + one + ")",
                         "get_bulk(" + id + ", 1, " + two + ")",
                         "is_valid(" + id + ", " + pair + ")",
                         "check_set(" + id + ", " + pair + ")",
                         "get_range(" + id + ", " + one + ")",
                         "get_range_bulk(" + id + ", " + two + ")",
                         "get_range_bulk(" + id + ", [" + one + "])",
                         "get_parm_idx(" + id + ", " + one + ")",
                         "get_idx_range(" + id + ", " + one + ")",
                         "get_deps(" + one + ")",
                         "single_set(" + pair + ")",
                         "single_set(" + pair + ")",
                         "single_set_bulk(" + two + ", " + values + ")",
                         "single_reset_bulk(" + two + ")",
                         "single_reset_status(" + one + ")",
                         "single_get_bulk(9, " + two + ")",
                         "single_is_valid(" + pair + ")",
                         "single_check_set(" + pair + ")"};
    return calls[number(0, calls.size() - 1)];
  }
  size_t number(size_t low, size_t high) {
    return std::uniform_int_distribution<size_t>(low, high)(random_);
  }

 private:
  std::string name() {
    const Lines names = {"mode", "position[1]", "position[2]", "blanking", "title", "channel", "x"};
    return names[number(0, names.size() - 1)];
  }
  std::string value() {
    const Lines values = {"''", "'720p/50'", "'1080i/50'", "'7'", "'1500'", "'a \"b\" # \\\\ c'"};
    return values[number(0, values.size() - 1)];
  }

  std::mt19937 random_;
};

class RandomTalk : public RecordTest, public testing::WithParamInterface<unsigned> {};

TEST_P(RandomTalk, IsPlayedAsItWas) {
  constexpr size_t CALLS = 400;
  Client second(bus().address());
  Client third(bus().address());
  Client* const clients[] = {&client(), &second, &third};
  record();
  RandomCalls calls(GetParam());
  for (size_t i = 0; i < CALLS; ++i) clients[calls.number(0, 2)]->send(calls.next());
  for (Client* const each : clients) static_cast<void>(each->collectAnswers());
  const Lines lines = linesOf(endRecording());
  EXPECT_GE(lines.size(), CALLS);
  expectTheSame();
  static_cast<void>(daemon().newLogLines());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomTalk, testing::Values(1, 2, 3));

TEST(RecordCommand, StartsABusAndADaemonOfItsOwn) {
  const std::string client =
      "gdbus call --session -d org.tavrel.transaction -o /transaction "
      "-m org.tavrel.transaction.single_get -- MODEL";
  TempDir directory;
  const std::string text = directory.path() + "/text.ostrel";
  std::ofstream(text) << "gain ro { rangeValid { (MODEL) } }\n";
  Process recorder({.command = {OSTREL_PLAY, "--record", "-D", "MODEL=7", "--daemon",
                                DAEMON_PROGRAM, text, "--", "sh", "-c", client + "; exit 3"}});
  const Ending ending = recorder.waitForEnd();
  EXPECT_EQ(ending.out,
            "constants MODEL=7\n"
            "single_get MODEL                -> 7\n");
  EXPECT_EQ(ending.err, "('7',)\n");
  EXPECT_EQ(ending.status, 1);
}

}  // namespace

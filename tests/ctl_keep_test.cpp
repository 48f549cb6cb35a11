// ostrelctl keep: the values of a device in a file, whatever happens to either.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <thread>

#include "tests/harness/ctl_test.h"

namespace {

constexpr const char* TEXT =
    "mode rw { rangeValid { \"wide\", \"slim\" } default { \"wide\" } }\n"
    "gain rw { }\n"
    "lamp ro { default { 7 } }\n";

class CtlKeepTest : public CtlServiceTest {
 protected:
  void serveNotReady() { serve(TEXT, {}, {{"OSTREL_BRING_UP", "1"}}); }
  void bringUp() { EXPECT_EQ(start("ctl -q up")->waitForEnd().status, 0); }
  std::string kept() {
    std::ifstream file(directory() + "/v");
    return {std::istreambuf_iterator<char>(file), {}};
  }
  // Whether the file holds `text` before long.
  bool comesToHold(const std::string& text) {
    return comes([&] { return kept() == text; });
  }
  static bool comes(const std::function<bool()>& isThere) {
    for (int i = 0; i < PATIENCE * 100; ++i) {
      if (isThere()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }
  void endDaemon(int signal) {
    kill(daemon().process().pid(), signal);
    daemon().waitForEnd();
    forgetDaemon();
  }
  // Ends `keeper` by SIGTERM; what it has said.
  static Ending end(Process& keeper) {
    kill(keeper.pid(), SIGTERM);
    return keeper.waitForEnd();
  }
};

TEST_F(CtlKeepTest, WritesAtOnceAndThenSoOftenAtMost) {
  serve(TEXT);
  bringUp();
  const auto keeper = start("exec \"$0\" keep --every 3600 v");
  ASSERT_TRUE(comesToHold("gain=\nmode=wide\n"));
  // It was just written, so what changes now waits.
  EXPECT_EQ(start("ctl -q set gain=1")->waitForEnd().status, 0);
  EXPECT_EQ(start("ctl -q set gain=2")->waitForEnd().status, 0);
  EXPECT_EQ(kept(), "gain=\nmode=wide\n");
  const Ending ending = end(*keeper);
  EXPECT_EQ(ending.status, 0);
  EXPECT_EQ(ending.err,
            "ostrelctl: the service is there\nostrelctl: kept 2 values in v\n"
            "ostrelctl: kept 2 values in v\n");
  EXPECT_EQ(kept(), "gain=2\nmode=wide\n");
}

TEST_F(CtlKeepTest, WritesWhileValuesChange) {
  serve(TEXT);
  bringUp();
  const auto keeper = start("exec \"$0\" keep --every 1 v");
  for (const char* const value : {"1", "a b", "\"quoted\"", " "}) {
    const std::string set = std::string("ctl -q set 'gain=") + value + "'";
    EXPECT_EQ(start(set)->waitForEnd().status, 0);
    EXPECT_TRUE(comes([&] {
      return start("ctl diff v")->waitForEnd().status == 0 &&
             kept().find("gain=") != std::string::npos;
    })) << value
        << ": " << kept();
  }
  EXPECT_EQ(end(*keeper).status, 0);
}

TEST_F(CtlKeepTest, KeepsWhatWasSetJustBeforeItsEnd) {
  serve(TEXT);
  bringUp();
  std::string values = "gain=\nmode=wide\n";
  for (int i = 0; i < 20; ++i) {
    std::filesystem::remove(directory() + "/v");
    const auto keeper = start("exec \"$0\" keep --every 3600 v");
    ASSERT_TRUE(comesToHold(values));
    // It wakes up to both.
    kill(keeper->pid(), SIGSTOP);
    EXPECT_EQ(client().answer("single_set('gain', '" + std::to_string(i) + "')"), "()");
    kill(keeper->pid(), SIGTERM);
    kill(keeper->pid(), SIGCONT);
    EXPECT_EQ(keeper->waitForEnd().status, 0);
    values = "gain=" + std::to_string(i) + "\nmode=wide\n";
    EXPECT_EQ(kept(), values);
  }
}

// What nobody has set, and what somebody has emptied just before the end.
TEST_F(CtlKeepTest, KeepsTheEmptyTextWhereItCanBeSet) {
  serve("name rw { default { \"unnamed\" } }\nnever rw { rangeValid { 1..9 } }\n");
  EXPECT_EQ(start("ctl -q reset name")->waitForEnd().status, 0);
  const auto keeper = start("exec \"$0\" keep --every 3600 v");
  ASSERT_TRUE(comesToHold("name=unnamed\n"));
  EXPECT_EQ(start("ctl -q set name=")->waitForEnd().status, 0);
  endDaemon(SIGKILL);
  EXPECT_TRUE(comesToHold("name=\n"));
  const std::string wrote =
      "ostrelctl: kept 1 value in v; never is empty, and no set makes it so\n";
  EXPECT_EQ(end(*keeper).err, "ostrelctl: the service is there\n" + wrote + wrote +
                                  "ostrelctl: the service has gone; waiting for it\n");
}

TEST_F(CtlKeepTest, OutlivesTheServiceAndWaitsUntilTheNextIsReady) {
  for (const int signal : {SIGTERM, SIGKILL}) {
    SCOPED_TRACE(signal);
    serve(TEXT);
    bringUp();
    const auto keeper = start("exec \"$0\" keep --every 3600 v");
    ASSERT_TRUE(comesToHold("gain=\nmode=wide\n"));
    EXPECT_EQ(start("ctl -q set gain=5 mode=slim")->waitForEnd().status, 0);
    endDaemon(signal);
    // What was announced is written as the service goes.
    ASSERT_TRUE(comesToHold("gain=5\nmode=slim\n"));
    serveNotReady();
    EXPECT_EQ(start("ctl -q --no-wait set gain=9")->waitForEnd().status, 0);
    EXPECT_EQ(start("ctl --no-wait get gain mode")->waitForEnd().out, "gain=9\nmode=\n");
    EXPECT_EQ(kept(), "gain=5\nmode=slim\n");
    EXPECT_EQ(start("ctl -q up --from v")->waitForEnd().status, 0);
    EXPECT_EQ(start("ctl get gain mode")->waitForEnd().out, "gain=5\nmode=slim\n");
    EXPECT_EQ(end(*keeper).status, 0);
    EXPECT_EQ(kept(), "gain=5\nmode=slim\n");
    expectOrderlyEnd();
    std::filesystem::remove(directory() + "/v");
  }
}

TEST_F(CtlKeepTest, NeverTakesTheValuesOfADeviceThatIsNotReady) {
  serveNotReady();
  expectLines({{"echo gain=4 > v; ctl --timeout 1 keep --once v", "",
                "no service: org.tavrel.transaction has not become ready within 1 s; --no-wait "
                "asks it as it is\n",
                3},
               {"cat v", "gain=4\n"},
               // A device that nobody brings up may have lost everything.
               {"ctl --no-wait keep --once v", "", "nothing is kept: no parameter has a value\n"},
               {"cat v", "gain=4\n"},
               {"ctl -q up --from v"},
               {"ctl keep --once v", "", "kept 2 values in v\n"},
               {"cat v", "gain=4\nmode=wide\n"},
               {"ctl keep --once v"},
               {"ctl keep --once new", "", "kept 2 values in new\n"},
               {"cmp v new; stat -c %h:%a new | sed s/:6.*/:6/", "1:6\n"}});
}

TEST_F(CtlKeepTest, SaysWhatCannotBeWrittenAndLeavesTheOldFile) {
  serve(TEXT);
  bringUp();
  std::string value(200000, 'x');
  EXPECT_EQ(client().answer("single_set('gain', '" + value + "')"), "()");
  expectLines(
      {{"echo gain=4 > v"},
       // No more than 100 KiB in a file, as on a full disk.
       {"trap '' XFSZ; ulimit -f 100; ctl keep --once v", "", "cannot write v: File too large\n",
        1},
       {"trap '' XFSZ; ulimit -f 100; ctl keep v", "",
        "the service is there\ncannot write v: File too large\n", 1},
       {"cat v; ls", "gain=4\nv\n"},
       {"ctl keep --once nosuch/v", "", "cannot write nosuch/v: No such file or directory\n", 1},
       {"ctl keep --once /proc/v", "", "cannot write /proc/v: No such file or directory\n", 1},
       {"ctl keep --every 0 v", "", "keep: --every: \"0\" is not a whole number from 1 to 86400\n",
        2}});
}

TEST_F(CtlKeepTest, ComesUpWithWhatThereIs) {
  const struct {
    const char* line;
    std::string out;
    std::string err;
  } cases[] = {
      {"ctl up --forgiving --from v",
       "up: 3 values in 1 level, 1 of them empty, without a "
       "default\nkept 0 of 0\n",
       "nothing is restored: cannot read v: No such file or directory\n"},
      {"echo mode > v; ctl -q up --forgiving --from v", "",
       "nothing is restored: v, line 1: this is not NAME=VALUE\n"},
      {"printf 'gain=3\\nnosuch=4\\n' > v; ctl -q up --forgiving --from v", "",
       "unknown: no parameter \"nosuch\"\n"},
  };
  for (const auto& [line, out, err] : cases) {
    serveNotReady();
    expectLines({{line, out, err}, {"ctl --timeout 5 get mode", "wide\n"}});
    expectOrderlyEnd();
  }
}

TEST_F(CtlKeepTest, TellsTheJournalWhereStandardErrorGoesThere) {
  serve(TEXT);
  // Standard error is a file here, which JOURNAL_STREAM names as systemd does with its socket.
  const std::string run =
      "trap '' EXIT; exec 3>stream; export JOURNAL_STREAM=$(stat -c %d:%i stream) "
      "JOURNAL_CAPTURE_FILE=journal; rm -f journal; ctl() { LD_PRELOAD=" JOURNAL_CAPTURE_LIBRARY
      " ASAN_OPTIONS=verify_asan_link_order=0 \"$0\" \"$@\" 2>&3; }; ";
  const std::string start = "PRIORITY=4\nSYSLOG_IDENTIFIER=ostrelctl\n";
  EXPECT_EQ(client().answer("start()"), "0");
  expectLines({
      {run + "printf 'gain=3\\nnosuch[1]=4\\n' > v; ctl -q up --from v; cat stream", "", "", 0},
      {"cat journal | sed s/MESSAGE_ID=.*/ID/",
       "MESSAGE=unknown: no parameter \"nosuch[1]\"\nID\n" + start +
           "PARAMETER=nosuch[1]\nTRANSACTION=1\n\n"},
      {run + "ctl -q set gain=9; ctl keep --once v; cat stream"},
      {"cat journal | sed s/MESSAGE_ID=.*/ID/",
       "MESSAGE=kept 2 values in v\nID\nPRIORITY=6\nSYSLOG_IDENTIFIER=ostrelctl\n\n"},
      // Somebody has led it elsewhere.
      {run + "ctl -q set gain=8; exec 3>other; ctl keep --once v; cat other journal 2>&1",
       "ostrelctl: kept 2 values in v\ncat: journal: No such file or directory\n", "", 1},
  });
}

}  // namespace

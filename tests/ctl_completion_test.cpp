// ostrelctl complete, as the files of the shells call it. These are driven by
// completion/shells_test.
#include "tests/harness/ctl_test.h"

namespace {

constexpr const char* DEVICE =
    "mode rw { rangeValid { \"slim\", \"wide\" } default { \"wide\" } }\n"
    "channel index { rangeValid { 1..2 } }\n"
    "position rw { index { channel } rangeValid ( mode == \"wide\" ) { 5..7, 50 }\n"
    "  rangeValid ( mode == \"slim\" ) { 5 } default { 5 }\n"
    "  valueChange { \"edge\" -> 5 } valueChange { \"far\" -> 50 } }\n"
    "note rw { }\n"
    "temperature ro { rangeValid { 30..31 } default { 30 } }\n"
    "row index { rangeValid { 1..300 } }\n"
    "table wo { index { row, channel } }\n"
    "wide_one rw { rangeValid { 0..2000000000 } }\n"
    "key index { rangeValid { \"a b\", \"c=d\", \"tab\tin\" } }\n"
    "title rw { index { key } rangeValid { \"it's\", \"a\tb\" } }\n";

// Words as a shell hands them over, and what comes back.
struct CompletionCase {
  std::string words;
  std::string out;
};

class CtlCompletionTest : public CtlServiceTest {
 protected:
  using CtlServiceTest::CtlServiceTest;
  void expectCompletions(const std::vector<CompletionCase>& cases) {
    for (const CompletionCase& c : cases) {
      SCOPED_TRACE(c.words);
      const Ending ending = start("ctl complete words " + c.words)->waitForEnd();
      EXPECT_EQ(ending.out, c.out);
      EXPECT_EQ(ending.err, "");
    }
    static_cast<void>(daemon().newLogLines());
  }
};

TEST_F(CtlCompletionTest, OffersWhatCanBeTyped) {
  serve(DEVICE);
  expectLines({{.line = "ctl -q up"}});
  expectCompletions({
      // Words and options, with what they are.
      {"l", "whole\nls\tList the parameters\nlog\tPrint the last commits\n"},
      {"complet", "whole\n"},
      {"--bu", "whole\n--bus\tThe suffix of the bus name, as of ostrel -b\n"},
      {"set --s",
       "whole\n--status\tAs the device itself: also what is read-only\n"
       "--strict\tEnd with status 4 where a value was cut\n"},
      {"get --he", "whole\n--help\tPrint examples and the options\n"},
      {"get -- --he", "whole\n"},
      {"nonsense --qu", "whole\n--quiet\tPrint no results; the status tells\n"},
      {"nonsense mo", "whole\n"},
      // Names.
      {"get po", "whole\nposition[1]\nposition[2]\n"},
      {"get 'position[2'", "whole\nposition[2]\n"},
      {"get po mo", "whole\nmode\n"},
      {"get 'po*'", "whole\n"},
      {"get -- mo", "whole\nmode\n"},
      {"get temp", "whole\ntemperature\n"},
      {"get title", "whole\ntitle[a b]\ntitle[c=d]\n"},
      {"ls c", "whole\nchannel\n"},
      {"watch po", "whole\nposition\n"},
      {"reset t", "open\ntable[\ntitle[\n"},
      {"get table",
       "open\ntable[1\ntable[2\ntable[3\ntable[4\ntable[5\ntable[6\ntable[7\ntable[8\n"
       "table[9\n"},
      {"get 'table[29'",
       "whole\ntable[29][1]\ntable[29][2]\ntable[290][1]\ntable[290][2]\ntable[291][1]\n"
       "table[291][2]\ntable[292][1]\ntable[292][2]\ntable[293][1]\ntable[293][2]\ntable[294][1]\n"
       "table[294][2]\ntable[295][1]\ntable[295][2]\ntable[296][1]\ntable[296][2]\ntable[297][1]\n"
       "table[297][2]\ntable[298][1]\ntable[298][2]\ntable[299][1]\ntable[299][2]\n"},
      // Assignments: what can be set, and once.
      {"set mo", "open\nmode=\n"},
      {"set mode=wide mo", "open\n"},
      {"set temp", "open\n"},
      {"set --status temp", "open\ntemperature=\n"},
      {"get --with mo", "open\nmode=\n"},
      {"get --with=mo", "open\n--with=mode=\n"},
      {"why mo", "whole\nmode\n"},
      {"set 'title[c'", "open\ntitle[c=d]=\n"},
      {"set 'title[c='", "open\ntitle[c=d]=\n"},
      {"set 'title[c=d]='", "whole\ntitle[c=d]=it's\n"},
      // Values, with the other assignments of the line.
      {"set mode=", "whole\nmode=slim\nmode=wide\n"},
      {"why mode=s", "whole\nmode=slim\n"},
      {"set 'position[1]='",
       "whole\nposition[1]=edge\nposition[1]=far\nposition[1]=5\nposition[1]=6\nposition[1]=7\n"
       "position[1]=50\n"},
      {"set 'position[1]=5'", "whole\nposition[1]=5\nposition[1]=50\n"},
      {"set mode=slim 'position[1]='", "whole\nposition[1]=edge\nposition[1]=5\n"},
      {"get --with mode=slim --with 'position[1]='", "whole\nposition[1]=edge\nposition[1]=5\n"},
      {"set mode=nonsense nothing=5 'position[1]=5'", "whole\nposition[1]=5\nposition[1]=50\n"},
      {"set note=", "whole\n"},
      // Of a long range, beginnings.
      {"set wide_one=",
       "open\nwide_one=0\nwide_one=1\nwide_one=2\nwide_one=3\nwide_one=4\nwide_one=5\nwide_one=6\n"
       "wide_one=7\nwide_one=8\nwide_one=9\n"},
      {"set wide_one=2000000",
       "open\nwide_one=2000000\nwide_one=20000000\nwide_one=20000001\nwide_one=20000002\n"
       "wide_one=20000003\nwide_one=20000004\nwide_one=20000005\nwide_one=20000006\n"
       "wide_one=20000007\nwide_one=20000008\nwide_one=20000009\n"},
      {"set wide_one=2000000000", "whole\nwide_one=2000000000\n"},
      {"set wide_one=2000000001", "whole\n"},
      {"set temperature=", "whole\n"},  // only the device may set it
      {"try temperature=", "whole\n"},
      {"set --status temperature=", "whole\ntemperature=30\ntemperature=31\n"},
      {"why temperature=", "whole\ntemperature=30\ntemperature=31\n"},
      {"set 'position[3]='", "whole\n"},
      {"set nothing=", "whole\n"},
      // Files, commits and transactions.
      {"save ''", "files\n"},
      {"save one two", "whole\n"},
      {"diff one ''", "files\n"},
      {"up --from ''", "files\n"},
      {"up --from=va", "files\n"},
      {"undo 1", "whole\n1\n"},
      {"undo 1 2", "whole\n"},
      {"log -n ''", "whole\n"},
      // Options of the bus.
      {"-q -b rack get mo", ""},
      {"-qbrack get mo", ""},
      {"--bus=rack get mo", ""},
      {"get -o rack mo", ""},
      {"get --address=unix:path=/nonexistent mo", "whole\n"},
      {"--address \"$DBUS_SESSION_BUS_ADDRESS\" get mo", "whole\nmode\n"},
      {"-b 'no name' get mo", "whole\n"},
      {"\"$(printf '\\377')\" get mo", ""},
  });
  expectLines({{.line = "ctl transactions"}, {.line = "ctl get mode", .out = "wide\n"}});
}

TEST_F(CtlCompletionTest, OffersTransactionsThatCanBeEnded) {
  serve(DEVICE);
  const std::string open = client().answer("start()");
  const std::string id = open.substr(open.find(' ') + 1, open.find(',') - open.find(' ') - 1);
  expectCompletions({{"transactions --end ''", "whole\n" + id + "\n"}});
}

// Nobody waits for a tab, and none brings up a device.
TEST_F(CtlCompletionTest, DoesNotWaitForTheBringUp) {
  serve(DEVICE, {}, {{"OSTREL_BRING_UP", "1"}});
  expectCompletions({{"get mo", "whole\nmode\n"}, {"set mode=s", "whole\nmode=slim\n"}});
}

TEST_F(CtlCompletionTest, OffersBeginningsOfManyParameters) {
  std::string text = "i index { rangeValid { 1..3 } }\ntable rw { index { i } }\n";
  for (int i = 0; i < 250; ++i) text += "gain_" + std::to_string(i) + " rw { }\n";
  serve(text);
  expectCompletions({{"get ''", "open\ng\nt\n"},
                     {"set gain_249", "open\ngain_249=\n"},
                     {"get t", "whole\ntable[1]\ntable[2]\ntable[3]\n"}});
}

// Somebody may ask why it does not exist. A parameter with indices is not its own instance.
TEST_F(CtlCompletionTest, OffersWhatDoesNotExist) {
  serve(
      "i index { rangeValid ( mode == \"on\" ) { 1 } }\nmode rw { rangeValid { \"off\" } }\n"
      "bare rw { ctrlValid ( mode == \"on\" ) }\nbus rw { index { i } }\nbits rw { }\n");
  expectCompletions({{"why b", "whole\nbare\nbits\n"}, {"get bu", "whole\n"}});
}

class CtlDeniedCompletionTest : public CtlCompletionTest {
 protected:
  CtlDeniedCompletionTest()
      : CtlCompletionTest(
            {.policy = "<deny send_interface='org.tavrel.parameters1' send_member='ListNames'/>"}) {
  }
};

// The policy is a file of the device, which may be older than the program.
TEST_F(CtlDeniedCompletionTest, OffersNames) {
  serve(DEVICE);
  expectCompletions({{"ls r", "whole\nrow\n"}, {"get 'position[2'", "whole\nposition[2]\n"}});
}

TEST_F(CtlCompletionTest, SpeaksToBash) {
  serve(DEVICE);
  expectLines({
      {.line = "ctl complete line 'ostrelctl set pos' pos",
       .out = "open\nposition\\[1\\]=\nposition\\[2\\]=\n"},
      {.line = "ctl complete line 'ostrelctl set mode=s' s", .out = "whole\nslim\n"},
      {.line = "ctl complete line 'ostrelctl get --with=mode=' ''", .out = "whole\nslim\nwide\n"},
      {.line = "ctl complete line \"ostrelctl set 'title[a b]'=i\" i", .out = "whole\nit\\'s\n"},
      {.line = "ctl complete line 'ostrelctl l' l", .out = "whole\nls\nlog\n"},
      {.line = "ctl complete line 'ostrelctl' ostrelctl", .status = 2},
      {.line = "ctl complete", .status = 2},
      {.line = "ctl complete words", .status = 2},
  });
}

TEST_F(CtlCompletionTest, IsSilentWithoutAService) {
  expectLines({
      {.line = "ctl complete words get mo", .status = 3},
      {.line = "ctl complete words und",
       .out = "whole\nundo\tTake back what a commit has changed, "
              "by another commit\n"},
      {.line = "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent ctl complete words get mo",
       .out = "whole\n"},
      // Where there is a display, the library would start a bus.
      {.line =
           "unset DBUS_SESSION_BUS_ADDRESS XDG_RUNTIME_DIR; printf '#!/bin/sh\\ntouch started\\n'"
           " >dbus-launch; chmod +x dbus-launch; PATH=.:$PATH DISPLAY=:0 ctl complete words get "
           "mo; ls",
       .out = "whole\ndbus-launch\n"},
  });
  serve(DEVICE);
  pause();
  expectLines({{.line = "ctl complete words get mo", .status = 3}});
  resume();
}

}  // namespace

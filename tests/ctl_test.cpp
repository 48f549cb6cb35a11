// ostrelctl with a daemon: command lines, and what is printed and returned.
#include <csignal>
#include <fstream>
#include <iterator>

#include "tests/harness/ctl_test.h"

namespace {

std::string exampleText(const std::string& name) {
  std::ifstream file(std::string(EXAMPLES_DIRECTORY) + "/" + name);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

class CtlTest : public CtlServiceTest {
 protected:
  using CtlServiceTest::CtlServiceTest;
  void serveExample(const std::string& name, const std::vector<std::string>& constants = {}) {
    serve(exampleText(name), constants);
  }
  void servePicture() {
    serveExample("picture.ostrel");
    for (const char* name : {"mode", "position", "blanking"}) {
      expectLines({{.line = std::string("ctl --quiet reset ") + name}});
    }
  }
};

TEST_F(CtlTest, ListsWhatThereIs) {
  servePicture();
  expectLines({
      {.line = "ctl ls", .out = "blanking\nchannel\nmode\nposition\n"},
      {.line = "ctl ls '[bm]*'", .out = "blanking\nmode\n"},
      {.line = "ctl ls --instances", .out = "blanking\nmode\nposition[1]\nposition[2]\n"},
      {.line = "ctl ls -i 'pos*'", .out = "position[1]\nposition[2]\n"},
      {.line = "ctl ls -l",
       .out = "ACCESS  NAME               RANGE                       DEFAULT   LINE\n"
              "rw      blanking           0..960                      10        10\n"
              "index   channel            1..2                        -         4\n"
              "rw      mode               1080i/50, 625i/50, 720p/50  1080i/50  3\n"
              "rw      position[channel]  0..1919                     960       5\n"},
      {.line = "ctl ls -li blanking",
       .out = "ACCESS  NAME      VALUE  RANGE   DEFAULT  LINE\n"
              "rw      blanking  10     0..960  10       10\n"},
      {.line = "ctl ls --null 'm*' | tr '\\0' '|'", .out = "mode|"},
      {.line = "ctl ls --json 'pos*'",
       .out = R"([{"name":"position","access":"rw","indices":["channel"],"line":5,"level":1}])"
              "\n"},
      {.line = "ctl ls --json -l blanking",
       .out = R"([{"name":"blanking","access":"rw","indices":[],"line":10,"level":2,)"
              R"("range":{"spans":[[0,960]],"texts":[]},"default":"10"}])"
              "\n"},
      {.line = "ctl ls modes", .err = "no parameter \"modes\": did you mean mode?\n", .status = 5},
      {.line = "ctl ls --quiet"},
  });
}

TEST_F(CtlTest, GetsValues) {
  servePicture();
  expectLines({
      {.line = "ctl get mode", .out = "1080i/50\n"},
      {.line = "ctl get mode blanking", .out = "mode=1080i/50\nblanking=10\n"},
      {.line = "ctl get position", .out = "position[1]=960\nposition[2]=960\n"},
      {.line = "ctl get '*[2]' 'm?de'", .out = "position[2]=960\nmode=1080i/50\n"},
      {.line = "ctl get --json mode 'position[1]'",
       .out = "{\"mode\":\"1080i/50\",\"position[1]\":\"960\"}\n"},
      {.line = "ctl -z get mode | tr '\\0' '|'", .out = "1080i/50|"},
      {.line = "ctl -z get mode blanking | tr '\\0' '|'", .out = "mode=1080i/50|blanking=10|"},
      {.line = "ctl get --with mode=720p/50 --with 'position[1]=1500' 'position[1]' mode",
       .out = "position[1]=1279\nmode=720p/50\n"},
      {.line = "ctl get mode", .out = "1080i/50\n"},  // nothing was stored
      {.line = "ctl get --with mode=sepia mode",
       .err = "cannot set mode to sepia: it takes 1080i/50, 625i/50, 720p/50\n",
       .status = 1},
      {.line = "ctl get mode moed blanking",
       .out = "mode=1080i/50\nblanking=10\n",
       .err = "no parameter \"moed\": did you mean mode?\n",
       .status = 5},
      {.line = "ctl get 'x*'", .err = "no parameter fits \"x*\"\n", .status = 5},
      {.line = "ctl get -3", .err = "no parameter \"-3\"\n", .status = 5},
      {.line = "ctl get -- -x", .err = "no parameter \"-x\"\n", .status = 5},
      {.line = "ctl get --quiet mode"},
      {.line = "ctl transactions"},
  });
}

TEST_F(CtlTest, SetsValuesAndTellsWhatWasCut) {
  servePicture();
  expectLines({
      {.line = "ctl set 'position[1]=1500' blanking=-5",
       .out = "position[1] = 1500\nblanking = 0 (cut from -5: 0..1500, line 10)\n"},
      {.line = "ctl set mode=720p/50",
       .out = "mode = 720p/50\nposition[1] = 1279 (was 1500, because of mode)\n"},
      {.line = "ctl set --strict blanking=0x10", .out = "blanking = 0x10\n"},
      {.line = "ctl set --strict 'position[2]=1500'",
       .out = "position[2] = 1279 (cut from 1500: 0..1279, line 7)\n",
       .status = 4},
      {.line = "ctl set 'position[2]=1500'",
       .out = "position[2] = 1279 (cut from 1500: 0..1279, line 7)\n"},
      {.line = "ctl set --quiet --strict 'position[2]=1500'", .status = 4},
      {.line = "ctl set --json mode=625i/50 blanking=700",
       .out = R"({"stored":[{"name":"mode","value":"625i/50","asked":"625i/50","cut":false},)"
              R"({"name":"blanking","value":"700","asked":"700","cut":false}],)"
              R"("followed":[{"name":"position[1]","before":"1279","after":"719",)"
              R"("because":["mode"]},{"name":"position[2]","before":"1279","after":"719",)"
              R"("because":["mode"]}]})"
              "\n"},
      {.line = "ctl --json set blanking=900",
       .out = R"({"stored":[{"name":"blanking","value":"719","asked":"900","cut":true,)"
              R"("range":{"spans":[[0,719]],"texts":[]},"line":10}],"followed":[]})"
              "\n"},
      {.line = "ctl -z set blanking=1 mode=720p/50 | tr '\\0' '|'",
       .out = "blanking=1|mode=720p/50|"},
      // One refusal, and nothing is stored.
      {.line = "ctl set blanking=7 mode=sepia",
       .err = "cannot set mode to sepia: it takes 1080i/50, 625i/50, 720p/50\n",
       .status = 1},
      {.line = "ctl set blanking=7 mdoe=625i/50",
       .err = "no parameter \"mdoe\": did you mean mode?\n",
       .status = 5},
      {.line = "ctl set blanking=7 position=5",
       .err = "no parameter \"position\": it is position[channel]\n",
       .status = 5},
      {.line = "ctl set 'mode[1]=sepia'",
       .err = "no parameter \"mode[1]\": mode has no index\n",
       .status = 5},
      {.line = "ctl get 'mode[1]' mode",
       .out = "mode=720p/50\n",
       .err = "no parameter \"mode[1]\": mode has no index\n",
       .status = 5},
      {.line = "ctl range 'position[1][1]'",
       .err = "no parameter \"position[1][1]\": it is position[channel]\n",
       .status = 5},
      {.line = "ctl set position=-5",
       .err = "no parameter \"position\": it is position[channel]\n",
       .status = 5},
      // Of one level is lost what comes behind the value that fails.
      {.line = "ctl set 'position[3]=5' 'position[1]=6' 2>&1 | head -2",
       .out = "ostrelctl: cannot set position[3]: it does not exist, line 4: rangeValid { 1..2 }\n"
              "ostrelctl: see ostrelctl why 'position[3]'\n"},
      {.line = "ctl set blanking=7 'position[3]=5'",
       .err = "cannot set position[3]: it does not exist, line 4: rangeValid { 1..2 }\n"
              "see ostrelctl why 'position[3]'\n",
       .status = 1},
      {.line = "ctl get blanking", .out = "1\n"},
      {.line = "ctl reset blanking mode", .out = "blanking = 10\nmode = 1080i/50\n"},
      {.line = "ctl reset moed", .err = "no parameter \"moed\": did you mean mode?\n", .status = 5},
      {.line = "ctl transactions"},
  });
}

TEST_F(CtlTest, KeepsTextsAsTheyAre) {
  serve("name rw { }\nother rw { index { key } }\nkey index { rangeValid { \"a b\", \"c=d\" } }\n");
  expectLines({
      {.line = R"x(ctl set "name=$(printf ' two\nlines\t"x" \\ ')")x",
       .out = R"(name = " two\nlines\t\"x\" \\ ")"
              "\n"},
      {.line = "ctl get name",
       .out = R"(" two\nlines\t\"x\" \\ ")"
              "\n"},
      {.line = "ctl -z get name | tr '\\0' '|'", .out = " two\nlines\t\"x\" \\ |"},
      {.line = "ctl --json get name",
       .out = R"({"name":" two\nlines\t\"x\" \\ "})"
              "\n"},
      {.line = "ctl set 'name=frame store' 'other[c=d]=1=2'",
       .out = "name = \"frame store\"\nother[c=d] = 1=2\n"},
      {.line = "ctl get name", .out = "frame store\n"},
      {.line = "ctl get other", .out = "other[a b]=\nother[c=d]=1=2\n"},
      {.line = "ctl set name=", .out = "name = \"\"\n"},
      {.line = R"x(ctl set "name=$(printf '\377')")x",
       .err = "argument 2 is not valid UTF-8\n",
       .status = 2},
  });
}

TEST_F(CtlTest, GetsTheInstancesThatThereWouldBe) {
  serve(
      "inputs rw { rangeValid { 1..4 } default { 2 } }\n"
      "input index { rangeValid { 1..4 } rangeValid (inputs > 0) { 1..(inputs) } }\n"
      "gain rw { index { input } rangeValid { 0..9 } default { 5 } }\n");
  expectLines({
      {.line = "ctl -q up; ctl get gain", .out = "gain[1]=5\ngain[2]=5\n"},
      {.line = "ctl get --with inputs=3 gain inputs",
       .out = "gain[1]=5\ngain[2]=5\ngain[3]=\ninputs=3\n"},
      {.line = "ctl get --with inputs=1 'gain*'", .out = "gain[1]=5\n"},
      {.line = "ctl get --with 'gain[3]=7' --with inputs=3 gain",
       .out = "gain[1]=5\ngain[2]=5\ngain[3]=7\n"},
      {.line = "ctl -q set inputs=3; ctl get gain", .out = "gain[1]=5\ngain[2]=5\ngain[3]=\n"},
  });
}

TEST_F(CtlTest, AnswersWhatIf) {
  servePicture();
  expectLines({
      {.line = "ctl range 'position[1]'", .out = "0..1919\n"},
      {.line = "ctl range --with mode=720p/50 'position[1]' blanking",
       .out = "position[1]: 0..1279\nblanking: 0..960\n"},
      {.line = "ctl range channel mode",
       .out = "mode: 1080i/50, 625i/50, 720p/50\nchannel: 1..2\n"},
      {.line = "ctl range --json mode channel",
       .out = R"({"mode":{"spans":[],"texts":["1080i/50","625i/50","720p/50"]},)"
              R"("channel":{"spans":[[1,2]],"texts":[]}})"
              "\n"},
      {.line = "ctl range 'position[3]'",
       .out = "unknown\n",
       .err = "what position[3] takes cannot be computed now: see ostrelctl why 'position[3]'\n",
       .status = 1},
      {.line = "ctl range moed", .err = "no parameter \"moed\": did you mean mode?\n", .status = 5},
      {.line = "ctl deps blanking", .out = "mode\nposition[1]\n"},
      {.line = "ctl deps blanking mode", .out = "blanking: mode position[1]\nmode:\n"},
      {.line = "ctl deps --json blanking mode",
       .out = "{\"blanking\":[\"mode\",\"position[1]\"],\"mode\":[]}\n"},
      {.line = "ctl deps -z blanking | tr '\\0' '|'", .out = "mode|position[1]|"},
      {.line = "ctl deps moed", .err = "no parameter \"moed\": did you mean mode?\n", .status = 5},
      {.line = "ctl try mode=625i/50",
       .out = "level 0\n"
              "  mode: 1080i/50 -> 625i/50\n"
              "level 1\n"
              "  position[1]: 960 -> 719 (because of mode)\n"
              "  position[2]: 960 -> 719 (because of mode)\n"
              "  position[1] would take 0..719, not 0..1919 (because of mode)\n"
              "  position[2] would take 0..719, not 0..1919 (because of mode)\n"
              "level 2\n"
              "  blanking would take 0..719, not 0..960 (because of position[1])\n"},
      {.line = "ctl try --strict blanking=2000",
       .out = "level 2\n  blanking: 10 -> 960 (in place of 2000)\n",
       .status = 4},
      {.line = "ctl try blanking=10"},
      {.line = "ctl try --json blanking=2000",
       .out = R"({"changes":[{"name":"blanking","before":"10","after":"960",)"
              R"("because":["blanking"],"asked":"2000","level":2}],"limits":[],"refused":[]})"
              "\n"},
      {.line = "ctl set blanking=960 -q; ctl try blanking=2000",
       .out = "level 2\n  blanking stays 960 (in place of 2000)\n"},
      {.line = "ctl try 'position[3]=5'",
       .err = "cannot set position[3]: it does not exist, line 4: rangeValid { 1..2 }\n"
              "see ostrelctl why 'position[3]'\n",
       .status = 1},
      {.line = "ctl get mode", .out = "1080i/50\n"},
      {.line = "ctl transactions"},
  });
}

// An instance is named where it is read, and not another of its parameter.
TEST_F(CtlTest, TryNamesTheInstancesThatAreRead) {
  serve(
      "count rw { rangeValid { 1..2 } default { 1 } }\n"
      "i index { rangeValid { 1..2 } }\n"
      "j index { rangeValid { 1..2 } ctrlValid ( count > 0 ) }\n"
      "limit rw { index { j } rangeValid { 1..9 } default { 5 } }\n"
      "gain rw { index { i, j } rangeValid { 0..(limit) } default { 5 } }\n"
      "mix rw { rangeValid { 0..(limit[1] + count) } default { 5 } }\n"
      "next rw { rangeValid { 0..(mix) } default { 0 } }\n");
  expectLines({
      {.line = "ctl -q up"},
      {.line = "ctl try 'limit[2]=6'",
       .out = "level 1\n"
              "  limit[2]: 5 -> 6\n"
              "level 2\n"
              "  gain[1][2] would take 0..6, not 0..5 (because of limit[2])\n"
              "  gain[2][2] would take 0..6, not 0..5 (because of limit[2])\n"},
      {.line = "ctl try count=2 'limit[1]=2'",
       .out = "level 0\n"
              "  count: 1 -> 2\n"
              "level 1\n"
              "  limit[1]: 5 -> 2\n"
              "level 2\n"
              "  gain[1][1]: 5 -> 2 (because of count and limit[1])\n"
              "  gain[2][1]: 5 -> 2 (because of count and limit[1])\n"
              "  mix: 5 -> 4 (because of count and limit[1])\n"
              "  gain[1][1] would take 0..2, not 0..5 (because of count and limit[1])\n"
              "  gain[2][1] would take 0..2, not 0..5 (because of count and limit[1])\n"
              "  mix would take 0..4, not 0..6 (because of count and limit[1])\n"
              "level 3\n"
              "  next would take 0..4, not 0..5 (because of mix)\n"},
      {.line = "ctl try --json 'limit[2]=6' | grep -o 'because[^]]*' | sort -u",
       .out = "because\":[\"limit[2\n"},
  });
}

class CtlOlderPolicyTest : public CtlTest {
 protected:
  CtlOlderPolicyTest()
      : CtlTest({.policy = "<deny send_interface='org.tavrel.parameters1' "
                           "send_member='GetUses'/>"}) {}
};

TEST_F(CtlOlderPolicyTest, TryNamesTheParametersThatAreRead) {
  serve(
      "i index { rangeValid { 1..2 } }\nlimit rw { index { i } rangeValid { 1..9 } }\n"
      "top rw { rangeValid { 0..(limit[1]) } }\n");
  expectLines({{.line = "ctl try 'limit[1]=6'",
                .out = "level 0\n  limit[1]: \"\" -> 6\n"
                       "level 1\n  top would take 0..6, not 0 (because of limit)\n"}});
}

TEST_F(CtlTest, TellsWhyAndWhatToDo) {
  servePicture();
  expectLines({
      {.line = "ctl why blanking",
       .out =
           "blanking is 10\n"
           "it can be written\n"
           "it takes 0..960: line 10, rangeValid { 0..(position[1]) }, where position[1] is 960\n"
           "its default is 10: line 10, default { 10 }\n"},
      {.line = "ctl why blanking=960 | sed -n 2p", .out = "960 would be stored\n"},
      {.line = "ctl why mode=sepia | sed -n 2p", .out = "sepia is refused in every situation\n"},
      // The smallest change of another parameter is found between the ends of its range.
      {.line = "ctl why blanking=1200 | sed -n '2p;$p'",
       .out = "1200 would be cut to 960\n"
              "to have it stored: ostrelctl set 'position[1]=1200' blanking=1200\n"},
      {.line = "ctl set mode=720p/50 -q; ctl why 'position[2]=1500' | tail -1",
       .out = "to have it stored: ostrelctl set mode=1080i/50 'position[2]=1500'\n"},
      {.line = "ctl why blanking=1500 | tail -1",
       .out = "to have it stored: ostrelctl set 'position[1]=1500' mode=1080i/50 blanking=1500\n"},
      {.line = "ctl why blanking=5000 | tail -1 | sed 's/[0-9][0-9]*/N/'",
       .out = "no change of one or two parameters that makes it possible was found in N trials\n"},
      {.line = "ctl why 'position[3]'",
       .out = "position[3] is \"\"\n"
              "it does not exist now: line 4, rangeValid { 1..2 }, where channel is 3\n"
              "no parameter that a client can set changes that\n"},
      {.line = "ctl why moed", .err = "no parameter \"moed\": did you mean mode?\n", .status = 5},
      {.line = "ctl why position",
       .err = "no parameter \"position\": it is position[channel]\n",
       .status = 5},
      {.line = "ctl transactions"},
      {.line = "ctl get mode", .out = "720p/50\n"},
  });
}

TEST_F(CtlTest, UnlocksControls) {
  serveExample("frame-synchroniser.ostrel", {"MODEL=pro", "CHANNELS=2", "AUDIO=1"});
  expectLines({
      {.line = "for i in 1 2 3; do ctl reset -q --status '*'; done"},
      {.line = "ctl set proc_link=1 'picture_gain[1]=unity'",
       .out = "proc_link = 1\npicture_gain[1] = 1000 (translated from unity)\n"},
      {.line = "ctl set 'picture_gain[2]=500'",
       .err = "cannot set picture_gain[2]: it is read-only, line 174: ctrlRO (proc_link == 1 && "
              "channel != 1)\nsee ostrelctl why 'picture_gain[2]'\n",
       .status = 1},
      {.line = "ctl why 'picture_gain[2]'",
       .out = "picture_gain[2] is 1000\n"
              "it cannot be written now: line 174, ctrlRO (proc_link == 1 && channel != 1), where "
              "proc_link is 1 and channel is 2\n"
              "it takes 0..2000: line 173, rangeValid { 0..2000 }\n"
              "its default is 1000: line 176, default { 1000 }\n"
              "to make it writable: ostrelctl set proc_link=0\n"},
      {.line = "ctl why 'picture_gain[2]=500' | tail -1",
       .out = "to have it stored: ostrelctl set proc_link=0 'picture_gain[2]=500'\n"},
      {.line = "ctl ls -li picture_gain",
       .out = "ACCESS        NAME             VALUE  RANGE    DEFAULT  LINE\n"
              "rw            picture_gain[1]  1000   0..2000  1000     171\n"
              "rw (not now)  picture_gain[2]  1000   0..2000  1000     171\n"},
      {.line = "ctl why test_pattern_speed | tail -1",
       .out = "to make it writable: ostrelctl set test_pattern=zone_plate\n"},
      {.line = "ctl why wss_mode | tail -2",
       .out = "to make it writable: ostrelctl set output_standard=625i/50\n"
              "  this also changes h_active, h_total, switch_line and 3 more\n"},
      // Two changes are needed: the mode, and fewer groups that share the memory.
      {.line = "ctl why 'audio_delay[1][1]=3000' | tail -1",
       .out = "to have it stored: ostrelctl set audio_delay_mode=manual embed_groups=2 "
              "'audio_delay[1][1]=3000'\n"},
      {.line = "ctl why h_active | tail -1",
       .out = "no parameter that a client can set changes that\n"},
      {.line = "ctl why --json test_pattern_speed",
       .out =
           R"([{"name":"test_pattern_speed","value":"1","exists":true,"writable":false,)"
           R"("range":{"spans":[[-16,16]],"texts":[]},"reasons":[)"
           R"({"question":"exists","answer":"yes","line":0,"statement":"","names":{}},)"
           R"({"question":"writable","answer":"no","line":436,)"
           R"x("statement":"ctrlRO (test_pattern != \"zone_plate\")",)x"
           R"("names":{"test_pattern":"off"}},)"
           R"({"question":"limits","answer":"-16..16","line":437,)"
           R"("statement":"rangeValid { -16..16 }","names":{}},)"
           R"({"question":"default","answer":"1","line":438,"statement":"default { 1 }","names":{}},)"
           R"({"question":"value","answer":"1","line":437,"statement":"rangeValid { -16..16 }",)"
           R"("names":{}}],"unlocks":[{"set":{"test_pattern":"zone_plate"},"effects":[]}],)"
           R"("tried":6}])"
           "\n"},
      {.line = "ctl set temperature=80",
       .err = "cannot set temperature: it is read-only, line 527: ro\n"
              "see ostrelctl why temperature\n",
       .status = 1},
      {.line = "ctl --address \"$BUS\" set temperature=80 2>&1 | tail -1",
       .out = "ostrelctl: see ostrelctl --address " + bus().address() + " why temperature\n"},
      {.line = "ctl set --status genlock_locked=1",
       .out = "genlock_locked = 1\nalarm_summary = 0 (was 1, because of alarm_reference)\n"},
      {.line = "ctl get alarm_reference MODEL", .out = "alarm_reference=0\nMODEL=pro\n"},
      {.line = "ctl reset 'alarm_*' | wc -l", .out = "1\n"},  // what can be written
      {.line = "ctl reset alarm_fan 2>&1 | wc -l", .out = "2\n"},
      {.line = "ctl transactions"},
  });
}

// That the parameter itself changes is no effect to be warned of.
TEST_F(CtlTest, NamesTheOtherEffectsOfAnUnlock) {
  serve(
      "ip rw { rangeValid { 0..255, \"dhcp\" } default { \"dhcp\" } }\n"
      "mask rw { rangeValid (ip != \"dhcp\") { 1..32 } rangeValid (ip == \"dhcp\") { 0 }\n"
      "  ctrlRO (ip == \"dhcp\") }\n");
  expectLines({
      {.line = "ctl up -q"},
      {.line = "ctl why mask=12 | tail -1",
       .out = "to have it stored: ostrelctl set ip=0 mask=12\n"},
      {.line = "ctl why mask | tail -2",
       .out = "to make it writable: ostrelctl set ip=0\n  this also changes mask\n"},
  });
}

TEST_F(CtlTest, NamesBoundsThatShareNoValue) {
  serve("g rw { rangeValid { 0..3 } }\np rw { rangeValid { 1, 2 } rangeValid (g == 1) { 7 } }\n");
  const std::string bounds =
      "line 2, rangeValid { 1, 2 }\n  and line 2, rangeValid (g == 1) { 7 }, where g is 1\n";
  const std::string state = "it cannot be written now: " + bounds +
                            "what it takes cannot be computed now: " + bounds +
                            "it has no default\n";
  expectLines({
      {.line = "ctl -q set g=1 2>/dev/null", .status = 1},
      {.line = "ctl why p | head -n 6", .out = "p is \"\"\n" + state},
      {.line = "ctl why p=7", .out = "p is \"\"\n7 is refused in every situation\n" + state},
      {.line = "ctl why p=2",
       .out = "p is \"\"\n2 would be refused\n" + state +
              "to have it stored: ostrelctl set g=0 p=2\n"},
      {.line = "ctl why p | tail -n 2",
       .out = "to make it writable: ostrelctl set g=0\n  this also changes p\n"},
      {.line = "ctl ls -li p | tail -n 1",
       .out = "rw (not now)  p     \"\"     unknown  -        2\n"},
      {.line = "ctl set g=0 p=2", .out = "g = 0\np = 2\n"},
  });
}

// The command is one for bash and zsh.
TEST_F(CtlTest, ShowsCommandsWithoutUnprintableCharacters) {
  serve(
      "key rw { rangeValid { \"off\", \"a\tb'\x1b[31mc\" } default { \"off\" } }\n"
      "door rw { ctrlRO (key == \"off\") rangeValid { 0..9 } }\n");
  expectLines({
      {.line = "ctl reset -q key; ctl why door | sed -n '$s/.*: //p'",
       .out = "ostrelctl set $'key=a\\tb\\'\\x1b[31mc'\n"},
      {.line = "line=$(ctl why door | sed -n '$s/.*: ostrelctl//p'); bash -c \"'$0' -q $line\"; "
               "ctl get key -z | tr '\\0' '\\n' | sed -n l",
       .out = "a\\tb'\\033[31mc$\n"},
  });
}

// What decides only when another lock is open, and what keeps a candidate from its value.
TEST_F(CtlTest, UnlocksWhatIsLockedTwice) {
  serve(
      "n rw { rangeValid { 1..4 } default { 2 } }\n"
      "on rw { rangeValid { 0..1 } default { 0 } }\n"
      "f rw { ctrlValid (n == 4) ctrlRO (on == 0) rangeValid { 0..9 } default { 1 } }\n"
      "b rw { rangeValid { 0..(n * 5) } default { 1 } }\n"
      "g rw { ctrlRO (b < 15) rangeValid { 0..9 } default { 1 } }\n"
      "h rw { ctrlRO (n < 4) ctrlRO (on == 0) ctrlRO (b == 1) rangeValid { 0..9 } }\n");
  expectLines({
      {.line = "ctl up -q"},
      {.line = "ctl why f | tail -1", .out = "to make it writable: ostrelctl set n=4 on=1\n"},
      {.line = "ctl why f=3 | tail -1", .out = "to have it stored: ostrelctl set n=4 on=1 f=3\n"},
      {.line = "ctl why g | tail -1", .out = "to make it writable: ostrelctl set b=15 n=3\n"},
      {.line = "ctl why g=3 | tail -1", .out = "to have it stored: ostrelctl set b=15 n=3 g=3\n"},
      // Three changes are not looked for.
      {.line = "ctl why h | tail -1 | sed 's/[0-9][0-9]*/N/'",
       .out = "no change of one or two parameters that makes it possible was found in N trials\n"},
      {.line = "ctl get n on b", .out = "n=2\non=0\nb=1\n"},
  });
}

TEST_F(CtlTest, UnlocksWhatItsIndexHides) {
  serve(
      "size rw { rangeValid { 2..6 } default { 2 } }\n"
      "count rw { rangeValid { 1..(size) } default { 1 } }\n"
      "on rw { rangeValid { 0..1 } default { 0 } }\n"
      "top rw { rangeValid { 3..200 } default { 3 } }\n"
      "slot index { rangeValid { 1..8 } rangeValid (count > 0) { 1..(count) } }\n"
      "level rw { index { slot } rangeValid { 0..9 } default { 1 } }\n"
      "gain rw { index { slot } ctrlRO (on == 0) rangeValid { 0..(top) } default { 1 } }\n");
  expectLines({
      {.line = "ctl up -q"},
      {.line = "ctl why 'gain[2]' | tail -1",
       .out = "to make it writable: ostrelctl set count=2 on=1\n"},
      {.line = "ctl why 'level[5]' | tail -1",
       .out = "to make it writable: ostrelctl set count=5 size=5\n"},
      {.line = "ctl why 'level[5]=3' | tail -1",
       .out = "to have it stored: ostrelctl set count=5 size=5 'level[5]=3'\n"},
      {.line = "ctl set -q count=5 size=5 'level[5]=3'; ctl get 'level[5]'", .out = "3\n"},
      {.line = "ctl why 'gain[1]=150' | tail -1",
       .out = "to have it stored: ostrelctl set on=1 top=150 'gain[1]=150'\n"},
  });
}

// What is shown has been tried, in as many commits as are shown: none of them may fail.
class ShownUnlocksTest : public CtlTest {
 protected:
  struct ShownUnlock {
    const char* goal;
    std::string shown;
    const char* value;  // after that; none where nothing is shown
  };

  void expectUnlock(const ShownUnlock& unlock) {
    const std::string goal = unlock.goal;
    expectLines({{.line = "for i in 1 2; do ctl reset -q --status '*'; done; ctl why " + goal +
                          " | sed -n 's/[0-9]* trials*$/N trials/; /^to\\|^no/p'",
                  .out = unlock.shown + "\n"}});
    if (unlock.value == nullptr) return;
    // As somebody pastes it.
    const std::string line =
        "\"$(ctl why " + goal + " | sed -n 's/ostrelctl/ctl -q/g; s/^to [^:]*: //p')\"";
    expectLines({{.line = "eval " + line + " && ctl get " + goal.substr(0, goal.find('=')),
                  .out = std::string(unlock.value) + "\n"}});
  }
};

TEST_F(ShownUnlocksTest, Work) {
  // Nothing depends on far, so it is judged before mid has followed.
  serve(
      "sel rw { rangeValid { 1..4 } default { 1 } }\n"
      "mid ro { rangeValid { (sel * 10) } }\n"
      "far rw { rangeValid { 0..(mid) } default { 5 } }\n"
      "bad rw { rangeValid { 0..9 } rangeValid (sel == 3) { 20..30 } default { 1 } }\n"
      "near rw { rangeValid { 0..(mid) } default { 5 } }\n"
      "worse rw { rangeValid { 0..9 } rangeValid (near == 12) { 20..30 } default { 1 } }\n"
      "needs rw { rangeValid { 0..(mid) } default { 5 } }\n"
      "pair rw { rangeValid { 0..9 } rangeValid (sel == 4 && needs < 35) { 20..30 } default { 1 } }"
      "\n");
  const std::string none =
      "no change of one or two parameters that makes it possible was found in ";
  const ShownUnlock cases[] = {
      {"far=15", "to have it stored: ostrelctl set sel=2 && ostrelctl set far=15", "15"},
      {"far=25", none + "N trials", nullptr},  // with sel=3, bad cannot follow
      {"near=15", "to have it stored: ostrelctl set sel=2 near=15", "15"},
      {"near=12", none + "N trials", nullptr},   // worse cannot follow
      {"needs=33", none + "N trials", nullptr},  // pair cannot, with sel=4
      // With sel=4 alone pair cannot follow.
      {"needs=38", "to have it stored: ostrelctl set sel=4 needs=38", "38"},
  };
  for (const ShownUnlock& each : cases) expectUnlock(each);
}

// The lock of the last in the chain opens where the one in between has followed.
TEST_F(ShownUnlocksTest, WorkWhereFollowersUnlock) {
  serve(
      "m rw { rangeValid { \"off\", \"on\" } default { \"off\" } }\n"
      "d ro { rangeValid (m == \"on\") { 1 } rangeValid (m == \"off\") { 0 } }\n"
      "b rw { rangeValid { 0..9 } ctrlRO (d == 0) default { 3 } }\n"
      "c rw { rangeValid { 0..9 } ctrlRO (d == 0) default { 3 } }\n"
      "user ro { rangeValid { (c) } }\n"
      "once rw { rangeValid { 0..9 } ctrlRO (m == \"off\" || d == 1) default { 3 } }\n");
  const ShownUnlock cases[] = {
      {"b", "to make it writable: ostrelctl set m=on", "3"},
      {"b=4", "to have it stored: ostrelctl set m=on && ostrelctl set b=4", "4"},
      {"c", "to make it writable: ostrelctl set m=on", "3"},
      {"c=4", "to have it stored: ostrelctl set m=on c=4", "4"},
      {"once", "no change of one or two parameters that makes it possible was found in N trials",
       nullptr},
      {"once=4", "to have it stored: ostrelctl set m=on once=4", "4"},
  };
  for (const ShownUnlock& each : cases) expectUnlock(each);
  expectLines({{.line = "ctl -q set --status m=off; ctl why once | grep -o '[0-9]* trial.*'",
                .out = "1 trial\n"}});
}

// What a parameter without limits takes need not be named anywhere.
TEST_F(ShownUnlocksTest, WorkWhereEverythingIsTaken) {
  serve(
      "text rw { default { \"*\" } }\n"
      "all rw { rangeValid { 0..9 } ctrlRO (text == \"*\") default { 3 } }\n"
      "five rw { default { 5 } }\n"
      "but rw { rangeValid { 0..9 } ctrlRO (five == 5) default { 3 } }\n"
      "upto rw { rangeValid { 0..9 } ctrlRO (five >= 4) default { 3 } }\n"
      "on rw { default { 1 } }\n"
      "off rw { rangeValid { 0..9 } ctrlRO (on) default { 3 } }\n");
  const ShownUnlock cases[] = {
      {"all", "to make it writable: ostrelctl set text=x", "3"},
      {"all=4", "to have it stored: ostrelctl set text=0 all=4", "4"},
      {"but", "to make it writable: ostrelctl set five=6", "3"},
      {"upto=4", "to have it stored: ostrelctl set five=3 upto=4", "4"},
      {"off=4", "to have it stored: ostrelctl set on=0 off=4", "4"},
  };
  for (const ShownUnlock& each : cases) expectUnlock(each);
}

// What could be written and what is taken is judged with the values that the commit leaves.
TEST_F(CtlTest, TriesWhatACommitLeaves) {
  serve(
      "m rw { rangeValid { 0..9 } default { 2 } }\n"
      "a rw { rangeValid { 0..(m) } default { 1 } }\n"
      "b rw { rangeValid { 0..9 } ctrlRO (a == 5) default { 1 } }\n"
      "d ro { rangeValid { (m) } }\n"
      "e rw { rangeValid { 0..9 } ctrlRO (d == 2) default { 1 } }\n"
      "f rw { rangeValid { 0..(d) } default { 1 } }\n"
      "s rostrict { rangeValid { 0..9 } default { 1 } }\n"
      "g rw { rangeValid { 0..9 } ctrlRO (s == 1 || m == 2) default { 1 } }\n");
  expectLines({
      {.line = "ctl up -q"},
      {.line = "ctl try a=5", .out = "level 1\n  a: 1 -> 2 (in place of 5)\n"},
      {.line = "ctl try m=5 a=5",
       .out = "level 0\n"
              "  m: 2 -> 5\n"
              "level 1\n"
              "  a: 1 -> 5\n"
              "  d: 2 -> 5 (because of m)\n"
              "  a would take 0..5, not 0..2 (because of m)\n"
              "level 2\n"
              "  b could not be written (because of a)\n"
              "  e could be written (because of d)\n"
              "  f would take 0..5, not 0..2 (because of d)\n"},
      {.line = "ctl try m=1 | grep '^  [ef] '",
       .out = "  e could be written (because of d)\n"
              "  f would take 0..1, not 0..2 (because of d)\n"},
      // What is never announced is stored all the same.
      {.line = "ctl try --status m=3 s=2 | grep '^  g '",
       .out = "  g could be written (because of m)\n"},
      {.line = "ctl transactions"},
      {.line = "ctl get m a d", .out = "m=2\na=1\nd=2\n"},
  });
}

TEST_F(CtlTest, NamesWhatCannotFollow) {
  serve(
      "sel rw { rangeValid { 1..3 } default { 1 } }\n"
      "bad rw { rangeValid { 0..9 } rangeValid (sel == 3) { 20..30 } default { 1 } }\n");
  const std::string why =
      "bad cannot follow: it refuses the value, line 2: rangeValid (sel == 3) { 20..30 }\n";
  expectLines({
      {.line = "ctl set -q sel=1 bad=1; ctl why sel=3 | sed -n 2p",
       .out = "3 would make the commit fail: " + why},
      {.line = "ctl try -q sel=3", .err = "the commit would fail: " + why, .status = 1},
      {.line = "ctl try --json sel=3 2>&1 | grep -o '\"refused.*'",
       .out = R"("refused":[{"name":"bad","why":"its value is refused, line 2: )"
              "rangeValid (sel == 3) { 20..30 }\"}]}\n"},
      {.line = "ctl set sel=3",
       .out = "sel = 3\n",
       .err = "Commit failed because parameter definition is invalid\n" + why,
       .status = 1},
  });
}

TEST_F(CtlTest, EndsTheSearchForUnlocks) {
  std::string keys;
  std::string locks;
  for (int i = 1; i <= 12; ++i) {
    const std::string key = "key" + std::to_string(i);
    keys += key + " rw { rangeValid { 0..1000 } default { 0 } }\n";
    locks += "  ctrlRO (" + key + " != 777)\n";
  }
  serve(keys + "door rw { rangeValid { 0..9 } default { 1 }\n" + locks + "}\n");
  expectLines({
      {.line = "ctl up -q"},
      {.line = "ctl why door | tail -1",
       .out = "no change of one or two parameters that makes it possible was found in 1000 "
              "trials\n"},
  });
}

TEST_F(CtlTest, ShowsAndUndoesCommits) {
  servePicture();
  const std::string shown = "| sed 's/^\\(commit [0-9]*\\), [-0-9]* [:0-9]*, by :1.[0-9]*$/\\1/'";
  expectLines({
      {.line = "ctl set -q mode=720p/50 'position[1]=1000'; ctl set -q blanking=900"},
      {.line = "ctl log -n 2 " + shown,
       .out = "commit 4\n  mode: 1080i/50 -> 720p/50\n  position[1]: 960 -> 1000\n"
              "commit 5\n  blanking: 10 -> 900\n"},
      {.line = "ctl log " + shown + " | wc -l", .out = "12\n"},
      {.line = "ctl --json log -n 1 | sed 's/\"time\":[0-9]*,\"caller\":\":[0-9.]*\"/T/'",
       .out = R"([{"serial":5,T,"changes":[{"name":"blanking","before":"10","after":"900"}]}])"
              "\n"},
      {.line = "ctl undo --dry-run 4",
       .out = "mode: 720p/50 -> 1080i/50\nposition[1]: 1000 -> 960\n"},
      {.line = "ctl undo 4", .out = "mode: 720p/50 -> 1080i/50\nposition[1]: 1000 -> 960\n"},
      {.line = "ctl get mode 'position[1]' blanking",
       .out = "mode=1080i/50\nposition[1]=960\nblanking=900\n"},
      {.line = "ctl undo 4",
       .err = "mode is 1080i/50 by now, not 720p/50\nposition[1] is 960 by now, not 1000\n"
              "nothing is taken back; --force does it all the same\n",
       .status = 1},
      {.line = "ctl undo 5 --json",
       .out = R"({"stored":[{"name":"blanking","value":"10","asked":"10","cut":false}],)"
              R"("followed":[]})"
              "\n"},
      // The first values of a device have taken the place of empty ones.
      {.line = "ctl undo 1 --force", .out = "nothing to take back\n"},
      {.line = "ctl undo 1 --force --json", .out = "{\"stored\":[],\"followed\":[]}\n"},
      {.line = "ctl undo 1 --force -n --json", .out = "[]\n"},
      {.line = "ctl undo 100", .err = "no commit 100: kept are 1 to 7\n", .status = 5},
      {.line = "ctl undo x",
       .err = "undo: SERIAL: \"x\" is not a whole number from 0 to 4294967295\n",
       .status = 2},
  });
}

TEST_F(CtlTest, SaysWhatAnUndoLeaves) {
  serve(
      "source rw { rangeValid { \"in\", \"ref\" } default { \"in\" } }\n"
      "type rw { rangeValid { 0..9 } ctrlRO (source != \"ref\") default { 1 } }\n"
      "alarm ro { rangeValid (source == \"in\") { 0 } rangeValid (source != \"in\") { 1 } }\n");
  const std::string left = "type stays 5: it is read-only, line 2: ctrlRO (source != \"ref\")\n";
  expectLines({
      {.line = "ctl up -q; ctl set -q source=ref type=5; ctl get alarm", .out = "1\n"},
      // What follows comes back by itself, and is no loss.
      {.line = "ctl undo -n 4",
       .out = "alarm: 1 -> 0\nsource: ref -> in\n",
       .err = left,
       .status = 1},
      {.line = "ctl undo 4", .out = "alarm: 1 -> 0\nsource: ref -> in\n", .err = left, .status = 1},
      {.line = "ctl get source type", .out = "source=in\ntype=5\n"},
      {.line = "ctl set --status -q type=6; ctl undo 6",
       .out = "nothing to take back\n",
       .err = "type stays 6: it is read-only, line 2: ctrlRO (source != \"ref\")\n",
       .status = 1},
  });
}

TEST_F(CtlTest, ListsAndEndsTransactions) {
  servePicture();
  const std::string id = client().answer("start()");
  EXPECT_EQ(client().answer("set(" + id + ", 'mode', '720p/50')"), "()");
  expectLines({
      {.line = "ctl transactions --json | sed 's/\"id\":[0-9]*/I/;s/\"seconds\":[0-9]*/S/'",
       .out = "[{I,\"owner\":\"\",\"staged\":1,S}]\n"},
      {.line = "ctl transactions | sed 's/[ 0-9]*//g'", .out = "IDOWNERSTAGEDSECONDS\nanybody\n"},
      {.line = "ctl transactions --end " + id},
      {.line = "ctl transactions --end " + id,
       .err = "no transaction " + id + " is open\n",
       .status = 5},
      {.line = "ctl transactions --json", .out = "[]\n"},
  });
}

TEST_F(CtlTest, LeavesNoTransactionOpenWhereItIsInterrupted) {
  servePicture();
  pause();
  const std::unique_ptr<Process> client = start("exec \"$0\" set mode=720p/50");
  usleep(300000);  // so that it waits for its first reply
  kill(client->pid(), SIGINT);
  EXPECT_EQ(client->waitForEnd().status, -SIGINT);
  resume();
  expectLines({{.line = "ctl transactions"}, {.line = "ctl get mode", .out = "1080i/50\n"}});
}

TEST_F(CtlTest, SaysWhereThereIsNoService) {
  const std::string noName =
      "no service: nobody has the bus name org.tavrel.transaction; is ostrel running, with the "
      "same -b?\n";
  expectLines({{.line = "ctl get mode", .err = noName, .status = 3},
               {.line = "ctl set mode=1", .err = noName, .status = 3},
               {.line = "ctl get mode --address \"$BUS\"", .err = noName, .status = 3},
               {.line = "DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent ctl ls",
                .err = "no bus at unix:path=/nonexistent: Could not connect: No such file or "
                       "directory\n",
                .status = 3}});
  servePicture();
  expectLines({
      {.line = "DBUS_SESSION_BUS_ADDRESS= ctl --address=\"$BUS\" get mode", .out = "1080i/50\n"},
      {.line = "ctl -b rack get mode",
       .err = "no service: nobody has the bus name org.tavrel.transaction.rack; is ostrel running, "
              "with the same -b?\n",
       .status = 3},
      {.line = "ctl -o rack get mode",
       .err = "no service: org.tavrel.transaction does not serve org.tavrel.parameters1 at "
              "/parameters/rack; was it started with another -o, or is it older than this "
              "program?\n",
       .status = 3},
  });
  pause();
  expectLines({{.line = "ctl --timeout 1 get mode",
                .err = "no service: org.tavrel.transaction does not reply to GetState within 1 s\n",
                .status = 3}});
  resume();
}

// A bus may limit the calls of a client that wait for their replies, as that of the system does.
class CtlLimitedBusTest : public CtlTest {
 protected:
  CtlLimitedBusTest() : CtlTest({.limits = {{"max_replies_per_connection", 110}}}) {}
};

TEST_F(CtlLimitedBusTest, MakesManyCalls) {
  serve("i index { rangeValid { 1..500 } }\ngain rw { index { i } rangeValid { 0..9 } }\n");
  expectLines({
      {.line = "ctl set $(seq -f 'gain[%g]=3' 500) | tail -n 1", .out = "gain[500] = 3\n"},
      {.line = "ctl set $(seq -f 'gain[%g]=4' 499) 'gain[500]=x'",
       .err = "cannot set gain[500] to x: it takes 0..9\n",
       .status = 1},
      {.line = "ctl ls -li | grep -c 0..9", .out = "500\n"},
      {.line = "ctl transactions"},
  });
  pause();
  expectLines({{.line = "ctl --no-wait --timeout 1 deps $(seq -f 'gain[%g]' 500)",
                .err = "no service: org.tavrel.transaction does not reply to get_deps within 1 s\n",
                .status = 3}});
  resume();
}

// The service passes over a bracket that is not closed, and over what is behind the last one.
TEST_F(CtlTest, RefusesWrongBrackets) {
  servePicture();
  const std::string open = "a \"[\" has no \"]\"\n";
  expectLines({
      {.line = "ctl ls '['", .err = "The pattern \"[\" is wrong: " + open, .status = 2},
      {.line = "ctl watch '['", .err = "watch: PATTERN: \"[\": " + open, .status = 2},
      {.line = "ctl get 'position['", .err = "get: NAME: \"position[\": " + open, .status = 2},
      {.line = "ctl get mode 'position[1'",
       .err = "get: NAME: \"position[1\": " + open,
       .status = 2},
      {.line = "ctl get 'position[1]x'",
       .err = "get: NAME: \"position[1]x\": there is more behind a \"]\"\n",
       .status = 2},
      {.line = "ctl set 'position[=5'",
       .err = "set: NAME=VALUE: \"position[\": " + open,
       .status = 2},
      {.line = "ctl range --with 'position[=5' mode",
       .err = "range: --with: \"position[\": " + open,
       .status = 2},
      {.line = "ctl why 'position[1'",
       .err = "why: NAME[=VALUE]: \"position[1\": " + open,
       .status = 2},
      {.line = "ctl get 'position[*'", .out = "position[1]=960\nposition[2]=960\n"},
  });
}

TEST_F(CtlTest, RefusesWrongCommandLines) {
  expectLines({
      {.line = "ctl", .err = "no word is given; ostrelctl --help lists them\n", .status = 2},
      {.line = "ctl -b", .err = "--bus: 1 required STRING missing\n", .status = 2},
      {.line = "ctl ls --timeout",
       .err = "ls: --timeout: 1 required SECONDS missing\n",
       .status = 2},
      {.line = "ctl gte mode", .err = "no word \"gte\": did you mean get?\n", .status = 2},
      {.line = "ctl frobnicate",
       .err = "no word \"frobnicate\"; ostrelctl --help lists them\n",
       .status = 2},
      {.line = "ctl get", .err = "get: NAME is required\n", .status = 2},
      {.line = "ctl get --jsn a",
       .err = "no option \"--jsn\": did you mean --json?\n",
       .status = 2},
      {.line = "ctl set --strct a=1",
       .err = "no option \"--strct\": did you mean --strict?\n",
       .status = 2},
      {.line = "ctl set gain", .err = "\"gain\" is not of the form NAME=VALUE\n", .status = 2},
      {.line = "ctl set a=1 a=2", .err = "\"a\" is given two values\n", .status = 2},
      {.line = "ctl transactions 5", .err = "transactions does not take \"5\"\n", .status = 2},
      {.line = "ctl --json --null ls",
       .err = "--json and --null exclude each other\n",
       .status = 2},
      {.line = "ctl --null why a", .err = "--null is not for why\n", .status = 2},
      {.line = "ctl --json metrics", .err = "--json is not for metrics\n", .status = 2},
      {.line = "ctl -b 'a b' ls", .err = "\"a b\" cannot end a bus name\n", .status = 2},
      {.line = "ctl -o 'a b' ls", .err = "\"a b\" cannot end an object path\n", .status = 2},
      {.line = "ctl --address '' ls", .err = "ls: --address: it is empty\n", .status = 2},
      {.line = "ctl health --max-latency -1",
       .err = "health: --max-latency: \"-1\" is not a number from 0 on\n",
       .status = 2},
      {.line = "ctl --timeout 0 ls 2>&1 | wc -l", .out = "1\n"},
  });
}

TEST_F(CtlTest, HelpsWithExamplesFirst) {
  expectLines({
      {.line = "ctl --help | head -2", .out = "Examples:\n  ostrelctl ls --long\n"},
      {.line = "ctl get --help | head -2", .out = "Examples:\n  ostrelctl get mode\n"},
      {.line = "ctl --version | cut -c 1-15", .out = "ostrel Built on\n"},
      // Each word has help of its own.
      {.line = "for word in $(ctl --help | sed -n 's/^  \\([a-z]\\{2,\\}\\)  .*/\\1/p'); do "
               "ctl $word --help | grep -c \"ostrelctl $word\" | sed 's/^[1-9][0-9]*$/ok/'; done | "
               "sort -u",
       .out = "ok\n"},
      {.line = "ctl --help > /dev/full",
       .err = "cannot write: No space left on device\n",
       .status = 1},
  });
}

TEST_F(CtlTest, ColoursOnlyATerminal) {
  servePicture();
  const std::string onTerminal =
      "TERM=xterm script -qec '\"'$0'\" ls -l blanking' /dev/null | head -1 | cut -c 1-2 | od -An "
      "-c";
  expectLines({{.line = onTerminal, .out = " 033   [  \\n\n"},
               {.line = "NO_COLOR=1; export NO_COLOR; " + onTerminal, .out = "   A   C  \\n\n"},
               {.line = "ctl ls -l blanking | head -1 | cut -c 1-2 | od -An -c",
                .out = "   A   C  \\n\n"}});
}

}  // namespace

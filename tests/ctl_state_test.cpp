// ostrelctl: whole devices and files of values.
#include "tests/harness/ctl_test.h"

namespace {

constexpr const char* PICTURE =
    "mode rw { rangeValid { \"wide\", \"slim\" } default { \"wide\" } }\n"
    "channel index { rangeValid { 1..2 } }\n"
    "position rw { index { channel } rangeValid ( mode == \"wide\" ) { 0..100 }\n"
    "  rangeValid ( mode == \"slim\" ) { 0..50 } default { 40 } }\n"
    "note rw { }\n"
    "temperature ro { default { 30 } }\n";

TEST_F(CtlServiceTest, BringsUpByLevels) {
  const struct {
    const char* what;
    std::string text;
    std::string up;
    std::vector<std::string> values;
    std::string err = {};
    int status = 0;
  } cases[] = {
      {"a range that follows later",
       "gain rw { rangeValid { 0..(limit) } default { 70 } }\n"
       "limit ro { rangeValid ( mode == \"video\" ) { 100 } rangeValid ( mode != \"video\" ) { 10 "
       "} }\nmode rw { rangeValid { \"film\", \"video\" } default { \"video\" } }\n",
       "up: 3 values in 3 levels\n",
       {"gain=70", "limit=100", "mode=video"}},
      {"an index that a default narrows",
       "n rw { rangeValid { 1..3 } default { 2 } }\n"
       "i index { rangeValid { 1..3 } rangeValid ( n == 0 ) { 1..3 } rangeValid ( n ) { 1..(n) } "
       "}\ngain rw { index { i } default { 5 } }\n",
       "up: 3 values in 2 levels\n",
       {"gain[1]=5", "gain[2]=5", "n=2"}},
      {"a ring, against the order of names",
       "a rw { default { (b + 1) } }\nb rw { rangeValid { 3..5 } rangeValid ( a < 0 ) { 4 } "
       "default { 3 } }\n",
       "up: 2 values in 1 level\n",
       {"a=4", "b=3"}},
      {"limits of each other",
       "high rw { rangeValid { (low + 1)..9 } default { 4 } }\n"
       "low rw { rangeValid { 0..(high - 1) } default { 3 } }\n",
       "up: 2 values in 1 level\n",
       {"high=4", "low=3"}},
      {"a computed value of 0",
       "mode rw { default { 5 } }\nsecond ro { rangeValid { (mode == 4) } }\n",
       "up: 2 values in 2 levels\n",
       {"mode=5", "second=0"}},
      {"one parameter", "mode rw { default { 5 } }\n", "up: 1 value in 1 level\n", {"mode=5"}},
      {"no default",
       "mode rw { rangeValid { 0..1 } }\nother rw { default { 1 } }\n",
       "up: 2 values in 1 level, 1 of them empty, without a default\n",
       {"mode=", "other=1"}},
      {"a ring that never rests",
       "a rw { default { (a + 1) } }\nb rw { default { (a > 0) } }\n",
       "up: 2 values in 2 levels\n",
       {"b=1"},
       "never at rest: a depend on each other\n",
       1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    serve(c.text);
    expectLines({{.line = "ctl up", .out = c.up, .err = c.err, .status = c.status}});
    for (const std::string& value : c.values) {
      const std::string name = value.substr(0, value.find('='));
      expectLines(
          {{.line = "ctl get '" + name + "'", .out = value.substr(name.size() + 1) + "\n"}});
    }
    static_cast<void>(client().newSignals());
    expectOrderlyEnd();
  }
}

TEST_F(CtlServiceTest, KeepsWhatAFileHolds) {
  serve(PICTURE);
  expectLines({
      {.line = "printf 'position[1]=80\\nposition[2]=20\\nmode=slim\\n' >file; ctl up --from file",
       .out = "up: 5 values in 2 levels, 1 of them empty, without a default\n"
              "position[1] = 50 (cut from 80: 0..50, line 4)\n"
              "kept 2 of 3\n"},
      {.line = "ctl get '*'",
       .out = "mode=slim\nnote=\nposition[1]=50\nposition[2]=20\ntemperature=30\n"},
      {.line = "ctl up --strict --from file >/dev/null", .status = 4},
      {.line =
           "printf 'temperature=61\\npositon[1]=5\\nposition[3]=1\\n' >file; ctl up --from file",
       .out = "up: 5 values in 2 levels, 1 of them empty, without a default\nkept 1 of 3\n",
       .err = "absent: position[3] does not exist now\n"
              "unknown: no parameter \"positon[1]\": did you mean position[1]?\n",
       .status = 5},
      {.line = "ctl get temperature", .out = "61\n"},
      {.line = "ctl up --from nowhere",
       .err = "cannot read nowhere: No such file or directory\n",
       .status = 2},
      {.line = "echo mode >file; ctl up --from file",
       .err = "file, line 1: this is not NAME=VALUE\n",
       .status = 2},
      {.line = "printf 'mode=wide\\n\\nmode=slim\\n' | ctl up --from -",
       .err = "-, line 3: mode is given two values\n",
       .status = 2},
  });
}

TEST_F(CtlServiceTest, SavesRestoresAndCompares) {
  serve(PICTURE);
  expectLines({
      {.line = "ctl -q up"},
      {.line = "ctl -q set \"note= a\nb\""},
      {.line = "ctl save", .out = "mode=wide\nnote=\" a\\nb\"\nposition[1]=40\nposition[2]=40\n"},
      {.line = "ctl save --status | tail -n 1", .out = "temperature=30\n"},
      {.line = "ln -s real file; echo old >real; chmod 600 real; ctl save file; stat -c %a real; "
               "test -L file; ls; head -n 1 real",
       .out = "600\nfile\nreal\nmode=wide\n"},
      {.line = "ctl save nowhere/file",
       .err = "cannot write nowhere/file: No such file or directory\n",
       .status = 1},
      {.line = "ctl diff file"},
      {.line = "ctl -q set mode=slim 'position[1]=7' note=x"},
      {.line = "ctl diff file",
       .out = "mode: wide -> slim\nnote: \" a\\nb\" -> x\nposition[1]: 40 -> 7\n",
       .status = 1},
      {.line = "ctl save now; echo 'gian=1' >>now; ctl diff now file",
       .out = "gian: 1 -> (absent)\nmode: slim -> wide\nnote: x -> \" a\\nb\"\n"
              "position[1]: 7 -> 40\n",
       .status = 1},
      {.line = "sed -i 's/\\[1\\]=40/[1]=90/' real; ctl restore --dry-run file",
       .out = "mode: slim -> wide\nnote: x -> \" a\\nb\"\nposition[1]: 7 -> 90\n"},
      {.line = "ctl get mode", .out = "slim\n"},
      {.line = "ctl restore file", .out = "restored 4 of 4\n"},
      {.line = "ctl get 'position[1]'", .out = "90\n"},
      {.line = "ctl restore now",
       .out = "restored 4 of 5\n",
       .err = "unknown: no parameter \"gian\"\n",
       .status = 5},
      {.line = "echo 'position[2]=999' | ctl restore -",
       .out = "position[2] = 50 (cut from 999: 0..50, line 4)\nrestored 0 of 1\n"},
      {.line = "echo temperature=99 | ctl restore --status -", .out = "restored 1 of 1\n"},
  });
}

TEST_F(CtlServiceTest, WatchesAlsoAnotherDaemon) {
  serve(PICTURE);
  expectLines({{.line = "ctl -q up"}});
  const std::unique_ptr<Process> watch = start("exec \"$0\" watch 'position*'");
  // It watches as soon as it is told of a change.
  while (client().answer("single_get('note')") != "'seen'" && watch->running()) {
    expectLines({{.line = "sleep 0.2; ctl -q set note=seen"}});
  }
  expectLines({{.line = "sleep 0.3; ctl -q set 'position[2]=5'"}});
  EXPECT_EQ(watch->readLine(), "position[2]: 40 -> 5");
  static_cast<void>(client().newSignals());
  expectOrderlyEnd();
  serve(PICTURE);
  expectLines({{.line = "sleep 0.3; ctl -q up"}});
  // They follow the mode before they get their own defaults.
  EXPECT_EQ(watch->readLine(), "position[1]: \"\" -> \"\"");
  EXPECT_EQ(watch->readLine(), "position[2]: \"\" -> \"\"");
  EXPECT_EQ(watch->readLine(), "position[1]: \"\" -> 40");
  EXPECT_EQ(watch->errorsSoFar(),
            "ostrelctl: the service has gone; waiting for it\n"
            "ostrelctl: the service is back; all values may be others\n");
  expectOrderlyEnd();
  bus().stop();
  EXPECT_EQ(watch->waitForEnd().status, 3);
}

TEST_F(CtlServiceTest, SavesWhatWasSetToTheEmptyText) {
  constexpr const char* NOT_SAVED = "not saved: full is empty, and no set makes it so\n";
  serve(
      "name rw { default { \"unnamed\" } }\n"
      "full rw { rangeValid { 0..9 } default (name == \"x\") { 5 } }\n"
      "lamp ro { default { 1 } }\n"
      "order wo { }\n");
  expectLines({
      {.line = "ctl save", .out = "name=\n", .err = NOT_SAVED},  // nothing has a value yet
      {.line = "ctl -q up; ctl -q set name=; ctl save f; cat f",
       .out = "name=\n",
       .err = NOT_SAVED},
      {.line = "ctl save --status", .out = "lamp=1\nname=\n", .err = NOT_SAVED},
  });
}

// A file has what a restoration can bring about, and the rest is told.
TEST_F(CtlServiceTest, SavesTheEmptyTextWhereItCanBeSet) {
  const struct {
    const char* statements;
    bool isSaved;
  } cases[] = {
      {"", true},
      {"rangeValid { 1..9 }", false},
      {"rangeValid { 0..9 }", false},  // a set is refused at once
      {"rangeValid { \"a\", \"b\" }", false},
      {"rangeValid (on != 1) { 0..9 }", true},
      {"rangeValid (on != 1) { 1..9 }", false},  // it would become 1
      {"rangeValid (on != 1) { \"a\" }", false},
      {"rangeValid { 0..(on + 7) }", true},
      {"rangeValid { 1..(on + 7) }", false},
      {"rangeValid { 1..(7 / on) }", true},  // limits that cannot be computed
      {"rangeValid { 1, 2 } rangeValid (on != 1) { 7 }", false},
      {"ctrlRO (on)", true},
      {"index { i } rangeValid { 1..9 }", false},
  };
  std::string text = "i index { rangeValid { 1..1 } }\non ro { }\n";
  std::string file;
  std::string leftOut;
  char name = 'n';
  for (const auto& [statements, isSaved] : cases) {
    const std::string parm = std::string("p") + name++;
    const bool isIndexed = std::string_view(statements).starts_with("index");
    text += parm + " rw { " + statements + " }\n";
    if (isSaved) file += parm + "=\n";
    if (!isSaved) leftOut += (leftOut.empty() ? "" : ", ") + parm + (isIndexed ? "[1]" : "");
  }
  serve(text);
  leftOut.replace(leftOut.rfind(", "), 2, " and ");
  leftOut = "not saved: " + leftOut + " are empty, and no set makes them so\n";
  expectLines({
      {.line = "ctl save f; cat f", .out = file, .err = leftOut},
      {.line = "ctl save --json | tr -d '{}\"\\n' | tr ',' '\\n' | sed 's/:/=/'; echo",
       .out = file,
       .err = leftOut},
      {.line = "ctl set -q pn=x pr=5 pu=1; ctl restore f && ctl get pn pr pu",
       .out = "restored 5 of 5\npn=\npr=\npu=\n"},
      {.line = "ctl set -q po=5; ctl save --status 2>&1 >f | grep -c po; grep p[oy] f",
       .out = "0\npo=5\npy=\n"},
      {.line = "ctl transactions"},
  });
}

TEST_F(CtlServiceTest, RestoresTheEmptyTextAndRefusesWhatIsOutside) {
  serve(
      "name rw { default { \"unnamed\" } }\n"
      "limit rw { rangeValid { 0..9 } default { 5 } }\n");
  expectLines({
      {.line = "ctl -q up; ctl -q set name=; ctl save f; cat f", .out = "limit=5\nname=\n"},
      {.line = "ctl -q set name=other; ctl diff f", .out = "name: \"\" -> other\n", .status = 1},
      {.line = "ctl restore f; ctl get name", .out = "restored 2 of 2\n\n"},
      {.line = "ctl -q set name=other; ctl up -q --from f; ctl get name", .out = "\n"},
      {.line = "echo limit=70 | ctl restore --dry-run -",
       .err = "would be refused: limit: it takes 0..9, not 70\n",
       .status = 1},
      {.line = "echo limit=70 | ctl restore -",
       .out = "restored 0 of 1\n",
       .err = "refused: limit: it takes 0..9, not 70\n",
       .status = 1},
  });
}

// What a value of the file locks is stored before it, in the situation that the rest leads to.
TEST_F(CtlServiceTest, RestoresWhatTheFileLocks) {
  serve(
      "lock rw { rangeValid { 0..1 } default { 0 } }\n"
      "gain rw { rangeValid { 0..(most) } ctrlRO (lock == 1) default { 5 } }\n"
      "most rw { rangeValid { 0..99 } default { 9 } }\n"
      "main_lock rw { rangeValid { 0..1 } default { 0 } ctrlRO (lock == 1) }\n"
      "tint rw { rangeValid { 0..9 } ctrlRO (main_lock == 1) default { 5 } }\n"
      "deep rw { rangeValid { 0..9 } ctrlValid (main_lock == 1) }\n"
      "slow rw { rangeValid { 0..1 } default { 0 } }\n"
      "rate rw { rangeValid (slow == 0) { 0..50 } rangeValid (slow == 1) { 0..10 } default { 9 }\n"
      "  ctrlValid (slow == 0) }\n");
  const char* const file = "printf 'gain=50\nlock=1\nmain_lock=1\nmost=60\ntint=2\n' >f; ";
  expectLines({
      {.line = "ctl -q up; " + std::string(file) + "ctl restore --dry-run f",
       .out = "gain: 5 -> 50\nlock: 0 -> 1\nmain_lock: 0 -> 1\nmost: 9 -> 60\ntint: 5 -> 2\n"},
      {.line = "ctl restore f; ctl diff f", .out = "restored 5 of 5\n"},
      // What is locked already stays so.
      {.line = "sed -i s/gain=50/gain=40/ f; ctl restore --dry-run f",
       .err = "would be refused: gain: it is not writable\n",
       .status = 1},
      {.line = "ctl restore f",
       .out = "restored 4 of 5\n",
       .err = "refused: gain: it is not writable\n",
       .status = 1},
      {.line = "ctl -q set lock=0; ctl -q set main_lock=0; ctl restore f; ctl diff f",
       .out = "restored 5 of 5\n"},
      {.line = "ctl -q set lock=0; ctl -q set main_lock=0; "
               "printf 'deep=3\nlock=1\nmain_lock=1\n' >g; ctl restore --dry-run g",
       .out = "deep: \"\" -> 3\nlock: 0 -> 1\nmain_lock: 0 -> 1\n"},
      {.line = "ctl restore g; ctl diff g", .out = "restored 3 of 3\n"},
      {.line = "printf 'rate=7\nslow=1\n' | ctl restore -",
       .out = "restored 1 of 2\n",
       .err = "absent: rate does not exist now\n",
       .status = 1},
      {.line = "ctl transactions"},
  });
}

TEST_F(CtlServiceTest, EndsAWatchThatCannotBeWritten) {
  serve(PICTURE);
  expectLines({{.line = "ctl -q up"}});
  for (const char* options : {"", "--json"}) {
    SCOPED_TRACE(options);
    const std::unique_ptr<Process> watch =
        start(std::string("exec \"$0\" ") + options + " watch > /dev/full");
    for (int i = 0; watch->running(); ++i) {
      expectLines({{.line = "ctl -q set note=" + std::to_string(i) + "; sleep 0.05"}});
    }
    const Ending ending = watch->waitForEnd();
    EXPECT_EQ(ending.err, "ostrelctl: cannot write: No space left on device\n");
    EXPECT_EQ(ending.status, 1);
  }
  static_cast<void>(client().newSignals());
}

TEST_F(CtlServiceTest, WatchesLimits) {
  serve(PICTURE);
  expectLines({{.line = "ctl -q up"}});
  const struct {
    const char* arguments;
    std::vector<std::string> lines;
  } cases[] = {
      {"--limits",
       {"mode: wide -> slim", "position[1]: 80 -> 50", "position: limits changed",
        "note: \"\" -> x"}},
      {"", {"mode: wide -> slim", "position[1]: 80 -> 50", "note: \"\" -> x"}},
      {"--limits 'position[2]'", {"position: limits changed"}},
      {"--limits 'pos*'", {"position[1]: 80 -> 50", "position: limits changed"}},
      {"--limits mode", {"mode: wide -> slim"}},
      {"--json --limits 'm*'", {R"({"name":"mode","before":"wide","after":"slim"})"}},
      {"--json --limits 'position[2]'", {R"({"limits":"position"})"}},
      {"--json --time note", {R"({"name":"note","before":"","after":"x","time":T})"}},
      {"--time note", {"T note: \"\" -> x"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.arguments);
    expectLines({{.line = "ctl -q set mode=wide 'position[1]=80' note="}});
    // It watches once the first change is told; after the last one, it has told all.
    const std::unique_ptr<Process> watch = start(
        std::string("exec sh -c '\"$0\" watch \"$@\" | sed -u \"s/:[0-9]\\{16\\}/:T/; s/^[-0-9]* "
                    "[:0-9]* /T /\"' \"$0\" ") +
        c.arguments);
    expectLines({{.line = "sleep 0.3; ctl -q set mode=slim; ctl -q set note=x"}});
    for (const std::string& line : c.lines) EXPECT_EQ(watch->readLine(), line);
  }
  static_cast<void>(client().newSignals());
}

TEST_F(CtlServiceTest, PrintsJson) {
  serve(PICTURE);
  expectLines({
      {.line = "ctl --json up",
       .out = R"({"up":5,"empty":1,"refused":0})"
              "\n"},
      {.line = "printf 'position[1]=180\\ntemperature=61\\npositon=3\\nposition[9]=1\\n' | "
               "ctl --json up --from - 2>/dev/null",
       .out = R"({"kept":1,"cut":[{"name":"position[1]","asked":"180","value":"100",)"
              R"("range":{"spans":[[0,100]],"texts":[]}}],"refused":[],"absent":["position[9]"],)"
              R"("unknown":["positon"]})"
              "\n",
       .status = 5},
      {.line = "ctl --json save",
       .out = R"({"mode":"wide","note":"","position[1]":"100","position[2]":"40"})"
              "\n"},
      {.line = "ctl --json save --status file; cat file",
       .out = "mode=wide\nnote=\nposition[1]=100\nposition[2]=40\ntemperature=61\n"},
      {.line = "ctl --json diff file", .out = "[]\n"},
      {.line = "sed -i 's/=40/=30/' file; echo gone=4 >>file; ctl --json diff file 2>/dev/null",
       .out = R"([{"name":"gone","before":"4","after":null},)"
              R"({"name":"position[2]","before":"30","after":"40"}])"
              "\n",
       .status = 5},
      {.line = "sed -i '/temp/d;/gone/d' file; ctl --json restore --dry-run file",
       .out = R"([{"name":"position[2]","before":"40","after":"30"}])"
              "\n"},
      {.line = "ctl --json restore file",
       .out = R"({"restored":4,"cut":[],"refused":[],"absent":[],"unknown":[]})"
              "\n"},
      {.line = "echo temperature=1 | ctl --json restore - 2>/dev/null",
       .out = R"({"restored":0,"cut":[],"refused":[{"name":"temperature",)"
              R"("why":"it is not writable"}],"absent":[],"unknown":[]})"
              "\n",
       .status = 1},
      // Nothing to take back: the first commit has filled empty values.
      {.line = "ctl --json undo 1 --force",
       .out = R"({"stored":[],"followed":[]})"
              "\n"},
      {.line = "ctl --json undo 1 --force --dry-run", .out = "[]\n"},
  });
}

}  // namespace

#include "play/player.h"

#include <gtest/gtest.h>

#include <set>

#include "play/engine_device.h"
#include "play/session_line.h"
#include "play/session_reader.h"
#include "vid_std.h"

namespace {

using Texts = std::vector<std::string>;

const char* const PICTURE =
    "mode rw { rangeValid { \"1080i/50\", \"720p/50\" } default { \"1080i/50\" } }\n"
    "channel index { rangeValid { 1..2 } }\n"
    "position rw { index { channel } rangeValid { 0..(vidStd::mode::spal - 1) } default { 960 } }\n"
    "title rw { }\n";

// What was played, a line each: "3 c=1: set a 1 -> refused: ...", with a "!" in front where it is
// not as expected.
class Lines final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override {
    std::string line = played.isAsExpected ? "" : "!";
    line += std::to_string(played.operation.place.line);
    if (!played.variables.empty()) line += " " + played.variables;
    line += ": " + std::string(operationText(played.operation));
    const std::string outcome = played.outcome.shown();
    lines.push_back(line + (outcome.empty() ? "" : " -> " + outcome));
    notes = played.outcome.notes;
  }

  Texts lines;
  Texts notes;  // of the last one
};

struct Played {
  Texts lines;
  Texts notes;
};

Played played(const std::string& text, const char* definitions, const PlayConstants& constants) {
  initVidStdTables();
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [](const std::string&, std::string&) { return 1; };
  readSession("s", text, readFile, session, errors);
  for (const SessionError& error : errors) ADD_FAILURE() << shownError(error);
  const StartDevice start = [&](const PlayConstants& given) {
    return startEngineDevice(definitions, given);
  };
  Lines lines;
  const std::optional<SessionError> error = playSession(session, start, constants, lines);
  if (error) lines.lines.push_back(shownError(*error));
  return {lines.lines, lines.notes};
}

Texts play(const std::string& text, const char* definitions = PICTURE,
           const PlayConstants& constants = {}) {
  return played(text, definitions, constants).lines;
}

Texts notesOf(const std::string& text) { return played(text, PICTURE, {}).notes; }

TEST(Player, ComparesOutcomes) {
  const struct {
    const char* operation;
    const char* line;
  } cases[] = {
      {"single_get mode -> 1080i/50", "2: single_get mode -> 1080i/50"},
      {"single_get mode -> \"1080i/50\"", "2: single_get mode -> 1080i/50"},
      {"single_get mode -> 1080i", "!2: single_get mode -> 1080i/50"},
      {"single_get mode ->", "!2: single_get mode -> 1080i/50"},
      {"single_get mode", "2: single_get mode -> 1080i/50"},
      {"single_get title -> \"\"", "2: single_get title -> \"\""},
      {"single_get title ->", "!2: single_get title -> \"\""},
      {"single_set title \"a b\" -> title=\"a b\"", "2: single_set title \"a b\" -> title=\"a b\""},
      {"single_set title \"a b\" -> title=a b", "!2: single_set title \"a b\" -> title=\"a b\""},
      {"range position[1] -> 0..1919", "2: range position[1] -> 0..1919"},
      {"range position[1] -> \"0..1919\"", "!2: range position[1] -> 0..1919"},
      {"range position[1] -> 0..1919 1920", "!2: range position[1] -> 0..1919"},
      {"range mode -> 1080i/50 720p/50", "2: range mode -> \"1080i/50\" \"720p/50\""},
      {"range title ->", "2: range title"},
      {"set mode x -> refused: parameter value is invalid",
       "2: set mode x -> refused: parameter value is invalid"},
      {"set mode x -> refused: Set failed because parameter value is invalid",
       "2: set mode x -> refused: parameter value is invalid"},
      {"set mode x -> refused: parameter name is invalid",
       "!2: set mode x -> refused: parameter value is invalid"},
      {"set mode x -> refused:", "!2: set mode x -> refused: parameter value is invalid"},
      {"set mode x ->", "!2: set mode x -> refused: parameter value is invalid"},
      {"set mode x", "2: set mode x -> refused: parameter value is invalid"},
      {"set mode 720p/50 -> refused: parameter value is invalid", "!2: set mode 720p/50"},
      {"validate mode x -> false", "2: validate mode x -> false"},
      {"commit -> mode=720p/50", "!2: commit"},
  };
  for (const auto& c : cases) {
    const Texts lines = play(std::string("up\n") + c.operation);
    ASSERT_EQ(lines.size(), 2U) << c.operation;
    EXPECT_EQ(lines.back(), c.line) << c.operation;
  }
}

// "5" the text and 5 the number are two things in a range, and only there.
TEST(Player, TellsTextsFromNumbersInRanges) {
  const char* const definitions = "a rw { rangeValid { (1 + 4), \"7\" } } b rw { }";
  EXPECT_EQ(play("set b 1\nrange a -> 5 \"7\"\nrange a -> \"5\" \"7\"\nrange a -> 5 7\n"
                 "get b -> \"1\"",
                 definitions),
            (Texts{"1: set b 1", "2: range a -> 5 \"7\"", "!3: range a -> 5 \"7\"",
                   "!4: range a -> 5 \"7\"", "5: get b -> 1"}));
}

TEST(Player, RepeatsLoops) {
  EXPECT_EQ(play("for t in a \"b c\": single_set title $t"),
            (Texts{"1 t=a: single_set title $t -> title=a",
                   "1 t=\"b c\": single_set title $t -> title=\"b c\""}));
  EXPECT_EQ(play("up\nfor c in $channel: get position[$c] -> 960"),
            (Texts{"1: up -> mode=1080i/50 position[1]=960 position[2]=960 title=",
                   "2 c=1: get position[$c] -> 960", "2 c=2: get position[$c] -> 960"}));
  EXPECT_EQ(
      play("for m in $mode: validate mode $m"),
      (Texts{"1 m=1080i/50: validate mode $m -> true", "1 m=720p/50: validate mode $m -> true"}));
  EXPECT_EQ(play("for a b in 1..2 x y:\n  for c in 3 -1..0:\n    set title $a${b}$c"),
            (Texts{"3 a=1 b=2 c=3: set title $a${b}$c", "3 a=1 b=2 c=-1: set title $a${b}$c",
                   "3 a=1 b=2 c=0: set title $a${b}$c", "3 a=x b=y c=3: set title $a${b}$c",
                   "3 a=x b=y c=-1: set title $a${b}$c", "3 a=x b=y c=0: set title $a${b}$c"}));
  // What is staged decides as well, and a span in quotes is a text.
  EXPECT_EQ(play("set mode 720p/50\nfor p in \"1..2\": validate position[1] $p"),
            (Texts{"1: set mode 720p/50", "2 p=1..2: validate position[1] $p -> true"}));
  std::set<std::string> standards;
  for (const vidStd_t& standard : vidStds()) standards.insert(standard.name);
  EXPECT_EQ(play("for s in $standards: set title $s").size(), standards.size());
}

TEST(Player, SaysWhyALoopHasNoValues) {
  const struct {
    const char* text;
    const char* error;
  } cases[] = {
      {"for x in $nobody: up",
       "s:1:10: there is no variable, index or parameter instance \"nobody\""},
      {"for x in $position[7]: up",
       "s:1:10: there is no variable, index or parameter instance \"position[7]\""},
      {"for x in $position: up",
       "s:1:10: there is no variable, index or parameter instance \"position\""},
      {"for x in $title: up", "s:1:10: \"title\" may have any value"},
      {"for x y in 1 2 3: up", "s:1:1: 3 values are no whole rounds of 2"},
      {"for x in 1 9..0: up", "s:1:12: \"9..0\" has no number: the lower one comes first"},
      {"for x in 0..4294967296: up",
       "s:1:10: \"0..4294967296\" is no span of whole numbers of 32 bits, such as 1..4"},
      {"for x in 1...3: up",
       "s:1:10: \"1...3\" is no span of whole numbers of 32 bits, such as 1..4"},
      {"for x in 1..: up", "s:1:10: \"1..\" is no span of whole numbers of 32 bits, such as 1..4"},
      {"for x in 1..1000001: up", "s:1:1: the loop has more than 1000000 values"},
      {"for x in -2147483648..2147483647: up", "s:1:1: the loop has more than 1000000 values"},
  };
  for (const auto& c : cases) {
    const Texts lines = play(c.text);
    EXPECT_EQ(lines.empty() ? "" : lines.front(), c.error) << c.text;
  }
}

TEST(Player, PlaysNoMoreThanAPersonWaitsFor) {
  const Texts lines =
      play("for a in 1..1000:\n  for b in 1..1000:\n    for c in 1..1000: constants");
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines.back(), "s:3:23: more than 1000000 operations and rounds of loops are played");
}

TEST(Player, HasTransactionsByName) {
  EXPECT_EQ(play("set title a\nget title -> a\nstart b\nb: get title -> \"\"\nb: set title b\n"
                 "commit -> title=a\nb: commit -> title=b\nend b\n"
                 "b: commit -> refused: invalid transaction id\nset title c\nstart\ncommit ->"),
            (Texts{"1: set title a", "2: get title -> a", "3: start b", "4: b: get title -> \"\"",
                   "5: b: set title b", "6: commit -> title=a", "7: b: commit -> title=b",
                   "8: end b", "9: b: commit -> refused: invalid transaction id", "10: set title c",
                   "11: start", "12: commit"}));
}

TEST(Player, StartsTheDeviceAnewWithConstants) {
  const char* const definitions = "a rw { rangeValid { 1..(TOP) } default { (TOP) } }";
  EXPECT_EQ(play("constants\nup\nconstants TOP=3 MORE=\"x y\"\nget a\nup\nconstants", definitions,
                 {{"TOP", "9"}}),
            (Texts{"1: constants -> TOP=9", "2: up -> a=9", "3: constants TOP=3 MORE=\"x y\"",
                   "4: get a -> \"\"", "5: up -> a=3", "6: constants -> MORE=\"x y\" TOP=3"}));
  testing::internal::CaptureStderr();
  EXPECT_EQ(play("constants TOP=3\nup\nconstants TOP=0\nup", definitions),
            (Texts{"1: constants TOP=3", "2: up -> a=3", "s:3:1: the device does not start"}));
  EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(Player, BringsTheDeviceUp) {
  EXPECT_EQ(play("up position[2]=50 title=\"as it was\""),
            (Texts{"1: up position[2]=50 title=\"as it was\" -> mode=1080i/50 position[1]=960 "
                   "position[2]=50 title=\"as it was\""}));
  EXPECT_EQ(play("up", "a rw { default { (a + 1) } }\nb rw { default { 3 } }").front().substr(0, 8),
            "1: up ->");
  EXPECT_TRUE(play("up", "a rw { default { (a + 1) } }")
                  .front()
                  .ends_with("refused: these never agree: a"));
  EXPECT_EQ(play("up",
                 "i index { rangeValid { 1..1001 } } j index { rangeValid { 1..1000 } }\n"
                 "a rw { index { i, j } }"),
            (Texts{"1: up -> refused: the device has more than 1000000 instances"}));
  // An index without values leaves no instance, however many values another has.
  EXPECT_EQ(
      play("up",
           "i index { rangeValid { 0..2147483647 } } j index { }\n"
           "a rw { index { i, j } default { 1 } } b rw { index { j, i } } c rw { default { 2 } }"),
      (Texts{"1: up -> c=2"}));
}

TEST(Player, RefusesToBringUpWhatTheTextDoesNotHave) {
  const struct {
    const char* operation;
    const char* error;
  } cases[] = {
      {"up nosuch=1", "s:1:4: there is no parameter \"nosuch\""},
      {"up title=a  mod=1", "s:1:13: there is no parameter \"mod\"; did you mean \"mode\"?"},
      {"up postion[1]=1", "s:1:4: there is no parameter \"postion\"; did you mean \"position\"?"},
      {"up =1", "s:1:4: there is no parameter \"\""},
      {"up channel=1", "s:1:4: there is no parameter \"channel\""},
      {"up position=1", "s:1:4: \"position\" has 1 index value, and \"position\" names none"},
      {"up position[1][2]=1",
       "s:1:4: \"position\" has 1 index value, and \"position[1][2]\" names 2"},
      {"up title[1]=1", "s:1:4: \"title\" has no index values, and \"title[1]\" names 1"},
      {"for p in mode moed: up $p=x",
       "s:1:24: there is no parameter \"moed\"; did you mean \"mode\"?"},
  };
  for (const auto& c : cases) {
    const Texts lines = play(c.operation);
    EXPECT_EQ(lines.empty() ? "" : lines.back(), c.error) << c.operation;
  }
  // An instance that does not exist now, or ever, is one that a device may have had.
  EXPECT_EQ(
      play("up position[3]=1 mode=sepia").front(),
      "1: up position[3]=1 mode=sepia -> mode=1080i/50 position[1]=960 position[2]=960 title=");
}

TEST(Player, TriesACommit) {
  EXPECT_EQ(play("up\nsingle_set position[1] 1500\nset mode 720p/50\n"
                 "try -> mode=720p/50 position[1]=1279\ntry -> mode=720p/50 position[1]=1279\n"
                 "commit -> mode=720p/50 position[1]=1279\ntry ->\n"
                 "set position[3] 1\ntry -> refused: parameter index is invalid\n"
                 "end\ntry -> refused: invalid transaction id")
                .back(),
            "11: try -> refused: invalid transaction id");
}

// What a difference is about is explained.
TEST(Player, ExplainsDifferences) {
  const struct {
    const char* operation;
    Texts names;
  } cases[] = {
      {"range position[1] -> 0..1919", {}},
      {"range position[1] -> 0", {"position[1]"}},
      {"range mode title -> 0", {"mode", "title"}},
      {"single_get position[1] -> 0", {"position[1]"}},
      {"single_set mode 720p/50 -> position[1]=5 mode=720p/50", {"position[1]"}},
      {"single_set mode 720p/50 -> mode=1", {"mode"}},
      {"set mode 720p/50 -> refused: x", {}},
      {"deps position -> x", {}},
  };
  for (const auto& c : cases) {
    Texts names;
    for (const std::string& note : notesOf(std::string("up\n") + c.operation)) {
      const std::string name = note.substr(0, note.find(' '));
      if (names.empty() || names.back() != name) names.push_back(name);
    }
    EXPECT_EQ(names, c.names) << c.operation;
  }
}

// A value that was replaced is told with the statement that has done so.
TEST(Player, ExplainsWhatAValueHasBecome) {
  const char* const text =
      "p rw { rangeValid { 0..9 } valueChange { \"top\" -> 5 } valueChange { 3 -> 4 } default { 3 "
      "} }\n"
      "q rw { rangeValid { 0..(p) } default { 7 } }";
  const Texts ofP = {"p is 5", "p has the range 0..9: line 1, rangeValid { 0..9 }",
                     "p has the default 3: line 1, default { 3 }",
                     "p becomes 4 by a reset: line 1, valueChange { 3 -> 4 }"};
  Texts all = {"p=top becomes 5: line 1, valueChange { \"top\" -> 5 }"};
  all.insert(all.end(), ofP.begin(), ofP.end());
  for (const char* const operations :
       {"single_set p top -> p=top", "set p top\ncommit -> p=top", "set_status p top\ncommit ->"}) {
    EXPECT_EQ(played(std::string("up\n") + operations, text, {}).notes, all) << operations;
  }
  // What was reset was not written.
  EXPECT_EQ(played("single_set p top\nsingle_reset p -> p=3", text, {}).notes.front(), "p is 4");
  EXPECT_EQ(played("up\nsingle_set q 9 -> q=9", text, {}).notes.front(),
            "q=9 becomes 4: line 2, rangeValid { 0..(p) }; p is 4");
  EXPECT_EQ(played("up\nwhy q", text, {}).notes.back(),
            "becomes 4 by a reset: line 2, rangeValid { 0..(p) }; p is 4");
}

TEST(Player, ExplainsWhatIsAsked) {
  EXPECT_EQ(notesOf("up\nwhy title"), (Texts{"is \"\"", "may have any value", "has no default"}));
  EXPECT_EQ(notesOf("up\nset mode 720p/50\nwhy position[2] 1500"),
            (Texts{"becomes 1279: line 3, rangeValid { 0..(vidStd::mode::spal - 1) }; "
                   "vidStd::mode::spal is 1280",
                   "is accepted: line 3, rangeValid { 0..(vidStd::mode::spal - 1) }; "
                   "vidStd::mode::spal is 1280"}));
}

}  // namespace

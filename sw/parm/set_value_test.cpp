#include "sw/parm/set_value.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/system_log.h"
#include "tests/support/definitions.h"

namespace {

using Texts = TextSituation::Texts;
using Lines = std::vector<std::string>;

// One call of setValue, and all that can be seen of it.
class SetValue : public testing::Test {
 protected:
  SetValue() : redirection_([this](const std::string& line) { log_.push_back(line); }) {}

  /// Sets `value` and compares the result and the lines of the log, and whether the instance now
  /// holds the value, or what it held before.
  struct Expected {
    SetCode code;
    std::string value;
    Lines log = {};
  };
  void expectSet(ParmDef& parm, const std::string& given, const IndexTuple& indices,
                 const Texts& texts, SetOptions options, const Expected& expected) {
    SCOPED_TRACE('"' + given + "\" to " + testing::PrintToString(indices) + " in " +
                 testing::PrintToString(texts));
    log_.clear();
    const std::string before = parm.committedText(indices);
    TextIndices present(parm, texts);
    const SetResult result =
        setValue(parm, given, indices, ownSituation(parm, texts), present, options);
    EXPECT_EQ(result.code, expected.code);
    EXPECT_EQ(result.value, expected.value);
    EXPECT_EQ(log_, expected.log);
    const bool isStored = isAccepted(result.code) && !options.dryRun;
    EXPECT_EQ(parm.committedText(indices), isStored ? result.value : before);
    EXPECT_EQ(result.held, isStored ? parm.committed(indices) : nullptr);
  }
  void expectSet(ParmDef& parm, const std::string& given, const Texts& texts,
                 const Expected& expected) {
    expectSet(parm, given, {}, texts, {}, expected);
  }

 private:
  // What of the texts the parameter itself sees; each is seen by somebody.
  static Situation ownSituation(const ParmDef& parm, const Texts& texts) {
    Situation situation(parm.variables().size());
    for (const auto& entry : texts) {
      const std::string& name = entry.first;
      const std::optional<uint32_t> slot = parm.variables().find(name);
      if (slot) situation.bind(*slot, operandOf(entry.second));
      EXPECT_TRUE(slot || std::any_of(parm.indices().begin(), parm.indices().end(),
                                      [&](const IndexDef* index) {
                                        return index->variables().find(name).has_value();
                                      }))
          << name << " is used nowhere";
    }
    return situation;
  }

  Lines log_;
  LogRedirection redirection_;
};

constexpr SetOptions FORCED = {.force = true};
constexpr SetOptions DRY = {.dryRun = true};

TEST_F(SetValue, NeverWritesModeNever) {
  // What its indices are is not even asked.
  const IndexDef row = makeIndex({.name = "row", .base = {"0..1"}});
  ParmDef parm = makeParm({.indices = {&row}, .mode = MODE_NEVER});
  for (const std::string value : {"5", "auto", ""}) {
    expectSet(parm, value, {"0"}, {}, {}, {SET_NOT_STORED, ""});
    expectSet(parm, value, {"0"}, {}, FORCED, {SET_NOT_STORED, ""});
    expectSet(parm, value, {"7", "8"}, {}, DRY, {SET_NOT_STORED, ""});
  }
}

TEST_F(SetValue, DoesNotWriteWhatIsNotValid) {
  const IndexDef row = makeIndex({.name = "row", .base = {"0..1"}});
  ParmText text = {.indices = {&row}, .mode = MODE_ROSTRICT};
  text.common.validIf = {"on", "row || on == 2"};
  ParmDef parm = makeParm(text);
  expectSet(parm, "5", {"1"}, {{"on", "0"}}, FORCED, {SET_NOT_STORED, ""});
  expectSet(parm, "5", {"9"}, {}, {}, {SET_NOT_STORED, ""});  // before its index is looked at
  // The parameter's own conditions come before its indices are bound.
  expectSet(parm, "5", {"1"}, {{"on", "1"}}, {}, {SET_NOT_STORED, ""});
  expectSet(parm, "5", {"1"}, {{"on", "2"}}, {}, {SET_STORED_UNREPORTED, "5"});
}

TEST_F(SetValue, WritesByModeReadOnlyConditionsAndForce) {
  struct {
    AccessMode mode;
    SetOptions how;
    std::string readOnlyIf;
    Expected expected;
  } const cases[] = {
      {MODE_NORMAL, {}, "0", {SET_STORED, "5"}},
      {MODE_NORMAL, {}, "1", {SET_NOT_STORED, ""}},
      {MODE_NORMAL, FORCED, "1", {SET_STORED, "5"}},
      {MODE_NORMAL, DRY, "0", {SET_STORED, "5"}},
      {MODE_NORMAL, DRY, "1", {SET_NOT_STORED, ""}},
      {MODE_WRITE_ONLY, {}, "1", {SET_STORED, "5"}},
      {MODE_WRITE_ONLY, FORCED, "1", {SET_STORED, "5"}},
      // A stored value has a code of its own, as nobody is told of it.
      {MODE_ROSTRICT, {}, "0", {SET_STORED_UNREPORTED, "5"}},
      {MODE_ROSTRICT, {}, "1", {SET_NOT_STORED, ""}},
      {MODE_ROSTRICT, FORCED, "1", {SET_STORED_UNREPORTED, "5"}},
      {MODE_ROSTRICT, DRY, "0", {SET_STORED_UNREPORTED, "5"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::to_string(c.mode) + " read-only if " + c.readOnlyIf);
    ParmDef parm = makeParm({.mode = c.mode, .readOnlyIf = {c.readOnlyIf}});
    expectSet(parm, "5", {}, {}, c.how, c.expected);
  }
}

TEST_F(SetValue, AsksTheReadOnlyConditionsWithTheIndicesBound) {
  const IndexDef row = makeIndex({.name = "row", .base = {"0..1"}});
  ParmDef parm = makeParm({.indices = {&row}, .readOnlyIf = {"row == 1"}});
  expectSet(parm, "5", {"0"}, {}, {}, {SET_STORED, "5"});
  expectSet(parm, "5", {"1"}, {}, {}, {SET_NOT_STORED, ""});
  expectSet(parm, "5", {"1"}, {}, FORCED, {SET_STORED, "5"});
  // A refused index comes first.
  expectSet(parm, "5", {"2"}, {}, {},
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index value[\"row\"=\"2\"]", "Var list begin",
              "Var list end"}});
}

// Two indices: the values of "column" depend on that of "row", which exists while "rows" says so.
class SetValueOfInstances : public SetValue {
 protected:
  IndexDef row_ = makeIndex({.name = "row",
                             .validIf = {"rows"},
                             .base = {"0..9", "all"},
                             .translations = {{"top", "0"}}});
  IndexDef column_ = makeIndex({.name = "column",
                                .validIf = {"row != 5"},
                                .ranges = {{"row == 0", {"0..3"}}, {"row == 1", {"a", "b"}}}});
  ParmDef parm_ = makeParm({.common = {.name = "gain", .base = {"0..99"}},
                            .indices = {&row_, &column_},
                            .defaults = {{"mode", "mode"}}});
};

TEST_F(SetValueOfInstances, StoresUnderTheTuple) {
  const Texts texts = {{"rows", "1"}};
  expectSet(parm_, "5", {"0", "3"}, texts, {}, {SET_STORED, "5"});
  expectSet(parm_, "6", {"1", "a"}, texts, {}, {SET_STORED, "6"});
  expectSet(parm_, "7", {"0", "3"}, texts, {}, {SET_STORED, "7"});
  EXPECT_EQ(parm_.committedText({"0", "3"}), "7");
  EXPECT_EQ(parm_.committedText({"1", "a"}), "6");
  EXPECT_EQ(parm_.committed({"0", "2"}), nullptr);
}

TEST_F(SetValueOfInstances, RefusesAnIndexThatIsNotValid) {
  expectSet(parm_, "5", {"0", "3"}, {{"rows", "0"}, {"mode", "pal"}}, {},
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index[row]", "Var list begin", "   \"mode\"=\"pal\"",
              "   \"rows\"=\"0\"", "Var list end"}});
  // The second index sees the first one's value.
  expectSet(parm_, "5", {"5", "3"}, {{"rows", "1"}}, FORCED,
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index[column]", "Var list begin", "   \"row\"=\"5\"",
              "   \"rows\"=\"1\"", "Var list end"}});
}

TEST_F(SetValueOfInstances, RefusesAnIndexValue) {
  const Lines withoutRow = {"Var list begin", "   \"rows\"=\"0x1\"", "Var list end"};
  const auto expectRefused = [&](const IndexTuple& indices, const std::string& error, Lines dump) {
    dump.insert(dump.begin(), "set: ERROR \"gain\": " + error);
    expectSet(parm_, "5", indices, {{"rows", "0x1"}}, {}, {SET_INVALID_INDEX, "", dump});
  };
  // Outside the base bounds; nothing is corrected.
  expectRefused({"10", "0"}, "Invalid index value[\"row\"=\"10\"]", withoutRow);
  expectRefused({"-1", "0"}, "Invalid index value[\"row\"=\"-1\"]", withoutRow);
  expectRefused({"", "0"}, "Invalid index value[\"row\"=\"\"]", withoutRow);
  expectRefused({"any", "0"}, "Invalid index value[\"row\"=\"any\"]", withoutRow);
  // Outside the conditional bounds that apply.
  const Lines withRow0 = {"Var list begin", "   \"row\"=\"0\"", "   \"rows\"=\"0x1\"",
                          "Var list end"};
  expectRefused({"0", "4"}, "Invalid index value[\"column\"=\"4\"]", withRow0);
  // Where no conditional bounds apply, no value will do.
  const Lines withRow2 = {"Var list begin", "   \"row\"=\"2\"", "   \"rows\"=\"0x1\"",
                          "Var list end"};
  expectRefused({"2", "0"}, "Invalid index value[\"column\"=\"0\"]", withRow2);
  expectRefused({"2", "a"}, "Invalid index value[\"column\"=\"a\"]", withRow2);
}

TEST_F(SetValueOfInstances, TakesIndexValuesAsTheyAreWritten) {
  const Texts texts = {{"rows", "1"}};
  expectSet(parm_, "5", {"0x0", "0x3"}, texts, {}, {SET_STORED, "5"});
  EXPECT_EQ(parm_.committed({"0", "3"}), nullptr);
  // A translated index value is accepted, and bound as it was given.
  expectSet(parm_, "5", {"top", "0"}, texts, {},
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index value[\"column\"=\"0\"]", "Var list begin",
              "   \"row\"=\"top\"", "   \"rows\"=\"1\"", "Var list end"}});
}

TEST_F(SetValueOfInstances, RefusesAnotherNumberOfIndices) {
  const Texts texts = {{"rows", "1"}};
  const auto expectCount = [&](const IndexTuple& indices, const std::string& figures) {
    expectSet(parm_, "5", indices, texts, {},
              {SET_INVALID_INDEX, "", {"set: ERROR \"gain\": Not enough indices " + figures}});
  };
  expectCount({}, "2>0");
  expectCount({"0"}, "2>1");
  expectCount({"0", "0", "0"}, "2>3");
  // The values that are there are looked at first.
  expectSet(parm_, "5", {"10"}, texts, {},
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index value[\"row\"=\"10\"]", "Var list begin",
              "   \"rows\"=\"1\"", "Var list end"}});
}

TEST_F(SetValueOfInstances, IsQuietAboutIndicesOnRequest) {
  const SetOptions quiet = {.quietIndices = true};
  const Expected refused = {SET_INVALID_INDEX, ""};
  expectSet(parm_, "5", {"0", "0"}, {{"rows", "0"}}, quiet, refused);
  expectSet(parm_, "5", {"10", "0"}, {{"rows", "1"}}, quiet, refused);
  expectSet(parm_, "5", {"0"}, {{"rows", "1"}}, quiet, refused);
  expectSet(parm_, "5", {"0", "0"}, {{"rows", "1"}}, quiet, {SET_STORED, "5"});
}

TEST_F(SetValue, NamesOneIndexTooMany) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef indexed = makeParm({.indices = {&row}});
  expectSet(indexed, "5", {"0", "0"}, {}, {},
            {SET_INVALID_INDEX, "", {"set: ERROR \"gain\": Not enough indices 1>2"}});
  ParmDef plain = makeParm({});
  expectSet(plain, "5", {"0"}, {}, {},
            {SET_INVALID_INDEX, "", {"set: ERROR \"gain\": Not enough indices 0>1"}});
}

TEST_F(SetValue, ChecksAnIndexByItsOverride) {
  // A parameter serves as an index here: with rules it takes every index value.
  const ParmDef row =
      makeParm({.common = {.name = "row", .base = {"0..1"}}, .rules = {{"0", "0", "0"}}});
  ParmDef parm = makeParm({.indices = {&row}});
  expectSet(parm, "5", {"7"}, {}, {}, {SET_STORED, "5"});
}

TEST_F(SetValue, CorrectsByTheBaseBounds) {
  ParmDef parm =
      makeParm({.common = {.base = {"0..9", "auto"},
                           .translations = {{"max", "99"}, {"peak", "max"}, {"3", "4"}}}});
  struct {
    std::string given, stored;
  } const cases[] = {
      {"5", "5"},      {"9", "9"},       {"10", "9"},      {"15", "9"},
      {"-1", "0"},     {"0x0A", "9"},    {"0x09", "0x09"},  // an accepted text stays as it is
      {"off", "auto"}, {"auto", "auto"}, {"", "auto"},     {"3", "4"},
      {"max", "9"},    {"peak", "9"},  // a target that is a source is followed
  };
  // Without conditional bounds there is no invalid value.
  for (const auto& c : cases) expectSet(parm, c.given, {}, {SET_STORED, c.stored});
}

TEST_F(SetValue, CorrectsTheEmptyValueBySpans) {
  ParmDef withZero = makeParm({.common = {.base = {"0..9"}}});
  expectSet(withZero, "", {}, {SET_STORED, ""});
  ParmDef withoutZero = makeParm({.common = {.base = {"3..9"}}});
  expectSet(withoutZero, "", {}, {SET_STORED, "3"});
  ParmDef free = makeParm({});
  expectSet(free, "", {}, {SET_STORED, ""});
  expectSet(free, "auto", {}, {SET_STORED, "auto"});
}

TEST_F(SetValue, CorrectsByTheConditionalBoundsThatApply) {
  ParmDef parm = makeParm({.common = {.ranges = {{"a", {"0..9"}}, {"b", {"20..29"}}}}});
  const Texts both = {{"a", "1"}, {"b", "1"}};
  expectSet(parm, "5", both, {SET_STORED, "5"});
  expectSet(parm, "25", both, {SET_STORED, "25"});
  expectSet(parm, "30", both, {SET_STORED, "9"});
  expectSet(parm, "5", {{"b", "1"}}, {SET_STORED, "20"});
  // Where none applies, every value stays as it is.
  expectSet(parm, "77", {}, {SET_STORED, "77"});
}

TEST_F(SetValue, AsksTheBaseBoundsAgainAfterConditionalOnes) {
  ParmDef parm = makeParm({.common = {.base = {"0..9"},
                                      .ranges = {{"a", {"20..29"}}, {"b", {"5..7"}}},
                                      .translations = {{"20", "2"}, {"-5", "50"}}}});
  expectSet(parm, "15", {}, {SET_STORED, "9"});
  expectSet(parm, "8", {{"b", "1"}}, {SET_STORED, "7"});
  // The base bounds are asked for the translated value, but the value itself is stored.
  expectSet(parm, "5", {{"a", "1"}}, {SET_STORED, "20"});
  expectSet(parm, "-5", {{"a", "1"}}, {SET_STORED, "20"});
}

TEST_F(SetValue, RefusesWhatConditionalBoundsBringOutOfTheBase) {
  ParmDef parm =
      makeParm({.common = {.name = "level", .base = {"0..9"}, .ranges = {{"a", {"20..29"}}}}});
  expectSet(parm, "5", {}, {SET_STORED, "5"});
  // The log shows the value as corrected, and no variables.
  expectSet(parm, "5", {{"a", "1"}},
            {SET_INVALID_VALUE, "", {"set: ERROR \"level\": Invalid value \"20\""}});
  expectSet(parm, "25", {{"a", "1"}},
            {SET_INVALID_VALUE, "", {"set: ERROR \"level\": Invalid value \"20\""}});
}

TEST_F(SetValue, ChecksBoundsWithTheIndicesBound) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef parm =
      makeParm({.common = {.ranges = {{"row == 1", {"0..9"}}, {"row == 2", {"0..(row * 10)"}}}},
                .indices = {&row}});
  expectSet(parm, "50", {"1"}, {}, {}, {SET_STORED, "9"});
  expectSet(parm, "50", {"2"}, {}, {}, {SET_STORED, "20"});
  expectSet(parm, "50", {"3"}, {}, {}, {SET_STORED, "50"});
}

TEST_F(SetValue, LetsTheRulesDecideWhileOneApplies) {
  ParmDef parm =
      makeParm({.common = {.base = {"0..9"}, .translations = {{"max", "9"}}},
                .rules = {{"on", "sw::this < 100", "100"}, {"on", "sw::this != 7", "8"}}});
  // No bounds are checked, and nothing is translated.
  expectSet(parm, "50", {{"on", "1"}}, {SET_STORED, "50"});
  expectSet(parm, "7", {{"on", "1"}}, {SET_STORED, "8"});
  expectSet(parm, "50", {{"on", "0"}}, {SET_STORED, "9"});
  expectSet(parm, "max", {{"on", "0"}}, {SET_STORED, "9"});
  expectSet(parm, "7", {}, {SET_STORED, "7"});
}

TEST_F(SetValue, IsQuietAboutARuleThatStillFails) {
  ParmDef parm = makeParm({.rules = {{"1", "sw::this >= 10", "10"}, {"1", "sw::this <= 5", "5"}}});
  expectSet(parm, "7", {}, {SET_RULE_FAILS, "5"});
  expectSet(parm, "7", {}, {}, DRY, {SET_RULE_FAILS, "5"});
}

TEST_F(SetValue, RefusesAValueWhoseCorrectionGivesNone) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef parm = makeParm({.indices = {&row}, .rules = {{"on", "sw::this != 1", "limit / 0"}}});
  expectSet(parm, "2", {"3"}, {{"on", "1"}}, {}, {SET_STORED, "2"});
  // The value under test is not among the variables; the index is.
  expectSet(parm, "1", {"3"}, {{"on", "1"}, {"limit", "9"}}, {},
            {SET_INVALID_VALUE,
             "",
             {"set: ERROR \"gain\": Constraints failed \"\"", "Var list begin",
              "   \"limit\"=\"9\"", "   \"on\"=\"1\"", "   \"row\"=\"3\"", "Var list end"}});
}

TEST_F(SetValue, SkipsTheBaseCheckOfAParameterWithRules) {
  // No rule applies, so the bounds correct, out of the base; a parameter with rules accepts that.
  ParmDef parm = makeParm(
      {.common = {.base = {"0..9"}, .ranges = {{"1", {"20..29"}}}}, .rules = {{"0", "0", "0"}}});
  expectSet(parm, "5", {}, {SET_STORED, "20"});
}

TEST_F(SetValue, KeepsToRunTimeRangesWhileTheyHaveValues) {
  ParmDef parm = makeParm({.common = {.base = {"0..9"},
                                      .ranges = {{"1", {"(lo)..(hi)"}}, {"a", {"50"}}},
                                      .translations = {{"max", "99"}}}});
  const Texts range = {{"lo", "20"}, {"hi", "29"}};
  expectSet(parm, "25", range, {SET_STORED, "25"});
  expectSet(parm, "max", range, {SET_STORED, "29"});
  expectSet(parm, "50", {{"lo", "20"}, {"hi", "29"}, {"a", "1"}}, {SET_STORED, "50"});
  // Without its values the ordinary bounds remain, in which the range accepts everything.
  expectSet(parm, "25", {{"lo", "20"}}, {SET_STORED, "9"});
  expectSet(parm, "25", {{"lo", "29"}, {"hi", "20"}}, {SET_STORED, "9"});
}

TEST_F(SetValue, SetsADefinitionThatNamesTheValueUnderTestOutsideRules) {
  // Nothing but rules knows the value; elsewhere it is an undefined variable.
  ParmDef parm =
      makeParm({.common = {.ranges = {{"1", {"0..(sw::this)"}}}}, .readOnlyIf = {"sw::this == 5"}});
  expectSet(parm, "5", {}, {SET_STORED, "5"});
}

TEST_F(SetValue, LeavesTheStoredValuesAloneInADryRun) {
  ParmDef parm = makeParm({.common = {.base = {"0..9"}}});
  expectSet(parm, "4", {}, {SET_STORED, "4"});
  expectSet(parm, "15", {}, {}, DRY, {SET_STORED, "9"});
  EXPECT_EQ(parm.committedText({}), "4");
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef indexed = makeParm({.indices = {&row}});
  expectSet(indexed, "4", {"1"}, {}, DRY, {SET_STORED, "4"});
  EXPECT_EQ(indexed.committed({"1"}), nullptr);
}

TEST_F(SetValue, LeavesTheCallersSituationAlone) {
  const IndexDef row = makeIndex({.name = "row"});
  ParmDef parm = makeParm({.indices = {&row}, .rules = {{"1", "sw::this != 1", "2"}}});
  const TextSituation situation(parm.variables(), {{"row", "9"}});
  const Texts none;
  TextIndices present(parm, none);
  EXPECT_EQ(setValue(parm, "1", {"3"}, situation, present, {}).value, "2");
  EXPECT_EQ(situation[*parm.variables().find("row")].number, 9);
  EXPECT_EQ(situation[*parm.variables().find("sw::this")].kind, OPERAND_INVALID);
}

// An index value with brackets in it makes a name that another number of values makes too.
TEST_F(SetValue, ChecksTheIndexValuesOfWhatLooksLikeAStoredInstance) {
  const IndexDef row = makeIndex({.name = "row", .base = {"\"a][b\""}});
  ParmDef parm = makeParm({.indices = {&row}});
  expectSet(parm, "5", {"a][b"}, {}, {}, {SET_STORED, "5"});
  CommittedValue* const held = parm.committed({"a", "b"});
  ASSERT_NE(held, nullptr);
  expectSet(parm, "6", {"a", "b"}, {}, {.held = held},
            {SET_INVALID_INDEX,
             "",
             {"set: ERROR \"gain\": Invalid index value[\"row\"=\"a\"]", "Var list begin",
              "Var list end"}});
}

TEST(TakesAnyValue, TellsWhetherTheBoundsThatApplyShareAValue) {
  const struct {
    std::vector<ItemText> base;
    std::vector<RangeText> ranges;
    std::map<std::string, std::string> translations;
    bool isTaken;
  } cases[] = {
      {{"1", "2"}, {}, {}, true},
      {{}, {{"1", {"7"}}}, {}, true},
      {{"1", "2"}, {{"0", {"7"}}}, {}, true},
      {{"1", "2"}, {{"1", {"7"}}}, {}, false},
      {{"1..9"}, {{"1", {"7"}}}, {}, true},
      {{"7"}, {{"1", {"1..9"}}}, {}, true},
      {{"1..5"}, {{"1", {"5..9"}}}, {}, true},
      {{"1..4"}, {{"1", {"5..9"}}}, {}, false},
      {{"1..4"}, {{"1", {"5..9"}}, {"1", {"4"}}}, {}, true},
      {{"1..4"}, {{"1", {"5..9"}}, {"0", {"4"}}}, {}, false},
      {{"on", "off"}, {{"1", {"auto", "off"}}}, {}, true},
      {{"on", "off"}, {{"1", {"auto"}}}, {}, false},
      {{"on", "off"}, {{"1", {"0..9"}}}, {}, false},
      {{"\"7\""}, {{"1", {"0..9"}}}, {}, true},
      {{"1", "2"},
       {{"1", {"7"}}},
       {{"7", "1"}},
       true},  // a 7 means 1, so it lies in the base bounds
      {{"1", "2"}, {{"1", {"7"}}}, {{"1", "7"}}, false},
      {{"1", "2"}, {{"1", {"(3 + 4)"}}}, {}, true},  // computed bounds are in the place of the base
      {{"1", "2"}, {{"1", {"(1 / 0)"}}}, {}, true},
  };
  for (const auto& c : cases) {
    const ParmDef parm =
        makeParm({.common = {.base = c.base, .ranges = c.ranges, .translations = c.translations}});
    const TextSituation situation(parm.variables(), {});
    EXPECT_EQ(takesAnyValue(parm, situation), c.isTaken) << testing::PrintToString(c.base);
  }
}

}  // namespace

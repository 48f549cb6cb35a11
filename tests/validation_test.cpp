// How one value is judged when it is committed: corrections, translations, access, indices, logs.
#include "tests/harness/service_test.h"

namespace {

class ValidationTest : public ServiceTest {};

TEST_F(ValidationTest, AValueOutOfTheConditionalRangeIsCorrected) {
  serve(R"(
mode  rw { rangeValid { 0..9 } }
near  rw { rangeValid ( mode == 1 ) { 0..9 } }
gap   rw { rangeValid ( mode == 1 ) { 0..3, 10..12 } }
texts rw { rangeValid ( mode == 1 ) { "auto", "off" } }
both  rw { rangeValid ( mode == 1 ) { "max", 5..7 } }
first rw { rangeValid ( mode == 1 ) { 0..3 } rangeValid ( mode < 5 ) { 20..23 } }
)");
  expectFacts({
      {"single_set('mode', '1')",
       "()",
       {"both=max", "first=", "gap=", "mode=1", "near=", "texts=auto"}},
      {"single_set('near', '12')", "()", {"near=9"}},
      {"single_set('near', '-3')", "()", {"near=0"}},
      {"single_set('near', '5')", "()", {"near=5"}},
      {"single_set('near', 'abc')", "()", {"near=0"}},
      {"single_set('gap', '5')", "()", {"gap=10"}},  // between two spans the upper one
      {"single_set('gap', '13')", "()", {"gap=12"}},
      {"single_set('gap', '-1')", "()", {"gap=0"}},
      {"single_set('texts', 'off')", "()", {"texts=off"}},
      {"single_set('texts', 'on')", "()", {"texts=auto"}},
      {"single_set('both', '9')", "()", {"both=7"}},
      {"single_set('both', 'min')", "()", {"both=max"}},
      {"single_set('first', '21')", "()", {"first=21"}},  // any of those that hold accepts it
      {"single_set('first', '10')", "()", {"first=3"}},   // otherwise the first corrects it
      {"single_set('mode', '2')", "()", {"first=20", "mode=2"}},
      // Where no condition holds there is no limit.
      {"single_set('near', '1000')", "()", {"near=1000"}},
      {"single_set('mode', '1')", "()", {"mode=1", "near=9"}},
  });
}

TEST_F(ValidationTest, TheEmptyValueBecomesWhatZeroBecomes) {
  serve(R"(
mode rw { }
zero rw { ctrlRO ( mode == 2 ) rangeValid { 0..9 } }
five rw { ctrlRO ( mode == 2 ) rangeValid { 5..9 } }
past rw { ctrlRO ( mode == 2 ) rangeValid { -9..-5 } }
text rw { ctrlRO ( mode == 2 ) rangeValid { "on", "off" } }
free rw { ctrlRO ( mode == 2 ) }
)");
  expectFacts({
      {"single_set('mode', '1')",
       "()",
       {"five=5", "free=", "mode=1", "past=-5", "text=on", "zero="}},
  });
}

TEST_F(ValidationTest, TranslationsComeBeforeTheRange) {
  serve(R"(
power rw { rangeValid { 0..1 } valueChange { "off" -> 0 } valueChange { "on" -> 1 }
           valueChange { 2 -> 1 } }
chain rw { valueChange { "a" -> "b" } valueChange { "b" -> "c" } }
words rw { rangeValid { "left", "right" } valueChange { 0 -> "left" } valueChange { "l" -> "left" } }
)");
  expectFacts({
      {"start()", "0"},
      {"is_valid(0, 'power', 'on')", "true"},
      {"is_valid(0, 'power', '2')", "true"},
      {"is_valid(0, 'power', 'ON')", "false"},
      {"is_valid(0, 'power', '0x2')", "false"},  // texts are compared, not numbers
      {"set(0, 'power', 'on')", "()"},
      {"get(0, 'power')", "'on'"},  // until the commit
      {"commit(0)", "()", {"power=1"}},
      {"single_set('power', 'off')", "()", {"power=0"}},
      {"single_set('power', '2')", "()", {"power=1"}},
      {"single_set('words', '0')", "()", {"words=left"}},
      {"single_set('words', 'right')", "()", {"words=right"}},
      {"single_set('words', 'l')", "()", {"words=left"}},
      {"single_set('chain', 'b')", "()", {"chain=c"}},
      {"single_set('chain', 'c')", "()"},
      {"single_set('chain', 'a')", "()"},  // a target that is a source goes on to its own target
  });
}

TEST_F(ValidationTest, AConditionalRangeOutsideTheUnconditionalOneRefuses) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
gain rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } }
)");
  const std::vector<std::string> log = {"set: ERROR \"gain\": Invalid value \"20\"",
                                        "commit: ERROR \"gain\"=\"5\": ret=-2"};
  expectFacts({
      {"single_set('gain', '5')", "()", {"gain=5"}},
      {"single_set('mode', '1')",
       "Commit failed because parameter definition is invalid",
       {"mode=1"},
       log},
      {"single_set('gain', '5')", "Commit failed because parameter definition is invalid", {}, log},
      {"single_get('gain')", "'5'"},
      {"single_set('mode', '0')", "()", {"mode=0"}},
      {"single_set('gain', '6')", "()", {"gain=6"}},
  });
}

TEST_F(ValidationTest, AnUnsetValueBesideConditionalRangesIsRefused) {
  // Integer ranges never hold the empty value, and with conditional ranges that counts.
  serve(R"(
mode rw { rangeValid { 0..1 } }
gain rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 0..5 } }
)");
  expectFacts({
      {"single_set('mode', '1')",
       "Commit failed because parameter definition is invalid",
       {"mode=1"},
       {"set: ERROR \"gain\": Invalid value \"\"", "commit: ERROR \"gain\"=\"\": ret=-2"}},
      {"single_set('gain', '7')", "()", {"gain=5"}},
      {"single_set('mode', '0')", "()", {"mode=0"}},
  });
}

TEST_F(ValidationTest, AccessWordsDecideWhoWrites) {
  serve(R"(
mode  rw { rangeValid { 0..2 } }
plain rw { }
held  rw { ctrlRO ( mode == 1 ) ctrlRO ( mode == 2 ) }
state ro { }
alarm rostrict { }
fire  wo { }
)");
  expectFacts({
      {"single_set('mode', '0')", "()", {"held=", "mode=0"}},
      {"single_set('plain', '1')", "()", {"plain=1"}},
      {"single_set('held', '1')", "()", {"held=1"}},
      {"single_set('state', '1')", "()"},
      {"single_set('alarm', '1')", "()"},
      {"single_get_bulk(2, ['state', 'alarm'])", "['', '']"},
      {"single_set_status('state', '1')", "()", {"state=1"}},
      {"single_set_status('alarm', '1')", "()"},  // stored, but never announced
      {"single_get_bulk(2, ['state', 'alarm'])", "['1', '1']"},
      {"single_set('fire', '1')", "()", {"fire=1"}},
      {"single_set('fire', '1')", "()", {"fire=1"}},  // announced each time
      {"single_set_status('fire', '1')", "()", {"fire=1"}},
      {"single_get('fire')", "'1'"},
      {"single_set('mode', '1')", "()", {"mode=1"}},
      {"single_set('held', '2')", "()"},
      {"single_get('held')", "'1'"},
      {"single_set_status('held', '3')", "()", {"held=3"}},
      {"single_set('mode', '2')", "()", {"mode=2"}},
      {"single_set('held', '4')", "()"},
      {"single_set('mode', '0')", "()", {"mode=0"}},
      {"single_set('held', '5')", "()", {"held=5"}},
  });
}

TEST_F(ValidationTest, AParameterThatIsNotValidNowKeepsItsValue) {
  serve(R"(
mode rw { rangeValid { 0..2 } }
gain rw { ctrlValid ( mode > 0 ) ctrlValid ( mode < 2 ) rangeValid { 0..9 } default { 5 } }
)");
  expectFacts({
      {"single_set('gain', '3')", "()"},
      {"single_set_status('gain', '3')", "()"},
      {"single_get('gain')", "''"},
      {"single_set('mode', '1')", "()", {"gain=", "mode=1"}},
      {"single_set('gain', '3')", "()", {"gain=3"}},
      {"single_set('mode', '2')", "()", {"mode=2"}},
      {"single_reset_status('gain')", "()"},
      {"single_get('gain')", "'3'"},
  });
}

TEST_F(ValidationTest, AParameterThatIsNeverValidIsNeverWritten) {
  expectErrors(
      "Warning on line 1\nConditional evaluates to 0.\ngain rw { ctrlValid ( 0 ) }\n"
      "                      ^\n");
  serve("gain rw { ctrlValid ( 0 ) }\n");
  expectFacts({
      {"single_is_valid('gain', '3')", "true"},
      {"single_set('gain', '3')", "()"},
      {"single_set_status('gain', '3')", "()"},
      {"single_get('gain')", "''"},
  });
}

constexpr const char* INDEXED = R"(
mode rw { rangeValid { 0..2 } }
chan index { rangeValid { 0..3 } rangeValid ( mode == 1 ) { 0..1 } rangeValid ( mode != 1 ) { 0..3 } }
port index { ctrlValid ( mode != limit ) rangeValid { "in", "out" } }
none index { rangeValid { 0..3 } rangeValid ( mode == 9 ) { 0..3 } }
gain rw { index { chan } }
trim rw { index { chan, port } rangeValid { 0..9 } }
lost rw { index { none } }
solo rw { }
)";

TEST_F(ValidationTest, IndexValuesAreCheckedAtCommit) {
  serve(INDEXED, {"limit=2"});
  const char* const refusal = "Commit failed because parameter index is invalid";
  expectFacts({
      {"single_set('gain[3]', '7')", "()", {"gain[3]=7"}},
      {"single_get('gain[3]')", "'7'"},
      {"single_get('gain[2]')", "''"},
      {"single_set('trim[0][in]', '12')",
       "Set failed because parameter value is invalid",
       {"trim[0][in]="}},
      {"single_set('gain[4]', '7')",
       refusal,
       {},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"4\"]", "Var list begin",
        "   \"mode\"=\"\"", "Var list end", "commit: ERROR \"gain[4]\"=\"7\": ret=-3"}},
      {"single_set('gain[]', '7')",
       refusal,
       {},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"\"]", "Var list begin",
        "   \"mode\"=\"\"", "Var list end", "commit: ERROR \"gain[]\"=\"7\": ret=-3"}},
      {"single_set('trim[3][up]', '7')",
       refusal,
       {},
       {"set: ERROR \"trim\": Invalid index value[\"port\"=\"up\"]", "Var list begin",
        "   \"chan\"=\"3\"", "   \"limit\"=\"2\"", "   \"mode\"=\"\"", "Var list end",
        "commit: ERROR \"trim[3][up]\"=\"7\": ret=-3"}},
      {"single_set('lost[1]', '7')",
       refusal,
       {},  // no condition of the index holds
       {"set: ERROR \"lost\": Invalid index value[\"none\"=\"1\"]", "Var list begin",
        "   \"mode\"=\"\"", "Var list end", "commit: ERROR \"lost[1]\"=\"7\": ret=-3"}},
      {"single_get_bulk(3, ['gain[4]', 'trim[3][up]', 'lost[1]'])", "['', '', '']"},
  });
}

TEST_F(ValidationTest, TheNumberOfIndexValuesIsCheckedAtCommit) {
  serve(INDEXED, {"limit=2"});
  const char* const refusal = "Commit failed because parameter index is invalid";
  expectFacts({
      {"single_set('gain', '7')",
       refusal,
       {},
       {"set: ERROR \"gain\": Not enough indices 1>0", "commit: ERROR \"gain\"=\"7\": ret=-3"}},
      {"single_set('gain[0][1]', '7')",
       refusal,
       {},
       {"set: ERROR \"gain\": Not enough indices 1>2",
        "commit: ERROR \"gain[0][1]\"=\"7\": ret=-3"}},
      {"single_set('trim[0]', '7')",
       refusal,
       {},
       {"set: ERROR \"trim\": Not enough indices 2>1", "commit: ERROR \"trim[0]\"=\"7\": ret=-3"}},
      {"single_set('trim[0][in][9]', '7')",
       refusal,
       {},
       {"set: ERROR \"trim\": Not enough indices 2>3",
        "commit: ERROR \"trim[0][in][9]\"=\"7\": ret=-3"}},
      {"single_set('solo[0]', '1')",
       refusal,
       {},
       {"set: ERROR \"solo\": Not enough indices 0>1", "commit: ERROR \"solo[0]\"=\"1\": ret=-3"}},
  });
}

TEST_F(ValidationTest, AnIndexThatIsNotValidNowRefuses) {
  serve(INDEXED, {"limit=2"});
  expectFacts({
      {"start()", "0"},
      {"set(0, 'mode', '2')", "()"},
      {"commit(0)", "()", {"gain[0]=", "gain[1]=", "gain[2]=", "gain[3]=", "mode=2"}},
      {"set(0, 'trim[1][in]', '5')", "()"},
      {"commit(0)",
       "Commit failed because parameter index is invalid",
       {},
       {"set: ERROR \"trim\": Invalid index[port]", "Var list begin", "   \"chan\"=\"1\"",
        "   \"limit\"=\"2\"", "   \"mode\"=\"2\"", "Var list end",
        "commit: ERROR \"trim[1][in]\"=\"5\": ret=-3"}},
      {"commit(0)", "()"},  // the transaction is empty again
  });
}

TEST_F(ValidationTest, TheLogShowsTheValueAsItWasStaged) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
gain rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } valueChange { "lots" -> 10 } }
)");
  expectFacts({
      {"single_set('gain', '5')", "()", {"gain=5"}},
      // No parameter depends on gain, so it is also applied in the first level, before mode.
      {"single_set_bulk(['gain', 'mode'], ['lots', '1'])",
       "Commit failed because parameter definition is invalid",
       {},
       {"set: ERROR \"gain\": Invalid value \"20\"", "commit: ERROR \"gain\"=\"lots\": ret=-2"}},
  });
}

TEST_F(ValidationTest, TextsAreNeverFormats) {
  serve(R"(
chan index { rangeValid { "%s%n", 0 } }
g%n  rw { index { chan } }
)");
  expectFacts({
      {"single_set('g%n[%s%n]', '%s%n%d')", "()", {"g%n[%s%n]=%s%n%d"}},
      {"single_set('g%n[%d]', '%s%n')",
       "Commit failed because parameter index is invalid",
       {},
       {"set: ERROR \"g%n\": Invalid index value[\"chan\"=\"%d\"]", "Var list begin",
        "Var list end", "commit: ERROR \"g%n[%d]\"=\"%s%n\": ret=-3"}},
  });
}

TEST_F(ValidationTest, AValueIsComputedWhenItIsAskedFor) {
  // The constants beside the names would decide alone, if values were computed when the text is
  // read.
  serve(R"(
mode rw { }
word rw { }
plain rw { default { (7 || word) } }
sized rw { rangeValid { (vidStd::mode::spal || 9) } }
when rw { default (word == 1) { (mode && 0) } default { 5 } }
)");
  expectFacts({
      {"get_deps('plain')", "['word']"},
      {"get_deps('sized')", "['mode']"},
      {"get_deps('when')", "['mode', 'word']"},
      {"single_reset('plain')", "()", {"plain=1"}},  // of a word without a value, which is 0
      {"single_set('sized', '5')", "()", {"sized=9"}},
      {"single_set('mode', '1080i/50')", "()", {"mode=1080i/50", "sized=1", "when="}},
      {"single_reset('when')", "()", {"when=5"}},
  });
}

}  // namespace

// The questions about definitions: dependencies, ranges, indices of a parameter, index ranges.
#include "tests/harness/service_test.h"

namespace {

class QueriesTest : public ServiceTest {};

TEST_F(QueriesTest, DependenciesAreAllNamesThatAParameterReferences) {
  serve(R"(
chan  index { rangeValid { 0..3 } }
port  index { rangeValid { "in", "out" } }
lane  index { ctrlValid ( mode == 1 ) rangeValid { 0..1 } }
mode  rw { rangeValid { 0..2 } }
gain  rw { index { chan } ctrlRO ( mode == 2 ) rangeValid { 0..255 } }
trim  rw { index { chan, port } rangeValid ( gain > limit && port == "in" ) { 0..9 } }
probe rw { ctrlRO ( gain[2] == 1 ) }
total rw { index { port } rangeValid { 0..(gain[0] + trim[1][in]) } default { (total2) } }
total2 rw { ctrlValid ( sw::this != 3 || mode ) }
strip rw { index { lane } }
crop  rw { rangeValid { 0..(vidStd::std::spal) } }
std   rw { }
)",
        {"limit=10", "model=2"});
  expectFacts({
      {"get_deps('mode')", "[]"},
      {"get_deps('gain')", "['mode']"},
      {"get_deps('gain[2]')", "['mode']"},
      {"get_deps('trim')", "['gain', 'limit', 'mode', 'port']"},
      {"get_deps('trim[1][in]')", "['gain[1]', 'limit', 'mode', 'port']"},
      {"get_deps('probe')", "['gain[2]', 'mode']"},  // as written, and what gain needs
      {"get_deps('total2')", "['mode']"},            // the candidate value is no reference
      {"get_deps('strip')", "['mode']"},             // of its index definition
      {"get_deps('strip[0]')", "['mode']"},
      {"get_deps('crop')", "['std']"},  // the parameter that selects the video standard
      {"get_deps('std')", "[]"},
  });
}

TEST_F(QueriesTest, WhatWasDecidedAtBuildTimeIsNoDependency) {
  serve(R"(
gain rw { rangeValid ( model == 2 ) { 0..(limit) } ctrlValid ( model == 2 ) default { (limit) } }
)",
        {"limit=10", "model=2"});
  expectFacts({{"get_deps('gain')", "[]"}});
}

TEST_F(QueriesTest, DependenciesOfAnInstanceNeedItsIndices) {
  serve(R"(
chan index { rangeValid { 0..3 } }
port index { rangeValid { "in", "out" } }
mode rw { }
gain rw { index { chan } ctrlRO ( mode == 2 ) }
trim rw { index { chan, port } ctrlRO ( mode == 2 ) }
)",
        {"limit=10"});
  const char* const badIndex = "Get deps failed because of invalid parameter index";
  const char* const badName = "Get deps failed because of invalid parameter name";
  expectFacts({
      {"get_deps('trim')", "['mode']"},
      {"get_deps('trim[0][in]')", "['mode']"},
      {"get_deps('trim[3][out]')", "['mode']"},
      {"get_deps('trim[4][out]')", badIndex},
      {"get_deps('trim[-1][out]')", badIndex},
      {"get_deps('trim[3][up]')", badIndex},
      {"get_deps('trim[3]')", badIndex},
      {"get_deps('trim[3][out')", badIndex},
      {"get_deps('trim[')", badIndex},
      {"get_deps('trim[3][out][0]')", badIndex},
      {"get_deps('gain[]')", badIndex},
      {"get_deps('mode[0]')", badIndex},
      {"get_deps('trim]')", badName},
      {"get_deps('nope')", badName},
      {"get_deps('nope[0]')", badName},
      {"get_deps('')", badName},
      {"get_deps('chan')", badName},
      {"get_deps('limit')", badName},
  });
}

TEST_F(QueriesTest, RangesAreSpansAscendingAndTextsInOrder) {
  serve(R"(
chan  index { rangeValid { 0..3 } }
free  rw { }
gain  rw { index { chan } rangeValid { 0..255 } }
both  rw { rangeValid { 20..30, "zoom", 0..3, "auto", 4..9, 5 } rangeValid { 40, "max" } }
hexa  rw { rangeValid { 0x10..020 } rangeValid { -5..-3 } }
full  rw { rangeValid { -2147483648..2147483647 } }
state ro { rangeValid { 0, 1 } }
alarm rostrict { rangeValid { 0, 2 } }
fire  wo { rangeValid { 1 } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'free')", "([], [])"},
      {"get_range(0, 'gain[0]')", "([], [(0, 255)])"},
      {"get_range(0, 'gain[3]')", "([], [(0, 255)])"},
      {"get_range(0, 'both')", "(['auto', 'max', 'zoom'], [(0, 9), (20, 30), (40, 40)])"},
      {"get_range(0, 'hexa')", "([], [(-5, -3), (16, 16)])"},
      {"get_range(0, 'full')", "([], [(-2147483648, 2147483647)])"},
      {"get_range(0, 'state')", "([], [(0, 1)])"},
      {"get_range(0, 'alarm')", "([], [(0, 0), (2, 2)])"},
      {"get_range(0, 'fire')", "([], [(1, 1)])"},
      {"commit(0)", "()"},  // a query stages nothing
      {"single_get('both')", "''"},
  });
}

TEST_F(QueriesTest, RangeOfWhatIsNoInstanceIsCode1) {
  serve(R"(
chan index { rangeValid { 0..3 } }
gain rw { index { chan } rangeValid { 0..255 } }
)",
        {"limit=10"});
  const char* const refusal = "Get range failed because of invalid bounds (1)";
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'nope')", refusal},
      {"get_range(0, '')", refusal},
      {"get_range(0, 'chan')", refusal},
      {"get_range(0, 'limit')", refusal},
      {"get_range(0, 'gain')", refusal},
      {"get_range(0, 'gain[4]')", refusal},
      {"get_range(0, 'gain[1][1]')", refusal},
      {"get_range(0, 'gain[1')", refusal},
  });
}

TEST_F(QueriesTest, TheConditionalRangeOfTheStagedSituationIsAnswered) {
  serve(R"(
mode  rw { rangeValid { 0..3 } }
level rw { rangeValid ( mode == 1 ) { 0..5 } rangeValid ( mode >= limit - 8 ) { 10..20 } }
chain rw { rangeValid ( level > 5 ) { 1..2 } rangeValid ( level <= 5 ) { 3..4 } }
)",
        {"limit=10"});
  expectFacts({
      {"start()", "0"},
      {"start()", "1"},
      {"get_range(0, 'level')", "([], [])"},  // no condition holds: what holds always, nothing
      {"set(0, 'mode', '1')", "()"},
      {"get_range(0, 'level')", "([], [(0, 5)])"},
      {"get_range(1, 'level')", "([], [])"},
      {"set(0, 'mode', '2')", "()"},
      {"get_range(0, 'level')", "([], [(10, 20)])"},
      {"set(0, 'mode', '1')", "()"},
      {"set(0, 'level', '4')", "()"},
      {"get_range(0, 'chain')", "([], [(3, 4)])"},
      {"set(0, 'mode', '2')", "()"},
      {"get_range(0, 'chain')", "([], [(1, 2)])"},  // level would be corrected to 10
      {"get(0, 'level')", "'4'"},                   // but no query changes what is staged
      {"end(0)", "()"},
      {"get_range(1, 'level')", "([], [])"},
      {"single_get('mode')", "''"},
  });
}

TEST_F(QueriesTest, DocumentedRangesAreAnsweredBeforeValidOnes) {
  serve(R"(
mode  rw { rangeValid { 0..9 } }
gain  rw { rangeDoc ( mode == 1 ) { 1..2 } rangeDoc { 3..4, "doc" } rangeDoc ( mode > 0 ) { 5..6 }
           rangeDoc { 9 } rangeValid ( mode == 2 ) { 7..8 } rangeValid { 0..100 } }
cond  rw { rangeDoc ( mode == 1 ) { 1..2 } rangeValid ( mode == 2 ) { 0..8 } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'cond')", "([], [])"},
      {"set(0, 'mode', '1')", "()"},
      {"get_range(0, 'cond')", "([], [(1, 2)])"},
      {"set(0, 'mode', '2')", "()"},
      {"get_range(0, 'cond')", "([], [(0, 8)])"},
      // Conditional ones in order, then the unconditional set.
      {"set(0, 'gain', '7')", "()"},
      {"set(0, 'mode', '0')", "()"},
      {"get_range(0, 'gain')", "(['doc'], [(3, 4), (9, 9)])"},
      {"set(0, 'mode', '1')", "()"},
      {"get_range(0, 'gain')", "([], [(1, 2)])"},
      {"set(0, 'mode', '2')", "()"},
      {"get_range(0, 'gain')", "([], [(5, 6)])"},
      // They constrain no value.
      {"is_valid(0, 'gain', '100')", "true"},
      {"end(0)", "()"},
      {"single_set('cond', '7')", "()", {"cond=7"}},
  });
}

TEST_F(QueriesTest, AComputedRangeThatHasNoValueIsToldByItsCode) {
  serve(R"(
low   rw { }
high  rw { }
span  rw { rangeDoc { (low)..(high) } }
lower rw { rangeDoc { (10 / low)..20 } }
upper rw { rangeDoc { 0..(10 / high) } }
value rw { rangeDoc { (10 / low) } }
text  rw { rangeDoc { (low), (high) } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'span')", "([], [(0, 0)])"},  // empty values count as 0
      {"set_bulk(0, ['low', 'high'], ['2', '5'])", "()"},
      {"get_range(0, 'span')", "([], [(2, 5)])"},
      {"get_range(0, 'lower')", "([], [(5, 20)])"},
      {"get_range(0, 'upper')", "([], [(0, 2)])"},
      {"get_range(0, 'value')", "([], [(5, 5)])"},
      {"get_range(0, 'text')", "([], [(2, 2), (5, 5)])"},
      {"set_bulk(0, ['low', 'high'], ['6', '5'])", "()"},
      {"get_range(0, 'span')", "Get range failed because of invalid bounds (-5)"},
      {"set(0, 'high', 'max')", "()"},
      {"get_range(0, 'span')", "Get range failed because of invalid bounds (-4)"},
      {"get_range(0, 'text')", "(['max'], [(6, 6)])"},
      {"set(0, 'low', 'min')", "()"},
      {"get_range(0, 'span')", "Get range failed because of invalid bounds (-3)"},
      {"set_bulk(0, ['low', 'high'], ['0', '0'])", "()"},
      {"get_range(0, 'lower')", "Get range failed because of invalid bounds (-2)"},
      {"get_range(0, 'value')", "Get range failed because of invalid bounds (-2)"},
      {"get_range(0, 'upper')", "Get range failed because of invalid bounds (-4)"},
  });
}

TEST_F(QueriesTest, AnInstanceThatDoesNotExistNowIsCodeMinus6) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
chan index { rangeValid { 0..3 } rangeValid ( mode == 1 ) { 0..1 } rangeValid ( mode != 1 ) { 0..3 } }
gain rw { index { chan } rangeValid { 0..9 } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'gain[3]')", "([], [(0, 9)])"},
      {"set(0, 'mode', '1')", "()"},
      {"get_range(0, 'gain[1]')", "([], [(0, 9)])"},
      {"get_range(0, 'gain[3]')",
       "Get range failed because of invalid bounds (-6)",
       {},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"3\"]", "Var list begin",
        "   \"mode\"=\"1\"", "Var list end"}},
  });
}

TEST_F(QueriesTest, AValueThatCannotBeKeptIsCodeMinus6) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
gain rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } }
)");
  expectFacts({
      {"start()", "0"},
      {"set_bulk(0, ['gain', 'mode'], ['5', '1'])", "()"},
      {"get_range(0, 'gain')",
       "Get range failed because of invalid bounds (-6)",
       {},
       // The target is judged with its level and once more for the answer.
       {"set: ERROR \"gain\": Invalid value \"20\"", "set: ERROR \"gain\": Invalid value \"20\""}},
      {"get(0, 'gain')", "'5'"},
  });
}

TEST_F(QueriesTest, AFailureOnTheWayToTheTargetIsCodeMinus6) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
bad  rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } }
next rw { rangeValid ( bad == 5 ) { 0..3 } rangeValid ( bad != 5 ) { 0..4 } }
)");
  expectFacts({
      {"single_set('bad', '5')", "()", {"bad=5", "next="}},
      {"start()", "1"},
      {"get_range(1, 'next')", "([], [(0, 3)])"},
      {"set(1, 'mode', '1')", "()"},
      {"get_range(1, 'next')",
       "Get range failed because of invalid bounds (-6)",
       {},
       {"set: ERROR \"bad\": Invalid value \"20\""}},
  });
}

TEST_F(QueriesTest, ARangeKnowsTheIndexValuesOfItsInstance) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
chan index { rangeValid { 0..3 } }
port index { rangeValid { "in", "out" } }
gain rw { index { chan, port } rangeDoc ( port == "in" ) { (chan * 10)..(chan * 10 + 5) }
          rangeDoc ( mode == 1 ) { (port) } rangeValid { 0..99 } }
sum  rw { index { chan } rangeValid ( mode == 1 && gain == 0 ) { 0..(chan) } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'gain[2][in]')", "([], [(20, 25)])"},
      {"get_range(0, 'gain[3][out]')", "([], [(0, 99)])"},
      {"set(0, 'mode', '1')", "()"},
      {"get_range(0, 'gain[3][out]')", "(['out'], [])"},
      // gain is read with the one index value that sum has: no instance, an empty value.
      {"get_range(0, 'sum[2]')", "([], [(0, 2)])"},
      {"get_deps('sum[2]')", "['chan', 'gain[2]', 'mode', 'port']"},
  });
}

TEST_F(QueriesTest, BulkRangesAreOneListInNameOrder) {
  serve(R"(
chan index { rangeValid { 0..1 } }
b    rw { rangeValid { 0..3, 7 } }
a    rw { rangeValid { "on", "off" } }
c    rw { index { chan } rangeValid { "x", 1..2 } }
bad  rw { rangeDoc { 5..(a) } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range_bulk(0, [])", "([], [])"},
      {"get_range_bulk(0, ['b', 'a', 'b', 'a'])",
       "([('a', 'off'), ('a', 'on')], [('b', 0, 3), ('b', 7, 7)])"},
      {"get_range_bulk(0, ['c[1]', 'c[0]', 'a'])",
       "([('a', 'off'), ('a', 'on'), ('c[0]', 'x'), ('c[1]', 'x')], "
       "[('c[0]', 1, 2), ('c[1]', 1, 2)])"},
      {"get_range_bulk(0, ['a', 'nope', 'bad'])", "Get range failed because of invalid bounds (1)"},
      {"get_range_bulk(0, ['bad', 'nope'])", "Get range failed because of invalid bounds (-5)"},
      {"get_range_bulk(0, ['c'])", "Get range failed because of invalid bounds (1)"},
  });
}

TEST_F(QueriesTest, IndicesOfAParameterAreThoseThatAreValidNow) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
chan index { rangeValid { 0..3 } }
port index { ctrlValid ( mode == 1 ) rangeValid { "in", "out" } }
gain rw { }
trim rw { index { port, chan } }
)",
        {"limit=10"});
  const char* const refusal = "Get parm index failed because parm not found";
  expectFacts({
      {"start()", "0"},
      {"start()", "1"},
      {"get_parm_idx(0, 'gain')", "[]"},
      {"get_parm_idx(0, 'trim')", "['chan']"},
      {"set(0, 'mode', '1')", "()"},
      {"get_parm_idx(0, 'trim')", "['port', 'chan']"},
      {"get_parm_idx(1, 'trim')", "['chan']"},
      {"get_parm_idx(0, 'trim[in][0]')", "['port', 'chan']"},
      {"get_parm_idx(0, 'trim[anything]')", "['port', 'chan']"},
      {"get_parm_idx(0, 'nope')", refusal},
      {"get_parm_idx(0, '')", refusal},
      {"get_parm_idx(0, 'chan')", refusal},
      {"get_parm_idx(0, 'limit')", refusal},
  });
}

// What exists and what is available are two things.
TEST_F(QueriesTest, InstancesThatDoNotExistAreRefusedParametersThatAreNotAvailablePassedOver) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
port index { ctrlValid ( mode == 1 ) rangeValid { "in", "out" } }
trim rw { index { port } rangeValid { 0..9 } }
tone rw { ctrlValid ( mode == 1 ) rangeValid { 0..9 } }
)");
  const char* const noInstance = "Commit failed because parameter index is invalid";
  expectFacts({
      {"start()", "0"},
      {"single_set('mode', '1')", "()", {"mode=1", "tone=", "trim[in]=", "trim[out]="}},
      {"get_parm_idx(0, 'trim')", "['port']"},
      {"single_set('trim[in]', '5')", "()", {"trim[in]=5"}},
      {"single_set('tone', '5')", "()", {"tone=5"}},
      {"single_set('mode', '0')", "()", {"mode=0"}},
      {"get_parm_idx(0, 'trim')", "[]"},  // left out, but still an index of it
      {"get_idx_range(0, 'port')", "Get index range failed because index is not valid"},
      {"single_set('trim[in]', '7')",
       noInstance,
       {},
       {R"(set: ERROR "trim": Invalid index[port])", "Var list begin", R"(   "mode"="0")",
        "Var list end", R"(commit: ERROR "trim[in]"="7": ret=-3)"}},
      {"single_get('trim[in]')", "'5'"},
      {"get_range(0, 'trim[in]')",
       "Get range failed because of invalid bounds (-6)",
       {},
       {R"(set: ERROR "trim": Invalid index[port])", "Var list begin", R"(   "mode"="0")",
        "Var list end"}},
      {"single_set('tone', '7')", "()"},
      {"single_set_status('tone', '7')", "()"},
      {"single_get('tone')", "'5'"},
      {"get_range(0, 'tone')", "([], [(0, 9)])"},
  });
}

TEST_F(QueriesTest, IndexRangesHoldWhatTheIndexAcceptsNow) {
  serve(R"(
mode rw { rangeValid { 0..3 } }
chan index { rangeValid { "all", "none", 0..7, 20..21 }
             rangeValid ( mode == 1 ) { 0..1, 4..5, 20..30, "all" }
             rangeValid ( mode == 2 ) { 2..3 } rangeValid ( mode == 2 ) { 4..5, 7 } }
line index { ctrlValid ( mode != 3 ) rangeValid { 1..625 } }
open index { }
used rw { index { chan, line, open } }
)",
        {"limit=10"});
  const char* const unknown = "Get index range failed because index not found";
  expectFacts({
      {"start()", "0"},
      {"get_idx_range(0, 'chan')", "([], [])"},  // its conditions leave no value
      {"set(0, 'mode', '1')", "()"},
      {"get_idx_range(0, 'chan')", "(['all'], [(0, 1), (4, 5), (20, 21)])"},
      {"set(0, 'mode', '2')", "()"},
      {"get_idx_range(0, 'chan')", "([], [(2, 5), (7, 7)])"},
      {"get_idx_range(0, 'line')", "([], [(1, 625)])"},
      {"get_idx_range(0, 'open')", "([], [])"},
      {"set(0, 'mode', '3')", "()"},
      {"get_idx_range(0, 'line')", "Get index range failed because index is not valid"},
      {"get_idx_range(0, 'nope')", unknown},
      {"get_idx_range(0, '')", unknown},
      {"get_idx_range(0, 'used')", unknown},
      {"get_idx_range(0, 'limit')", unknown},
      {"get_idx_range(0, 'line[1]')", unknown},
  });
}

TEST_F(QueriesTest, AnIndexThatNoParameterUsesIsKnown) {
  serve("chan index { rangeValid { 0..3 } }");
  expectFacts({{"start()", "0"}, {"get_idx_range(0, 'chan')", "([], [(0, 3)])"}});
}

}  // namespace

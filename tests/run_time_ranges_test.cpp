// Ranges whose ends are computed from other parameters: what counts is that the outcome is that of
// the same range with the present numbers.
#include "tests/harness/service_test.h"

namespace {

class RunTimeRangesTest : public ServiceTest {};

TEST_F(RunTimeRangesTest, TheRangeFollowsItsParameters) {
  serve(R"(
low   rw { rangeValid { 0..100 } }
high  rw { rangeValid { 0..100 } }
level rw { rangeValid { (low)..(high) } }
)");
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'level')", "([], [(0, 0)])"},
      {"single_set('low', '10')", "()", {"level=", "low=10"}},  // 10..0 is no range yet
      {"get_range(0, 'level')", "Get range failed because of invalid bounds (-5)"},
      {"single_set('high', '20')", "()", {"high=20", "level=10"}},
      {"get_range(0, 'level')", "([], [(10, 20)])"},
      {"single_is_valid('level', '9999')", "true"},  // judged at commit alone
      {"single_set('level', '15')", "()", {"level=15"}},
      {"single_set('level', '10')", "()", {"level=10"}},
      {"single_set('level', '9')", "()"},
      {"single_set('level', '21')", "()", {"level=20"}},
      {"single_set('level', 'abc')", "()", {"level=10"}},
      {"single_set('level', '')", "()"},
      {"single_set('level', '0x10')", "()", {"level=0x10"}},
      {"single_set('high', '12')", "()", {"high=12", "level=12"}},
      {"single_set('low', '30')", "()", {"low=30"}},
      {"single_set('level', '7')", "()", {"level=7"}},  // 30..12: no limit at all
      {"set_bulk(0, ['low', 'high'], ['40', '50'])", "()"},
      {"get_range(0, 'level')", "([], [(40, 50)])"},
      {"commit(0)", "()", {"high=50", "level=40", "low=40"}},
  });
}

TEST_F(RunTimeRangesTest, ItCorrectsLikeTheRangeWithItsNumbers) {
  serve(R"(
low  rw { rangeValid { 0..99 } }
name rw { }
gap  rw { rangeValid { (low)..(low + 2), (low + 10)..(low + 12) } }
text rw { rangeValid { (name), "off" } }
both rw { rangeValid { "max", (low)..(low + 5) } }
one  rw { rangeValid { (low)..(low + 9) } valueChange { "mid" -> 25 } }
)");
  expectFacts({
      {"single_set_bulk(['low', 'name'], ['20', 'auto'])",
       "()",
       {"both=max", "gap=20", "low=20", "name=auto", "one=20", "text=auto"}},
      {"single_set('gap', '25')", "()", {"gap=30"}},  // between two spans the upper one
      {"single_set('gap', '33')", "()", {"gap=32"}},
      {"single_set('gap', '21')", "()", {"gap=21"}},
      {"single_set('text', 'off')", "()", {"text=off"}},
      {"single_set('text', 'on')", "()", {"text=auto"}},
      {"single_set('name', '5')", "()", {"name=5", "text=off"}},  // "auto" meets {5, "off"}
      {"single_set('both', '22')", "()", {"both=22"}},
      {"single_set('both', '19')", "()", {"both=20"}},
      {"single_set('both', 'min')", "()", {"both=max"}},
      {"single_set('one', 'mid')", "()", {"one=25"}},
      {"single_set('low', '26')", "()", {"gap=26", "low=26", "one=26"}},
      {"single_set('one', 'mid')", "()"},
  });
}

TEST_F(RunTimeRangesTest, AnyRangeThatAppliesAcceptsAndTheFirstOneCorrects) {
  serve(R"(
mode rw { rangeValid { 0..3 } }
top  rw { rangeValid { 0..99 } }
gain rw { rangeValid ( mode >= 1 ) { 0..(top) } rangeValid ( mode >= 2 ) { 50..(top + 60) }
          rangeValid ( mode == 3 ) { (10 / (top - 5)) } }
)");
  expectFacts({
      {"single_set('gain', '1000')", "()", {"gain=1000"}},  // none applies
      {"single_set_bulk(['mode', 'top'], ['1', '5'])", "()", {"gain=5", "mode=1", "top=5"}},
      {"single_set('gain', '55')", "()"},
      {"single_set('mode', '2')", "()", {"mode=2"}},
      {"single_set('gain', '55')", "()", {"gain=55"}},
      {"single_set('gain', '30')", "()", {"gain=5"}},  // two ranges far apart: one step, no more
      {"single_set('gain', '66')", "()"},
      {"single_set('gain', '65')", "()", {"gain=65"}},
      {"single_set('mode', '3')", "()", {"mode=3"}},  // the third range has no value now
      {"single_set('top', '6')", "()", {"top=6"}},
      {"single_set('gain', '10')", "()", {"gain=10"}},  // now it has
      {"single_set('mode', '0')", "()", {"mode=0"}},
      {"single_set('gain', '-7')", "()", {"gain=-7"}},
  });
}

TEST_F(RunTimeRangesTest, UnconditionalRangesAreOneSet) {
  serve(R"(
top  rw { rangeValid { 0..99 } }
gain rw { rangeValid { 1..2, "auto" } rangeValid { 10..(top) } rangeValid { 7 } }
)");
  expectFacts({
      {"single_set('top', '12')", "()", {"gain=auto", "top=12"}},
      {"single_set('gain', '7')", "()", {"gain=7"}},
      {"single_set('gain', '2')", "()", {"gain=2"}},
      {"single_set('gain', 'auto')", "()", {"gain=auto"}},
      {"single_set('gain', 'off')", "()"},
      {"single_set('gain', '3')", "()", {"gain=7"}},
      {"single_set('gain', '8')", "()", {"gain=10"}},
      {"single_set('gain', '13')", "()", {"gain=12"}},
      {"start()", "8"},
      {"get_range(8, 'gain')", "(['auto'], [(1, 2), (7, 7), (10, 12)])"},
      // 10..5 is no range; what the other statements allow is left.
      {"single_set('top', '5')", "()", {"gain=7", "top=5"}},
      {"get_range(8, 'gain')", "Get range failed because of invalid bounds (-5)"},
      {"single_set('gain', '11')", "()"},
  });
}

TEST_F(RunTimeRangesTest, ARangeThatNamesTheCandidateHasNoValue) {
  serve(R"(
mode rw { }
gain rw { rangeValid { 0..(sw::this) } }
step rw { rangeValid { (sw::this + 1)..(sw::this + 2) } }
even rw { rangeValid ( mode == 1 ) { (sw::this / 2 * 2) } rangeValid ( mode == 1 ) { 3..(mode + 3) } }
)");
  expectFacts({
      {"single_set('gain', '7')", "()", {"gain=7"}},
      {"single_set('step', '7')", "()", {"step=7"}},
      {"start()", "2"},
      {"get_range(2, 'gain')", "Get range failed because of invalid bounds (-4)"},
      {"get_range(2, 'step')", "Get range failed because of invalid bounds (-2)"},
      {"single_set('mode', '1')", "()", {"even=3", "mode=1"}},
      {"single_set('even', '5')", "()", {"even=4"}},
  });
}

TEST_F(RunTimeRangesTest, ParametersThatLimitEachOtherSettle) {
  serve(R"(
low  rw { rangeValid { 0..(high) } }
high rw { rangeValid { (low)..100 } }
up   rw { rangeValid { (down + 1)..(down + 1) } }
down rw { rangeValid { (up + 1)..(up + 1) } }
self rw { rangeValid { (self + 1)..(self + 5) } }
)");
  expectFacts({
      {"single_set_bulk(['high', 'low'], ['50', '20'])", "()", {"high=50", "low=20"}},
      // Of the two, high is judged first, with low as it was staged.
      {"single_set('low', '70')", "()", {"high=70", "low=70"}},
      {"single_set('high', '30')", "()"},
      // These can never agree; each is corrected once.
      {"single_set('up', '10')", "()", {"down=11", "up=12"}},
      {"single_set('self', '10')", "()", {"self=11"}},
      {"start()", "5"},
      {"get_range(5, 'up')", "([], [(14, 14)])"},
      {"get_range_bulk(5, ['high', 'low'])", "([], [('high', 70, 100), ('low', 0, 70)])"},
  });
}

TEST_F(RunTimeRangesTest, AnInstanceIsHeldAgainstTheRangeOfItsOwnIndexValues) {
  serve(R"(
chan  index { rangeValid { 0..2 } }
limit rw { index { chan } rangeValid { 0..99 } }
gain  rw { index { chan } rangeValid { 0..(limit) } rangeValid ( chan == 2 ) { 200..(limit + 200) } }
)");
  expectFacts({
      {"single_set_bulk(['limit[0]', 'limit[1]', 'limit[2]'], ['5', '10', '15'])",
       "()",
       {"gain[0]=", "gain[1]=", "gain[2]=", "limit[0]=5", "limit[1]=10", "limit[2]=15"}},
      {"single_set_bulk(['gain[0]', 'gain[1]', 'gain[2]'], ['50', '50', '210'])",
       "()",
       {"gain[0]=5", "gain[1]=10", "gain[2]=210"}},
      {"start()", "2"},
      {"get_range(2, 'gain[1]')", "([], [(0, 10)])"},
      {"set(2, 'limit[1]', '3')", "()"},
      {"get_range(2, 'gain[1]')", "([], [(0, 3)])"},
      {"get_range(2, 'gain[0]')", "([], [(0, 5)])"},
  });
}

TEST_F(RunTimeRangesTest, AnIndexMayHaveARangeThatFollowsAParameter) {
  serve(R"(
size rw { rangeValid { 1..8 } }
chan index { rangeValid { 0..7 } rangeValid ( size > 0 ) { 0..(size - 1) } }
gain rw { index { chan } default { 3 } }
)");
  expectFacts({
      {"single_set('size', '2')", "()", {"gain[0]=", "gain[1]=", "size=2"}},
      {"start()", "1"},
      {"get_idx_range(1, 'chan')", "([], [(0, 1)])"},
      {"set(1, 'size', '4')", "()"},
      {"get_idx_range(1, 'chan')", "([], [(0, 3)])"},
      {"commit(1)", "()", {"gain[2]=", "gain[3]=", "size=4"}},
      {"single_reset('gain[3]')", "()", {"gain[3]=3"}},
      {"single_set('gain[4]', '1')",
       "Commit failed because parameter index is invalid",
       {},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"4\"]", "Var list begin",
        "   \"size\"=\"4\"", "Var list end", "commit: ERROR \"gain[4]\"=\"1\": ret=-3"}},
  });
}

TEST_F(RunTimeRangesTest, ARangeThatCannotBeUsedAcceptsBesideOthers) {
  serve(R"(
m    rw { }
x    rw { }
y    rw { }
near rw { rangeValid (m == 1) { 0..9 } rangeValid { (x)..(y) } }
far  rw { rangeValid { 0..100 } rangeValid (m == 1) { 200..300 } rangeValid (x == 5) { (x)..(y) } }
)");
  expectFacts({
      {"single_set_bulk(['m', 'x', 'y', 'near', 'far'], ['1', '5', '3', '50', '500'])",
       "()",
       {"far=100", "m=1", "near=50", "x=5", "y=3"}},
      {"single_set('y', '8')", "()", {"far=200", "near=9", "y=8"}},
      {"single_set('x', '9')", "()", {"x=9"}},
  });
}

}  // namespace

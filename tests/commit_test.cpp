// Commit: dependents, levels, failures on the way, defaults, what is announced and when.
#include "tests/harness/service_test.h"

namespace {

class CommitTest : public ServiceTest {};

TEST_F(CommitTest, ChangesAreAnnouncedOnceAndInNameOrder) {
  serve("b rw { }\na rw { }\nc wo { }\n");
  expectFacts({
      {"start()", "0"},
      {"commit(0)", "()"},
      {"set_bulk(0, ['c', 'b', 'a'], ['3', '2', '1'])", "()"},
      {"commit(0)", "()", {"a=1", "b=2", "c=3"}},
      {"set_bulk(0, ['c', 'b', 'a'], ['3', '2', '1'])", "()"},
      {"commit(0)", "()", {"c=3"}},  // write-only: always
      {"set_bulk(0, ['a', 'b'], ['1', '5'])", "()"},
      {"commit(0)", "()", {"b=5"}},
  });
}

TEST_F(CommitTest, AnInstanceIsAnnouncedAtItsFirstCommitEvenUnchanged) {
  serve("a rw { }\nchan index { rangeValid { 0..1 } }\nb rw { index { chan } }\n");
  expectFacts({
      {"single_set('a', '')", "()", {"a="}},
      {"single_set('a', '')", "()"},
      {"single_set('b[0]', '')", "()", {"b[0]="}},
      {"single_set('b[1]', '')", "()", {"b[1]="}},
      {"single_set('b[0]', '')", "()"},
  });
}

TEST_F(CommitTest, DependentsAreCorrectedAndAnnounced) {
  serve(R"(
mode  rw { rangeValid { 0..2 } }
level rw { rangeValid ( mode == 1 ) { 0..5 } rangeValid ( mode == 2 ) { 10..20 } }
chain rw { rangeValid ( level >= 10 ) { "high" } rangeValid ( level < 10 ) { "low" } }
other rw { rangeValid { 0..9 } }
)");
  expectFacts({
      {"single_set('level', '50')", "()", {"chain=high", "level=50"}},
      {"single_set('mode', '0')", "()", {"mode=0"}},
      {"single_set('mode', '1')", "()", {"chain=low", "level=5", "mode=1"}},
      {"single_set('mode', '2')", "()", {"chain=high", "level=10", "mode=2"}},
      {"single_set('mode', '2')", "()"},
      {"single_set('mode', '0')", "()", {"mode=0"}},  // what was corrected stays
      {"single_set('other', '1')", "()", {"other=1"}},
      // A staged value is judged after what it depends on, whatever the order of setting.
      {"single_set_bulk(['level', 'mode'], ['7', '1'])", "()", {"chain=low", "level=5", "mode=1"}},
  });
}

TEST_F(CommitTest, EveryInstanceOfADependentIsJudgedAgain) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
chan index { rangeValid { 2, 9..10 } }
port index { rangeValid { "b", "a" } }
trim rw { index { chan, port } rangeValid ( mode == 1 ) { 0..5 } rangeValid ( mode == 0 ) { 0..9 } }
note rw { index { chan } ctrlRO ( trim[2][a] == 5 ) }
)");
  expectFacts({
      {"single_set('mode', '0')",
       "()",
       {"mode=0", "note[10]=", "note[2]=", "note[9]=", "trim[10][a]=", "trim[10][b]=",
        "trim[2][a]=", "trim[2][b]=", "trim[9][a]=", "trim[9][b]="}},
      {"single_set_bulk(['trim[2][a]', 'trim[9][b]'], ['7', '8'])",
       "()",
       {"trim[2][a]=7", "trim[9][b]=8"}},
      {"single_set('mode', '1')", "()", {"mode=1", "trim[2][a]=5", "trim[9][b]=5"}},
      {"single_set('note[9]', '1')", "()"},  // read-only now
      {"single_set('trim[2][a]', '4')", "()", {"trim[2][a]=4"}},
      {"single_set('note[9]', '1')", "()", {"note[9]=1"}},
  });
}

TEST_F(CommitTest, AnInstanceSeesTheInstanceOfItsOwnIndexValues) {
  serve(R"(
in   index { rangeValid { 0..1 } }
out  index { rangeValid { 0..1 } }
gain rw { index { in } rangeValid { 0..99 } }
trim rw { index { out, in } default { (gain + out) } }
sum  rw { index { out } default { (gain[0] + gain[1] + out) } }
)");
  expectFacts({
      {"single_set_bulk(['gain[0]', 'gain[1]'], ['10', '20'])",
       "()",
       {"gain[0]=10", "gain[1]=20",
        "sum[0]=", "sum[1]=", "trim[0][0]=", "trim[0][1]=", "trim[1][0]=", "trim[1][1]="}},
      {"single_reset_bulk(['trim[0][0]', 'trim[0][1]', 'trim[1][1]', 'sum[1]'])",
       "()",
       {"sum[1]=31", "trim[0][0]=10", "trim[0][1]=20", "trim[1][1]=21"}},
  });
}

TEST_F(CommitTest, MutualDependentsShareALevel) {
  serve(R"(
a rw { rangeValid ( b == 1 ) { 0..5 } rangeValid ( b != 1 ) { 0..9 } }
b rw { rangeValid ( a > 5 ) { 0, 2..9 } rangeValid ( a <= 5 ) { 0..9 } }
self rw { ctrlRO ( self == 1 ) }
)");
  expectFacts({
      {"single_set('a', '7')", "()", {"a=7", "b="}},
      {"single_set('b', '1')", "()", {"a=5", "b=1"}},  // a is judged first, with b as staged
      {"single_set('a', '9')", "()"},
      {"single_set('self', '1')", "()"},  // makes itself read-only
      {"single_set('self', '2')", "()", {"self=2"}},
      {"single_set_status('self', '1')", "()", {"self=1"}},
      {"single_set('self', '2')", "()", {"self=2"}},
  });
}

TEST_F(CommitTest, AFailureEndsItsLevelAndLaterLevelsAreApplied) {
  serve(R"(
chan index { rangeValid { 0..3 } }
gain rw { index { chan } }
a    rw { }
z    rw { }
mode rw { rangeValid { 0..2 } }
next rw { rangeValid ( mode == 1 ) { 1..2 } rangeValid ( a == 1 ) { 0..5 } rangeValid ( a != 1 ) { 0..99 } }
)");
  expectFacts({
      {"start()", "0"},
      {"single_set('next', '50')", "()", {"next=50"}},
      // The first level in name order is a, gain, mode, z. What is behind gain is not applied;
      // next, a level above, sees the a that was applied and the mode that was not.
      {"set_bulk(0, ['a', 'gain[9]', 'mode', 'z'], ['1', '1', '1', '1'])", "()"},
      {"commit(0)",
       "Commit failed because parameter index is invalid",
       {"a=1", "next=5"},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"9\"]", "Var list begin",
        "Var list end", "commit: ERROR \"gain[9]\"=\"1\": ret=-3"}},
      {"single_get_bulk(4, ['a', 'mode', 'z', 'next'])", "['1', '', '', '5']"},
      // After a failure, too, nothing is staged.
      {"get_bulk(0, 3, ['gain[9]', 'mode', 'z'])", "['', '', '']"},
      {"commit(0)", "()"},
      {"set(0, 'z', '2')", "()"},
      {"commit(0)", "()", {"z=2"}},
  });
}

TEST_F(CommitTest, AFailureInALaterLevelLeavesTheEarlierOnesCommitted) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
bad  rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } }
good rw { rangeValid ( mode == 1 ) { 3..4 } }
last rw { rangeValid ( bad == 5 ) { "five" } rangeValid ( bad != 5 ) { "other" } }
)");
  expectFacts({
      {"single_set('bad', '5')", "()", {"bad=5", "last=five"}},
      {"start()", "1"},
      {"set_bulk(1, ['mode', 'bad'], ['1', '7'])", "()"},
      // bad fails with its level; good is behind it in the same level; last, a level above,
      // sees the value that bad still holds.
      {"commit(1)",
       "Commit failed because parameter definition is invalid",
       {"mode=1"},
       {"set: ERROR \"bad\": Invalid value \"20\"", "commit: ERROR \"bad\"=\"7\": ret=-2"}},
      {"single_get_bulk(4, ['mode', 'bad', 'good', 'last'])", "['1', '5', '', 'five']"},
  });
}

TEST_F(CommitTest, TheFirstOfSeveralFailuresIsReported) {
  serve(R"(
chan index { rangeValid { 0..3 } }
mode rw { rangeValid { 0..1 } }
bad  rw { rangeValid { 0..10 } rangeValid ( mode == 1 ) { 20..30 } }
zone rw { index { chan } }
)");
  expectFacts({
      {"single_set('bad', '5')", "()", {"bad=5"}},
      {"single_set_bulk(['mode', 'zone[7]'], ['1', 'x'])",
       "Commit failed because parameter index is invalid",
       {"mode=1"},
       {"set: ERROR \"zone\": Invalid index value[\"chan\"=\"7\"]", "Var list begin",
        "Var list end", "commit: ERROR \"zone[7]\"=\"x\": ret=-3",
        "set: ERROR \"bad\": Invalid value \"20\"", "commit: ERROR \"bad\"=\"5\": ret=-2"}},
  });
}

TEST_F(CommitTest, DependentsSeeWhatARefusedWriteLeft) {
  serve(R"(
state    ro { rangeValid { 0..1 } }
alarm    rostrict { rangeValid { 0..1 } }
gate     rw { ctrlValid ( alarm == 1 ) rangeValid { 0..1 } }
by_alarm rw { rangeValid ( alarm == 1 ) { 0..5 } rangeValid ( alarm != 1 ) { 0..99 } }
by_gate  rw { rangeValid ( gate == 1 ) { 0..5 } rangeValid ( gate != 1 ) { 0..99 } }
by_state rw { rangeValid ( state == 1 ) { 0..5 } rangeValid ( state != 1 ) { 0..99 } }
)");
  expectFacts({
      {"single_set_bulk(['by_alarm', 'by_gate', 'by_state'], ['50', '50', '50'])",
       "()",
       {"by_alarm=50", "by_gate=50", "by_state=50"}},
      {"single_set('state', '1')", "()"},  // read-only
      {"single_set('alarm', '1')", "()"},  // read-only
      {"single_set('gate', '1')", "()"},   // not valid
      {"single_set('state', '7')", "Set failed because parameter value is invalid", {"state="}},
      {"single_set_status('state', '1')", "()", {"by_state=5", "state=1"}},
      // A rostrict parameter is stored without a word, and its dependents see it.
      {"single_set_status('alarm', '1')", "()", {"by_alarm=5", "gate="}},
      {"single_set('gate', '1')", "()", {"by_gate=5", "gate=1"}},
      {"single_set('gate', '7')", "Set failed because parameter value is invalid"},
      {"single_get_bulk(3, ['state', 'alarm', 'gate'])", "['1', '1', '1']"},
  });
}

TEST_F(CommitTest, DependentsAreCorrectedEvenWhereClientsMayNotWrite) {
  serve(R"(
mode  rw { rangeValid { 0..1 } }
state ro { rangeValid ( mode == 1 ) { 0..5 } rangeValid ( mode != 1 ) { 0..9 } }
held  rw { ctrlRO ( mode == 1 ) rangeValid ( mode == 1 ) { 0..5 } rangeValid ( mode != 1 ) { 0..9 } }
)");
  expectFacts({
      {"single_set_status_bulk(['state', 'held'], ['9', '9'])", "()", {"held=9", "state=9"}},
      {"single_set('mode', '1')", "()", {"held=5", "mode=1", "state=5"}},
  });
}

TEST_F(CommitTest, DefaultsAreTakenInOrderAndTheUnconditionalOneLast) {
  serve(R"(
mode rw { rangeValid { 0..3 } }
low  rw { }
gain rw { default { 7 } default ( mode == 1 ) { 1 } default ( mode == 2 ) { (low + 10) }
          default ( mode >= 2 ) { "big" } }
calc rw { default { (low * 2) } default ( mode == 1 ) { 3 } }
odd  rw { default ( 10 / low ) { 1 } default ( mode == 2 ) { (10 / (low - 5)) } default { 9 } }
none rw { }
)");
  expectFacts({
      {"single_get('gain')", "''"},  // a default waits for a reset
      {"single_reset('gain')", "()", {"gain=7"}},
      {"single_set('mode', '1')", "()", {"calc=", "mode=1", "odd="}},
      {"single_reset_bulk(['calc', 'gain', 'odd'])", "()", {"calc=3", "gain=1", "odd=9"}},
      {"single_set_bulk(['mode', 'low'], ['2', '5'])", "()", {"low=5", "mode=2"}},
      {"single_reset_bulk(['calc', 'gain'])", "()", {"calc=10", "gain=15"}},
      {"single_reset('odd')", "()", {"odd=1"}},
      {"single_set('low', '0')", "()", {"low=0"}},
      {"single_reset('odd')", "()", {"odd=-2"}},
      {"single_set('low', '0x5')", "()", {"low=0x5"}},
      {"single_set_bulk(['mode', 'low'], ['3', '12'])", "()", {"low=12", "mode=3"}},
      {"single_reset_bulk(['gain', 'odd'])", "()", {"gain=big", "odd=9"}},
      {"single_reset('none')", "()", {"none="}},
  });
}

TEST_F(CommitTest, DefaultsSeeTheStagedSituation) {
  serve(R"(
mode rw { rangeValid { 0..3 } }
gain rw { default ( mode == 1 ) { 1 } default { 7 } }
a    rw { default { 5 } }
b    rw { default { (a + 1) } }
y    rw { default { (z + 1) } }
z    rw { default { 5 } }
)");
  expectFacts({
      {"start()", "0"},
      {"reset(0, 'gain')", "()"},
      {"set(0, 'mode', '1')", "()"},
      {"commit(0)", "()", {"gain=1", "mode=1"}},
      // Resets are resolved in name order, so b sees the default of a, but y not that of z.
      {"reset_bulk(0, ['z', 'y', 'b', 'a'])", "()"},
      {"commit(0)", "()", {"a=5", "b=6", "y=1", "z=5"}},
      {"reset(0, 'y')", "()"},
      {"commit(0)", "()", {"y=6"}},
  });
}

TEST_F(CommitTest, DefaultsKnowTheirIndexValues) {
  serve(R"(
chan index { rangeValid { 0..2 } }
gain rw { index { chan } default { (chan * 10) } default ( chan == 2 ) { "two" } }
)");
  expectFacts({
      {"single_reset_bulk(['gain[0]', 'gain[1]', 'gain[2]'])",
       "()",
       {"gain[0]=0", "gain[1]=10", "gain[2]=two"}},
      {"single_reset('gain[7]')",
       "Commit failed because parameter index is invalid",
       {},
       {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"7\"]", "Var list begin",
        "Var list end", "commit: ERROR \"gain[7]\"=\"70\": ret=-3"}},
  });
}

TEST_F(CommitTest, ADefaultIsCorrectedLikeAnyValue) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
gain rw { rangeValid { 0..9 } default { 50 } }
sel  rw { rangeValid ( mode == 1 ) { "on", "off" } rangeValid ( mode == 0 ) { "idle" } default { "on" } }
)");
  expectFacts({
      {"single_reset('gain')", "()", {"gain=9"}},
      {"single_reset('sel')", "()", {"sel=idle"}},
      {"single_set('mode', '1')", "()", {"mode=1", "sel=on"}},
  });
}

TEST_F(CommitTest, DefaultsThatDependOnNothingComeInOneCommit) {
  serve(R"(
chan  index { rangeValid { 0..1 } }
mode  rw { rangeValid { "film", "video" } default { "video" } }
gain  rw { index { chan } rangeValid { 0..255 } default { 128 } }
state ro { default { "ok" } }
alarm rostrict { default { 0 } }
fire  wo { default { 0 } }
)");
  expectFacts({
      {"start()", "0"},
      {"reset_status_bulk(0, ['mode', 'gain[0]', 'gain[1]', 'state', 'alarm', 'fire'])", "()"},
      {"commit(0)", "()", {"fire=0", "gain[0]=128", "gain[1]=128", "mode=video", "state=ok"}},
      {"single_get_bulk(3, ['alarm', 'gain[1]', 'mode'])", "['0', '128', 'video']"},
  });
}

TEST_F(CommitTest, InstancesThatDoNotExistNowArePassedOver) {
  serve(R"(
mode rw { rangeValid { 0..1 } }
chan index { rangeValid { 0..3 } rangeValid ( mode == 1 ) { 0..1 } rangeValid ( mode != 1 ) { 0..3 } }
lane index { ctrlValid ( mode == 1 ) rangeValid { 7 } }
gain rw { index { chan } rangeValid { 0..9 } }
pair rw { index { chan, lane } }
)");
  const char* const refusal = "Commit failed because parameter index is invalid";
  const std::vector<std::string> log = {"set: ERROR \"gain\": Invalid index value[\"chan\"=\"3\"]",
                                        "Var list begin", "   \"mode\"=\"1\"", "Var list end",
                                        "commit: ERROR \"gain[3]\"=\"6\": ret=-3"};
  expectFacts({
      {"single_set('mode', '0')", "()", {"gain[0]=", "gain[1]=", "gain[2]=", "gain[3]=", "mode=0"}},
      {"single_set('gain[3]', '5')", "()", {"gain[3]=5"}},
      {"single_set('mode', '1')", "()", {"mode=1", "pair[0][7]=", "pair[1][7]="}},
      {"single_get('gain[3]')", "'5'"},
      {"single_set('gain[3]', '6')", refusal, {}, log},
      {"single_set_bulk(['gain[3]', 'mode'], ['6', '0'])", "()", {"gain[3]=6", "mode=0"}},
      // The staged mode takes the instance away before it is committed, and its failure keeps the
      // mode, which is behind it, from being committed.
      {"single_set_bulk(['gain[3]', 'mode'], ['6', '1'])", refusal, {}, log},
      {"single_get_bulk(2, ['gain[3]', 'mode'])", "['6', '0']"},
  });
}

TEST_F(CommitTest, MoreThanAMillionDependentInstancesAreRefused) {
  serve(R"(
big   index { rangeValid { 0..2147483647 } }
mode  rw { }
other rw { }
level rw { index { big } rangeValid { 0..(mode) } }
)");
  expectFacts({
      {"single_set_bulk(['mode', 'other'], ['5', '6'])",
       "Commit failed because of internal error",
       {},
       {R"(start: ERROR "mode": 2147483648 dependent instances, 1000000 allowed)",
        R"(commit: ERROR "mode": 2147483648 dependent instances, 1000000 allowed)"}},
      {"single_get_bulk(2, ['mode', 'other'])", "['', '']"},
      {"single_set('other', '6')", "()", {"other=6"}},
      {"single_set('level[2147483647]', '7')", "()", {"level[2147483647]=0"}},
      {"start()", "4"},
      {"get_idx_range(4, 'big')", "([], [(0, 2147483647)])"},
  });
}

constexpr const char* VARIANTS = R"(
gain rw { rangeValid ( model == 1 ) { 0..9 } rangeValid ( model == 2 ) { 0..99 }
          default ( model == 2 ) { 50 } default { 5 } }
pro  rw { ctrlValid ( model == 2 ) }
eco  rw { ctrlRO ( model == 2 ) rangeValid { 0..1 } }
part rw { rangeValid { 0..(top) } rangeValid ( model == 2 ) { (top + 10)..(top + 20), (name) } }
)";

TEST_F(CommitTest, OneTextServesTheFirstProductVariant) {
  serve(VARIANTS, {"model=1", "top=5", "name=auto"});
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'gain')", "([], [(0, 9)])"},
      {"get_range(0, 'part')", "([], [(0, 5)])"},
      {"single_reset('gain')", "()", {"gain=5"}},
      {"single_set_status('pro', '1')", "()"},
      {"single_get('pro')", "''"},
      {"single_set('eco', '1')", "()", {"eco=1"}},
  });
}

TEST_F(CommitTest, OneTextServesTheSecondProductVariant) {
  serve(VARIANTS, {"model=2", "top=5", "name=auto"});
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'gain')", "([], [(0, 99)])"},
      {"get_range(0, 'part')", "(['auto'], [(0, 5), (15, 25)])"},
      {"single_reset('gain')", "()", {"gain=50"}},
      {"single_set('pro', '1')", "()", {"pro=1"}},
      {"single_set('eco', '1')", "()"},
      {"single_set_status('eco', '1')", "()", {"eco=1"}},
  });
}

TEST_F(CommitTest, ASignalLargerThanAMessageMayBeGoesOutInPortions) {
  constexpr int COUNT = 40;
  std::string text;
  for (int i = 0; i < COUNT; ++i) text += "p" + std::to_string(100 + i) + " rw { }\n";
  serve(text);
  expectFacts({{"start()", "0"}});
  const std::string megabyte(1 << 20, 'x');
  std::vector<std::string> expected;
  for (int i = 0; i < COUNT; ++i) {
    const std::string name = "p" + std::to_string(100 + i);
    const Reply reply =
        client().call("set", g_variant_new("(uss)", 0U, name.c_str(), megabyte.c_str()));
    ASSERT_NE(reply.value, nullptr) << reply.errorMessage;
    expected.push_back(std::string(name).append("=").append(megabyte));
  }
  EXPECT_EQ(client().answer("commit(0)"), "()");
  const std::vector<std::vector<std::string>> portions = client().newSignals();
  EXPECT_GE(portions.size(), 2U);
  std::vector<std::string> seen;
  for (const std::vector<std::string>& portion : portions) {
    EXPECT_LT(portion.size(), 32U);  // of a megabyte and some bytes each
    seen.insert(seen.end(), portion.begin(), portion.end());
  }
  EXPECT_TRUE(seen == expected);  // compared without printing 40 MiB
}

}  // namespace

// The single_ methods: one operation in a transaction of its own, committed where it writes.
#include "tests/harness/service_test.h"

namespace {

constexpr const char* DEFINITIONS = R"(
gain   rw { rangeValid { 0..9 } default { 5 } }
level  ro { rangeValid { 0..100 } default { 50 } }
note   rw { default { "none" } }
)";

class SingleMethodsTest : public ServiceTest {
 protected:
  void SetUp() override { serve(DEFINITIONS, {"limit=7"}); }
};

TEST_F(SingleMethodsTest, GetReadsCommittedValues) {
  expectFacts({
      {"single_get('gain')", "''"},
      {"single_set('gain', '3')", "()", {"gain=3"}},
      {"single_get('gain')", "'3'"},
      {"single_get('nope')", "''"},
      {"single_get_bulk(2, ['gain', 'limit'])", "['3', '7']"},
      {"single_get_bulk(3, ['gain', 'note'])", "['3', '']"},
      {"single_get_bulk(1, ['gain', 'note'])", "['3']"},
      {"single_get_bulk(0, ['gain'])", "[]"},
      {"single_get_bulk(4294967295, ['gain', 'nope'])", "['3', '']"},
      {"single_get_bulk(7, [])", "[]"},
  });
}

TEST_F(SingleMethodsTest, ChecksStoreNothing) {
  expectFacts({
      {"single_is_valid('gain', '9')", "true"},
      {"single_is_valid('gain', '10')", "false"},
      {"single_is_valid('nope', '1')", "false"},
      {"single_check_set('gain', '9')", "true"},
      {"single_check_set('gain', '10')", "false"},
      {"single_check_set('nope', '1')", "false"},
      {"single_get('gain')", "''"},
  });
}

TEST_F(SingleMethodsTest, SetCommits) {
  expectFacts({
      {"single_set('gain', '3')", "()", {"gain=3"}},
      {"single_set('gain', '3')", "()"},
      {"single_set('gain', '4')", "()", {"gain=4"}},
      {"single_set('level', '7')", "()"},  // read-only, passed over without a word
      {"single_get('level')", "''"},
      {"single_set_status('level', '7')", "()", {"level=7"}},
      {"single_set_bulk(['note', 'gain', 'level'], ['x', '2', '1'])", "()", {"gain=2", "note=x"}},
      {"single_set_status_bulk(['level', 'gain'], ['1', '1'])", "()", {"gain=1", "level=1"}},
      {"single_set_bulk([], [])", "()"},
      {"single_set_status_bulk(['gain'], [])", "()"},
  });
}

TEST_F(SingleMethodsTest, SetReportsItsOwnFailure) {
  expectFacts({
      {"single_set('nope', '1')", "Set failed because parameter name is invalid"},
      {"single_set_status('nope', '1')", "Set status failed because parameter name is invalid"},
      {"single_set_bulk(['nope'], ['1'])", "Set failed because parameter name is invalid"},
      {"single_set_status_bulk(['nope'], ['1'])",
       "Set status failed because parameter name is invalid"},
      {"single_set('gain', '0')", "()", {"gain=0"}},
      {"single_set('gain', '10')", "Set failed because parameter value is invalid"},
      {"single_set_status('gain', '10')", "Set status failed because parameter value is invalid"},
      {"single_get('gain')", "'0'"},
  });
}

TEST_F(SingleMethodsTest, TheCommitRunsAlsoAfterAFailedSet) {
  expectFacts({
      {"single_set_bulk(['nope', 'gain'], ['1', '7'])",
       "Set failed because parameter name is invalid",
       {"gain=7"}},
      {"single_set_status_bulk(['gain', 'level', 'note'], ['10', '3', 'x'])",
       "Set status failed because parameter value is invalid",
       {"level=3", "note=x"}},
      {"single_get('gain')", "'7'"},
  });
}

TEST_F(SingleMethodsTest, AFailedCommitFailsTheCall) {
  const std::vector<std::string> log = {"set: ERROR \"gain\": Not enough indices 0>1",
                                        "commit: ERROR \"gain[1]\"=\"7\": ret=-3"};
  expectFacts({
      {"single_set('gain[1]', '7')", "Commit failed because parameter index is invalid", {}, log},
      // Of two failures the first is told.
      {"single_set_bulk(['nope', 'gain[1]'], ['1', '7'])",
       "Set failed because parameter name is invalid",
       {},
       log},
  });
}

TEST_F(SingleMethodsTest, ResetCommitsTheDefault) {
  expectFacts({
      {"single_reset('gain')", "()", {"gain=5"}},
      {"single_reset('gain')", "()"},
      {"single_reset('level')", "()"},
      {"single_reset_status('level')", "()", {"level=50"}},
      {"single_set_bulk(['gain', 'note'], ['1', 'x'])", "()", {"gain=1", "note=x"}},
      {"single_reset_bulk(['note', 'gain', 'level'])", "()", {"gain=5", "note=none"}},
      {"single_set_status_bulk(['level', 'note'], ['1', 'x'])", "()", {"level=1", "note=x"}},
      {"single_reset_status_bulk(['note', 'level'])", "()", {"level=50", "note=none"}},
      {"single_reset_bulk([])", "()"},
      {"single_reset_status_bulk([])", "()"},
  });
}

TEST_F(SingleMethodsTest, ResetReportsUnknownNamesAndCommitsTheOthers) {
  expectFacts({
      {"single_reset('nope')", "Reset failed because parameter name is invalid"},
      {"single_reset_status('nope')", "Reset status failed because parameter name is invalid"},
      {"single_reset_bulk(['gain', 'nope', 'note'])",
       "Reset failed because parameter name is invalid",
       {"gain=5", "note=none"}},
      {"single_reset_status_bulk(['nope', 'level'])",
       "Reset status failed because parameter name is invalid",
       {"level=50"}},
  });
}

TEST_F(SingleMethodsTest, ClientTransactionsAreNotTouched) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain', '8')", "()"},
      {"single_set('gain', '2')", "()", {"gain=2"}},
      {"single_get('gain')", "'2'"},
      {"get(0, 'gain')", "'8'"},
      {"commit(0)", "()", {"gain=8"}},
  });
}

}  // namespace

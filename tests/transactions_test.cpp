// The methods on a client's own transaction: start, get, set, reset, check, commit, end.
#include "tests/harness/service_test.h"

namespace {

// gain accepts numbers, source texts, both texts and numbers go into mixed, note takes anything;
// level is written by the device alone.
constexpr const char* DEFINITIONS = R"(
gain   rw { rangeValid { 0..9 } default { 5 } }
level  ro { rangeValid { 0..100 } default { 50 } }
mixed  rw { rangeValid { "max", 0..3 } default { "max" } }
note   rw { default { "none" } }
source rw { rangeValid { "auto", "off" } default { "auto" } }
)";

class TransactionsTest : public ServiceTest {
 protected:
  void SetUp() override { serve(DEFINITIONS, {"limit=7"}); }
};

TEST_F(TransactionsTest, IdsAscendFromZeroAndAreNotReused) {
  expectFacts({
      {"start()", "0"},
      {"start()", "1"},
      {"single_get('gain')", "''"},  // a transaction of its own takes id 2
      {"start()", "3"},
      {"end(1)", "()"},
      {"start()", "4"},
      {"single_set('nope', '1')", "Set failed because parameter name is invalid"},
      {"start()", "6"},
      {"get_deps('gain')", "[]"},  // needs no transaction
      {"start()", "7"},
  });
}

TEST_F(TransactionsTest, EveryMethodRefusesAnIdThatIsNotOpen) {
  for (const std::string id : {"0", "1", "4294967295"}) {
    SCOPED_TRACE(id);
    expectFacts({
        {"get(" + id + ", 'gain')", "Get failed because of invalid transaction id"},
        {"get_bulk(" + id + ", 1, ['gain'])", "Get bulk failed because of invalid transaction id"},
        {"is_valid(" + id + ", 'gain', '1')", "Validate failed because of invalid transaction id"},
        {"check_set(" + id + ", 'gain', '1')", "Validate failed because of invalid transaction id"},
        {"set(" + id + ", 'gain', '1')", "Set failed because of invalid transaction id"},
        {"set_status(" + id + ", 'gain', '1')",
         "Set status failed because of invalid transaction id"},
        {"set_bulk(" + id + ", ['gain'], ['1'])", "Set failed because of invalid transaction id"},
        {"set_status_bulk(" + id + ", ['gain'], ['1'])",
         "Set status failed because of invalid transaction id"},
        {"reset(" + id + ", 'gain')", "Reset failed because of invalid transaction id"},
        {"reset_status(" + id + ", 'gain')",
         "Reset status failed because of invalid transaction id"},
        {"reset_bulk(" + id + ", ['gain'])", "Reset failed because of invalid transaction id"},
        {"reset_status_bulk(" + id + ", ['gain'])",
         "Reset status failed because of invalid transaction id"},
        {"commit(" + id + ")", "Commit failed because of invalid transaction id"},
        {"end(" + id + ")", "End failed because of invalid transaction id"},
        {"get_range(" + id + ", 'gain')", "Get range failed because of invalid transaction id"},
        {"get_range_bulk(" + id + ", ['gain'])",
         "Get range failed because of invalid transaction id"},
        {"get_parm_idx(" + id + ", 'gain')",
         "Get parm index failed because of invalid transaction id"},
        {"get_idx_range(" + id + ", 'gain')",
         "Get index range failed because of invalid transaction id"},
    });
  }
}

TEST_F(TransactionsTest, AnEndedIdIsNoLongerOpen) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain', '5')", "()"},
      {"end(0)", "()"},
      {"get(0, 'gain')", "Get failed because of invalid transaction id"},
      {"commit(0)", "Commit failed because of invalid transaction id"},
      {"end(0)", "End failed because of invalid transaction id"},
      {"single_get('gain')", "''"},  // what was staged is gone
  });
}

TEST_F(TransactionsTest, AStagedValueIsSeenInItsTransactionOnly) {
  expectFacts({
      {"start()", "0"},
      {"start()", "1"},
      {"get(0, 'gain')", "''"},
      {"set(0, 'gain', '7')", "()"},
      {"get(0, 'gain')", "'7'"},
      {"get(1, 'gain')", "''"},
      {"single_get('gain')", "''"},
      {"set(1, 'gain', '3')", "()"},
      {"commit(0)", "()", {"gain=7"}},
      {"get(0, 'gain')", "'7'"},
      {"get(1, 'gain')", "'3'"},
      {"single_get('gain')", "'7'"},
      {"commit(1)", "()", {"gain=3"}},
      {"get(0, 'gain')", "'3'"},
  });
}

TEST_F(TransactionsTest, ATransactionIsNotItsClients) {
  expectFacts({{"start()", "0"}, {"set(0, 'gain', '7')", "()"}});
  Client other(bus().address());
  EXPECT_EQ(other.answer("get(0, 'gain')"), "'7'");
  EXPECT_EQ(other.answer("commit(0)"), "()");
  EXPECT_EQ(other.newSignals(), std::vector<std::vector<std::string>>({{"gain=7"}}));
  EXPECT_EQ(client().newSignals(), std::vector<std::vector<std::string>>({{"gain=7"}}));
}

TEST_F(TransactionsTest, GetOfWhatIsNoParameterIsEmpty) {
  expectFacts({
      {"start()", "0"},
      {"get(0, 'nope')", "''"},
      {"get(0, '')", "''"},
      {"get(0, 'gain[1]')", "''"},  // no such instance
      {"get(0, 'limit')", "'7'"},   // a constant
      {"get(0, 'sw::this')", "''"},
      {"get(0, 'vidStd::gain::spal')", "''"},
  });
}

TEST_F(TransactionsTest, GetBulkGivesAsManyValuesAsTheCountAndTheNamesAllow) {
  expectFacts({
      {"start()", "0"},
      {"set_bulk(0, ['gain', 'note'], ['1', 'x'])", "()"},
      {"get_bulk(0, 2, ['gain', 'note'])", "['1', 'x']"},
      {"get_bulk(0, 3, ['note', 'gain'])", "['x', '1']"},  // the third entry is null: the end
      {"get_bulk(0, 1, ['gain', 'note'])", "['1']"},
      {"get_bulk(0, 0, ['gain', 'note'])", "[]"},
      {"get_bulk(0, 0, [])", "[]"},
      {"get_bulk(0, 1, [])", "[]"},
      {"get_bulk(0, 4, ['note', 'nope', 'limit', 'gain'])", "['x', '', '7', '1']"},
      {"get_bulk(0, 2147483647, ['gain', 'gain'])", "['1', '1']"},
      {"get_bulk(0, 4294967295, ['gain'])", "['1']"},
  });
}

TEST_F(TransactionsTest, IsValidAsksTheUnconditionalRanges) {
  expectFacts({
      {"start()", "0"},
      {"is_valid(0, 'gain', '0')", "true"},
      {"is_valid(0, 'gain', '9')", "true"},
      {"is_valid(0, 'gain', '-1')", "false"},
      {"is_valid(0, 'gain', '10')", "false"},
      {"is_valid(0, 'gain', '0x9')", "true"},
      {"is_valid(0, 'gain', '011')", "true"},  // octal 9
      {"is_valid(0, 'gain', ' 9')", "true"},
      {"is_valid(0, 'gain', '9 ')", "false"},
      {"is_valid(0, 'gain', 'abc')", "false"},
      {"is_valid(0, 'gain', '')", "false"},
      {"is_valid(0, 'source', 'off')", "true"},
      {"is_valid(0, 'source', 'on')", "false"},
      {"is_valid(0, 'source', '1')", "false"},
      {"is_valid(0, 'source', '')", "false"},
      {"is_valid(0, 'mixed', 'max')", "true"},
      {"is_valid(0, 'mixed', '3')", "true"},
      {"is_valid(0, 'mixed', '4')", "false"},
      {"is_valid(0, 'mixed', 'min')", "false"},
      {"is_valid(0, 'mixed', '')", "false"},
      {"is_valid(0, 'note', '')", "true"},
      {"is_valid(0, 'note', 'anything')", "true"},
      {"is_valid(0, 'nope', '1')", "false"},
      {"is_valid(0, 'gain[3]', '9')", "true"},  // indices are not looked at
      {"get(0, 'gain')", "''"},                 // nothing was staged
      {"commit(0)", "()"},
  });
}

TEST_F(TransactionsTest, CheckSetStagesWhatIsValid) {
  expectFacts({
      {"start()", "0"},
      {"check_set(0, 'gain', '4')", "true"},
      {"get(0, 'gain')", "'4'"},
      {"check_set(0, 'gain', '10')", "false"},
      {"get(0, 'gain')", "'4'"},
      {"check_set(0, 'nope', '1')", "false"},
      {"check_set(0, 'level', '7')", "true"},
      {"commit(0)", "()", {"gain=4"}},  // level is read-only for a set without status
      {"get(0, 'level')", "''"},
      {"check_set(0, 'source', 'on')", "false"},
      {"commit(0)", "()"},  // nothing was staged
  });
}

TEST_F(TransactionsTest, SetRefusesUnknownNamesAndValuesOutOfRange) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain', '4')", "()"},
      {"set(0, 'nope', '1')", "Set failed because parameter name is invalid"},
      {"set(0, '', '1')", "Set failed because parameter name is invalid"},
      {"set(0, 'limit', '1')", "Set failed because parameter name is invalid"},
      {"set(0, 'gain', '10')", "Set failed because parameter value is invalid"},
      {"set(0, 'source', 'on')", "Set failed because parameter value is invalid"},
      {"set_status(0, 'nope', '1')", "Set status failed because parameter name is invalid"},
      {"set_status(0, 'gain', '10')", "Set status failed because parameter value is invalid"},
      {"get(0, 'gain')", "'4'"},
  });
}

TEST_F(TransactionsTest, ARefusedValueLeavesWhatWasStagedBefore) {
  expectFacts({
      {"start()", "0"},
      {"set_status(0, 'level', '4')", "()"},
      {"set(0, 'level', '101')", "Set failed because parameter value is invalid"},
      {"commit(0)", "()", {"level=4"}},  // the status flag is still that of the first set
      {"reset(0, 'gain')", "()"},
      {"set(0, 'gain', '10')", "Set failed because parameter value is invalid"},
      {"commit(0)", "()", {"gain=5"}},  // the reset is still staged
  });
}

TEST_F(TransactionsTest, ARefusedValueStagesWhatTheParameterHolds) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain', '10')", "Set failed because parameter value is invalid"},
      {"get(0, 'gain')", "''"},
      {"commit(0)", "()", {"gain="}},  // the first commit of an instance announces it
      {"set(0, 'gain', '10')", "Set failed because parameter value is invalid"},
      {"commit(0)", "()"},
      {"set(0, 'source', 'on')", "Set failed because parameter value is invalid"},
      {"commit(0)", "()", {"source=auto"}},  // the empty value that it held is not allowed
  });
}

TEST_F(TransactionsTest, SetBulkWalksBothListsToTheShorterEnd) {
  expectFacts({
      {"start()", "0"},
      {"set_bulk(0, ['gain', 'note', 'source'], ['1', '2'])", "()"},
      {"get_bulk(0, 3, ['gain', 'note', 'source'])", "['1', '2', '']"},
      {"set_bulk(0, ['gain'], ['3', '4', '5'])", "()"},
      {"get_bulk(0, 3, ['gain', 'note', 'source'])", "['3', '2', '']"},
      {"set_bulk(0, [], ['6'])", "()"},
      {"set_bulk(0, ['gain'], [])", "()"},
      {"set_bulk(0, [], [])", "()"},
      {"set_bulk(0, ['gain', 'gain'], ['6', '7'])", "()"},
      {"commit(0)", "()", {"gain=7", "note=2"}},
  });
}

TEST_F(TransactionsTest, SetBulkTriesEveryPairAndReportsTheFirstFailure) {
  expectFacts({
      {"start()", "0"},
      {"set_bulk(0, ['gain', 'note'], ['10', 'x'])",
       "Set failed because parameter value is invalid"},
      {"get(0, 'note')", "'x'"},
      {"set_bulk(0, ['nope', 'gain', 'note'], ['1', '10', 'y'])",
       "Set failed because parameter name is invalid"},
      {"get(0, 'note')", "'y'"},
      {"set_bulk(0, ['gain', 'nope', 'note'], ['10', '1', 'z'])",
       "Set failed because parameter value is invalid"},
      {"get(0, 'note')", "'z'"},
      {"set_status_bulk(0, ['nope', 'level'], ['1', '8'])",
       "Set status failed because parameter name is invalid"},
      {"set_status_bulk(0, ['source'], ['on'])",
       "Set status failed because parameter value is invalid"},
      {"get(0, 'level')", "'8'"},
      {"commit(0)", "()", {"gain=", "level=8", "note=z", "source=auto"}},
  });
}

TEST_F(TransactionsTest, TheStatusFlagWritesReadOnlyParameters) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'level', '7')", "()"},
      {"get(0, 'level')", "'7'"},
      {"commit(0)", "()"},
      {"get(0, 'level')", "''"},
      {"set_status(0, 'level', '7')", "()"},
      {"commit(0)", "()", {"level=7"}},
      {"set_bulk(0, ['level'], ['8'])", "()"},
      {"commit(0)", "()"},
      {"set_status_bulk(0, ['level'], ['8'])", "()"},
      {"commit(0)", "()", {"level=8"}},
      {"set_status(0, 'level', '9')", "()"},
      {"set(0, 'level', '9')", "()"},  // the later flag counts
      {"commit(0)", "()"},
      {"reset(0, 'level')", "()"},
      {"commit(0)", "()"},
      {"reset_status(0, 'level')", "()"},
      {"commit(0)", "()", {"level=50"}},
  });
}

TEST_F(TransactionsTest, ResetTakesTheDefaultAtCommit) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain', '7')", "()"},
      {"reset(0, 'gain')", "()"},
      {"get(0, 'gain')", "'7'"},  // until the commit
      {"commit(0)", "()", {"gain=5"}},
      {"reset(0, 'gain')", "()"},
      {"get(0, 'gain')", "'5'"},
      {"set(0, 'gain', '6')", "()"},  // the reset is taken back
      {"commit(0)", "()", {"gain=6"}},
      {"reset_bulk(0, ['gain', 'mixed', 'note', 'source'])", "()"},
      {"commit(0)", "()", {"gain=5", "mixed=max", "note=none", "source=auto"}},
  });
}

TEST_F(TransactionsTest, ResetRefusesUnknownNamesAndBulkTriesThemAll) {
  expectFacts({
      {"start()", "0"},
      {"reset(0, 'nope')", "Reset failed because parameter name is invalid"},
      {"reset_status(0, 'limit')", "Reset status failed because parameter name is invalid"},
      {"reset_bulk(0, ['nope', 'gain'])", "Reset failed because parameter name is invalid"},
      {"reset_status_bulk(0, ['level', 'nope'])",
       "Reset status failed because parameter name is invalid"},
      {"reset_bulk(0, [])", "()"},
      {"reset_status_bulk(0, [])", "()"},
      {"commit(0)", "()", {"gain=5", "level=50"}},
  });
}

TEST_F(TransactionsTest, NamesAreBroughtIntoNormalForm) {
  expectFacts({
      {"start()", "0"},
      {"set(0, 'gain[1', '7')", "()"},  // an unclosed bracket holds no index value
      {"get(0, 'gain')", "'7'"},
      {"get(0, 'gain[')", "'7'"},
      {"set(0, 'gain]', '7')", "Set failed because parameter name is invalid"},
      {"commit(0)", "()", {"gain=7"}},
      {"single_get('gain[[[[')", "'7'"},
      {"single_set('gain[', '3')", "()", {"gain=3"}},
      {"single_reset('gain[x')", "()", {"gain=5"}},
  });
}

TEST_F(TransactionsTest, ACommitEmptiesTheTransactionAndLeavesItOpen) {
  expectFacts({
      {"start()", "0"},
      {"commit(0)", "()"},  // nothing staged, nothing said
      {"set(0, 'gain', '7')", "()"},
      {"commit(0)", "()", {"gain=7"}},
      {"single_set('gain', '8')", "()", {"gain=8"}},
      {"get(0, 'gain')", "'8'"},
      {"commit(0)", "()"},
      {"set(0, 'gain', '9')", "()"},
      {"commit(0)", "()", {"gain=9"}},
      {"end(0)", "()"},
  });
}

TEST_F(TransactionsTest, ValuesKeepTheTextThatTheClientGave) {
  expectFacts({
      {"single_set('gain', '0x07')", "()", {"gain=0x07"}},
      {"single_set('gain', ' 7')", "()", {"gain= 7"}},
      {"single_set('gain', '+7')", "()", {"gain=+7"}},
      {"single_set('note', 'a=b\\nc')", "()", {"note=a=b\nc"}},
      {"single_set('note', '')", "()", {"note="}},
      {"single_get('gain')", "'+7'"},
  });
}

}  // namespace

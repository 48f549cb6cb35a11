// What is noted as covered is what the reasons say has decided, on random texts.
#include <gtest/gtest.h>

#include <set>
#include <utility>

#include "base/system_log.h"
#include "coverage/device_coverage.h"
#include "database/commit.h"
#include "database/explain.h"
#include "database/index_values.h"
#include "database/plan.h"
#include "database/range_query.h"
#include "sw/parm/parm_name.h"
#include "tests/support/random_texts.h"

namespace {

using Lines = std::set<uint32_t>;

class RandomCoverage : public testing::Test {
 protected:
  void checkText(uint32_t seed) {
    RandomTexts random(seed);
    const std::string text = onLines(random.text());
    Database database;
    if (defineOrRefuse(database, text) != 0) return;
    SCOPED_TRACE(text);
    TextCoverage coverage(text);
    DeviceCoverage device(database, coverage);
    database_ = &database;
    coverage_ = &coverage;
    device_ = &device;
    for (int step = 0; step < 40; ++step) checkStep(random);
  }

  size_t defaults_ = 0;
  size_t values_ = 0;
  size_t ranges_ = 0;
  size_t accepting_ = 0;

 private:
  // Each statement on a line of its own.
  static std::string onLines(std::string text) {
    for (const char* keyword :
         {"rangeValid", "rangeDoc", "ctrlValid", "ctrlRO", "default", "valueChange"}) {
      for (size_t at = 0; (at = text.find(keyword, at)) != std::string::npos; at += 12) {
        text.insert(at, "\n");
      }
    }
    return text;
  }

  void checkStep(RandomTexts& random) {
    const std::vector<ParmEntry*> parms = database_->parmsInNameOrder();
    ParmEntry& parm = *parms[random.below(parms.size())];
    IndexTuple indices;
    for (IndexEntry* index : parm.indices->own) {
      indices.push_back(indexValues(*index)[random.below(indexValues(*index).size())]);
    }
    const std::string name = fullName(parm.parm.name(), indices);
    SCOPED_TRACE(name);
    // In a ring, others are judged first, and the situation is another one.
    for (const ParmEntry* dependent : dependentsOf(*database_, {&parm})) {
      if (dependent->level <= parm.level) return;
    }
    Transaction transaction(*database_);
    switch (random.below(3)) {
      case 0:
        return checkReset(transaction, name);
      case 1:
        return checkRange(transaction, name);
      default:
        return checkSet(transaction, name, random.oneOf(VALUES));
    }
  }

  void checkReset(Transaction& transaction, const std::string& name) {
    Explanation explanation;
    ASSERT_EQ(explain(*database_, transaction.staged(), name, explanation), EXPLAIN_DONE);
    ASSERT_EQ(transaction.reset(name, true), STAGE_DONE);
    device_->noteCommit(transaction);
    const Lines chosen = takeChosen(name, {"default"});
    const std::optional<Reason>& decider = explanation.defaultDecider;
    EXPECT_EQ(chosen, decider ? Lines{decider->line} : Lines{});
    defaults_ += chosen.size();
    finish(transaction);
  }

  void checkRange(Transaction& transaction, const std::string& name) {
    Explanation explanation;
    ASSERT_EQ(explain(*database_, transaction.staged(), name, explanation), EXPLAIN_DONE);
    BoundsParm range;
    const int result = queryRange(*database_, transaction.staged(), name, range);
    device_->noteRange(transaction, name);
    const Lines chosen = takeChosen(name, {"rangeValid", "rangeDoc"});
    if (result == RANGE_REFUSED || result > 0) return;  // nobody was asked
    if (explanation.limit) {
      EXPECT_TRUE(chosen.contains(explanation.limit->line)) << explanation.limit->statement;
    } else {
      EXPECT_EQ(chosen, Lines{});
    }
    ranges_ += chosen.size();
  }

  void checkSet(Transaction& transaction, const std::string& name, const std::string& value) {
    if (transaction.set(name, value, true) != STAGE_DONE) return;
    ValueExplanation explanation;
    ASSERT_EQ(explainValue(*database_, transaction.staged(), name, value, true, explanation),
              EXPLAIN_DONE);
    device_->noteCommit(transaction);
    const Lines chosen = takeChosen(name, {"rangeValid", "valueChange"});
    const ValueReasons& reasons = explanation.reasons;
    for (const ValueStep& step : reasons.steps) {
      EXPECT_TRUE(chosen.contains(step.reason.line)) << step.reason.statement;
    }
    if (reasons.acceptedBy) {
      // A run-time range that cannot be used accepts everything, and has no say.
      const std::string& statement = reasons.acceptedBy->statement;
      const bool isRunTime = statement.find('(', statement.find('{')) != std::string::npos;
      EXPECT_TRUE(isRunTime || chosen.contains(reasons.acceptedBy->line)) << statement;
      accepting_ += chosen.contains(reasons.acceptedBy->line) ? 1 : 0;
    } else if (reasons.steps.empty()) {
      // Bounds that apply and cannot be used have no say, and neither has one that never applies.
      EXPECT_EQ(chosen, Lines{});
    }
    values_ += chosen.size();
    finish(transaction);
  }

  void finish(Transaction& transaction) const {
    std::vector<Change> changes;
    static_cast<void>(commit(transaction, changes));
  }

  // The lines of the statements of a definition that were chosen since the last call.
  Lines takeChosen(const std::string& name, const std::set<std::string_view>& keywords) {
    Lines lines;
    for (StatementCoverage& statement : coverage_->statements()) {
      const bool isChosen = std::exchange(statement.chosen, 0) > 0;
      const std::string& definition = coverage_->definitions()[statement.definition].name;
      if (isChosen && definition == baseName(name) && keywords.contains(statement.keyword)) {
        lines.insert(statement.line);
      }
    }
    return lines;
  }

  Database* database_ = nullptr;
  TextCoverage* coverage_ = nullptr;
  DeviceCoverage* device_ = nullptr;
};

TEST_F(RandomCoverage, IsWhatTheReasonsSay) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  for (uint32_t seed = 0; seed < 5000 && !HasFailure(); ++seed) checkText(seed);
  EXPECT_GT(defaults_, 500U);
  EXPECT_GT(values_, 500U);
  EXPECT_GT(ranges_, 500U);
  EXPECT_GT(accepting_, 500U);
}

}  // namespace

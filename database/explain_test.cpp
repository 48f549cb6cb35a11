#include "database/explain.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/system_log.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "database/index_values.h"
#include "sw/parm/parm_name.h"
#include "sw/parm/statement_text.h"
#include "tests/support/random_texts.h"

namespace {

// A reason as a person reads it: `2: rangeValid { 0..9 } | mode=slow, level=?`.
std::string textOf(const Reason& reason) {
  std::string text = std::to_string(reason.line) + ": " + reason.statement;
  for (const UsedName& used : reason.names) {
    text += (&used == &reason.names.front() ? " | " : ", ") + used.name + "=" +
            used.value.value_or("?");
  }
  return text;
}

std::string textOf(const std::optional<Reason>& reason) { return reason ? textOf(*reason) : ""; }

std::vector<std::string> textsOf(const std::vector<Reason>& reasons) {
  std::vector<std::string> texts;
  texts.reserve(reasons.size());
  for (const Reason& reason : reasons) texts.push_back(textOf(reason));
  return texts;
}

constexpr std::string_view DEVICE = R"(mode rw {
  rangeValid { "slow", "fast" }
  default { "fast" }
}
place index { rangeValid { 1..4 }
  rangeValid (mode == "slow") { 1..2 }
  rangeValid (mode == "fast") { 1..4 }
}
rate rw {
  index { place }
  rangeValid { 0..100 }
  rangeValid (mode == "slow") { 1..10 }
  rangeValid (mode == "fast") { 1..100 }
  default (mode == "slow") { 5 }
  default { 50 }
  ctrlRO (mode == "slow" && place == 2)
  ctrlValid (mode != "")
  valueChange { "max" -> 1000 }
}
free rw { }
state ro { rangeDoc { 0..1 } rangeValid { 0..9 } }
)";

class ExplainTest : public testing::Test {
 protected:
  ExplainTest() { define(database_, DEVICE); }

  Explanation explained(const std::string& name) {
    Explanation out;
    EXPECT_EQ(explain(database_, transaction_.staged(), name, out), EXPLAIN_DONE) << name;
    return out;
  }
  void setMode(const char* mode) { EXPECT_EQ(transaction_.set("mode", mode, true), STAGE_DONE); }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(ExplainTest, TellsWhatDecides) {
  setMode("slow");
  const Explanation rate = explained("rate[2]");
  EXPECT_TRUE(rate.exists);
  EXPECT_EQ(textsOf(rate.existence), Texts{"17: ctrlValid (mode != \"\") | mode=slow"});
  EXPECT_TRUE(rate.isReadOnly);
  EXPECT_EQ(textsOf(rate.readOnly),
            Texts{"16: ctrlRO (mode == \"slow\" && place == 2) | mode=slow, place=2"});
  EXPECT_EQ(textOf(rate.limit), "12: rangeValid (mode == \"slow\") { 1..10 } | mode=slow");
  EXPECT_EQ(rate.defaultValue, "5");
  EXPECT_EQ(textOf(rate.defaultDecider), "14: default (mode == \"slow\") { 5 } | mode=slow");
}

TEST_F(ExplainTest, TellsWhatDecidesElsewhere) {
  setMode("fast");
  EXPECT_FALSE(explained("rate[2]").isReadOnly);
  EXPECT_EQ(textOf(explained("rate[2]").defaultDecider), "15: default { 50 }");
  EXPECT_EQ(textOf(explained("free").limit), "");
  EXPECT_EQ(textOf(explained("free").defaultDecider), "");
  EXPECT_EQ(textOf(explained("state").limit), "21: rangeDoc { 0..1 }");
  EXPECT_EQ(textsOf(explained("state").readOnly), Texts{"21: ro"});
}

TEST_F(ExplainTest, TellsWhichIndexRefuses) {
  const struct {
    const char* mode;
    const char* name;
    Texts existence;
  } cases[] = {
      {"slow", "rate[3]", {"6: rangeValid (mode == \"slow\") { 1..2 } | place=3, mode=slow"}},
      {"slow", "rate[9]", {"5: rangeValid { 1..4 } | place=9"}},
      {"odd",
       "rate[1]",
       {"6: rangeValid (mode == \"slow\") { 1..2 } | place=1, mode=odd",
        "7: rangeValid (mode == \"fast\") { 1..4 } | place=1, mode=odd"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    StagedValues staged;
    staged.stage(*database_.findParm("mode"), {}, false).value.set(c.mode);
    Explanation out;
    EXPECT_EQ(explain(database_, staged, c.name, out), EXPLAIN_DONE);
    EXPECT_FALSE(out.exists);
    EXPECT_EQ(out.refusingIndex, "place");
    EXPECT_EQ(textsOf(out.existence), c.existence);
  }
}

TEST_F(ExplainTest, TellsWhatAValueBecomes) {
  setMode("slow");
  const struct {
    const char* value;
    const char* result;
    Texts steps;
  } cases[] = {
      {"7", "7", {}},
      {"max",
       "10",
       {"1000 by 18: valueChange { \"max\" -> 1000 }", "100 by 11: rangeValid { 0..100 }",
        "10 by 12: rangeValid (mode == \"slow\") { 1..10 } | mode=slow"}},
      {"50", "10", {"10 by 12: rangeValid (mode == \"slow\") { 1..10 } | mode=slow"}},
  };
  for (const auto& c : cases) {
    ValueExplanation out;
    EXPECT_EQ(explainValue(database_, transaction_.staged(), "rate[1]", c.value, true, out),
              EXPLAIN_DONE);
    EXPECT_EQ(out.value, c.result);
    Texts steps;
    for (const ValueStep& step : out.reasons.steps) {
      steps.push_back(step.value + " by " + textOf(step.reason));
    }
    EXPECT_EQ(steps, c.steps) << c.value;
    EXPECT_EQ(textOf(out.reasons.acceptedBy),
              "12: rangeValid (mode == \"slow\") { 1..10 } | mode=slow");
  }
}

TEST_F(ExplainTest, OfANameWithoutAnInstanceIsRefused) {
  for (const char* name : {"nothing", "rate", "rate[1][2]", "mode[1]", "place", ""}) {
    Explanation out;
    EXPECT_EQ(explain(database_, transaction_.staged(), name, out), EXPLAIN_INVALID_NAME) << name;
    ValueExplanation value;
    EXPECT_EQ(explainValue(database_, transaction_.staged(), name, "1", true, value),
              EXPLAIN_INVALID_NAME)
        << name;
  }
}

// Holds reasons of random texts against the engine's own answers, and against the text.
class RandomExplanations : public testing::Test {
 protected:
  void checkInstance(const std::string& name) {
    SCOPED_TRACE(name);
    ParmEntry& entry = *database_->findNamed(name);
    const IndexTuple indices = splitName(name).indices;
    Explanation out;
    ASSERT_EQ(explain(*database_, staged_, name, out), EXPLAIN_DONE);
    const Situation situation = gatherBound(entry, indices, staged_);
    StagedEntry probe;
    probe.parm = &entry;
    probe.indices = indices;
    IndexSituations situations(staged_);
    const SetCode code = evaluate(probe, situations, true);
    EXPECT_EQ(out.exists, isAccepted(code) || code == SET_INVALID_VALUE);
    EXPECT_EQ(out.isReadOnly, entry.parm.isReadOnly(situation));
    checkReasons(out, entry, situation);
  }

  // Each reason decides: its own statement alone gives the answer.
  void checkReasons(const Explanation& out, const ParmEntry& entry, const Situation& situation) {
    for (const auto* list : {&out.existence, &out.readOnly}) {
      for (const Reason& reason : *list) expectInText(reason);
    }
    for (const auto* reason : {&out.limit, &out.defaultDecider}) {
      if (*reason) expectInText(**reason);
    }
    EXPECT_TRUE(out.exists || !out.existence.empty());
    const bool isOneReason = out.readOnly.size() == 1;
    EXPECT_TRUE(!out.isReadOnly || entry.parm.mode() == MODE_NEVER || isOneReason);
    BoundsParm range;
    EXPECT_EQ(entry.parm.range(range, situation), out.rangeResult);
    EXPECT_EQ(range.count() > 0 || out.rangeResult != 0, out.limit.has_value());
    if (out.limit) expectConstantRange(out.limit->statement, range);
    ++explained_;
  }

  // What a statement of constants, or several, says is the range.
  static void expectConstantRange(const std::string& statement, const BoundsParm& range) {
    std::string items;
    for (size_t at = 0; (at = statement.find('{', at)) != std::string::npos; ++at) {
      const std::string own = statement.substr(at + 1, statement.find('}', at) - at - 1);
      if (own.find('(') != std::string::npos) return;
      if (own != " ") items += (items.empty() ? "" : ",") + own;
    }
    Database alone;
    define(alone, "p rw { rangeValid {" + items + "} }");
    EXPECT_EQ(rangeItemsText(alone.findParm("p")->parm.baseBounds()), rangeItemsText(range))
        << statement;
  }

  void checkValue(const std::string& name, const std::string& value) {
    SCOPED_TRACE(name + "=" + value);
    ParmEntry& entry = *database_->findNamed(name);
    StagedEntry probe;
    probe.parm = &entry;
    probe.indices = splitName(name).indices;
    probe.value.set(value);
    IndexSituations situations(staged_);
    const SetCode code = evaluate(probe, situations, true);
    ValueExplanation out;
    ASSERT_EQ(explainValue(*database_, staged_, name, value, true, out), EXPLAIN_DONE);
    EXPECT_EQ(out.code, code);
    const ValueReasons& reasons = out.reasons;
    EXPECT_EQ(reasons.isRefused, code == SET_INVALID_VALUE);
    if (isAccepted(code)) {
      EXPECT_EQ(out.value, probe.value.text());
      EXPECT_EQ(reasons.steps.empty() ? value : reasons.steps.back().value, out.value);
    }
    for (const ValueStep& step : reasons.steps) {
      expectInText(step.reason);
      ++steps_;
    }
  }

  // The keyword of a statement is on its line.
  void expectInText(const Reason& reason) {
    const std::string keyword = reason.statement.substr(0, reason.statement.find(' '));
    ASSERT_GE(reason.line, 1U);
    ASSERT_LE(reason.line, lines_.size());
    EXPECT_NE(lines_[reason.line - 1].find(keyword), std::string::npos)
        << reason.line << ": " << reason.statement;
  }

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

  void checkText(uint32_t seed) {
    RandomTexts random(seed);
    const std::string text = onLines(random.text());
    Database database;
    if (defineOrRefuse(database, text) != 0) return;
    SCOPED_TRACE(text);
    database_ = &database;
    lines_.clear();
    for (size_t at = 0; at < text.size();) {
      const size_t end = std::min(text.find('\n', at), text.size());
      lines_.push_back(text.substr(at, end - at));
      at = end + 1;
    }
    for (const ParmEntry* entry : database.parmsInNameOrder()) checkParm(*entry, random);
    staged_.clear();
  }

  void checkParm(const ParmEntry& entry, RandomTexts& random) {
    for (int round = 0; round < 3; ++round) {
      staged_.clear();
      for (ParmEntry* other : database_->parmsInNameOrder()) {
        forEachInstance(*database_, other->parm, [&](const IndexTuple& indices) {
          staged_.stage(*other, indices, false).value.set(random.oneOf(VALUES));
        });
      }
      forEachInstance(*database_, entry.parm, [&](const IndexTuple& indices) {
        const std::string name = fullName(entry.parm.name(), indices);
        checkInstance(name);
        checkValue(name, random.oneOf(VALUES));
      });
    }
  }

  Database* database_ = nullptr;
  StagedValues staged_;
  std::vector<std::string> lines_;
  size_t explained_ = 0;
  size_t steps_ = 0;
};

TEST_F(RandomExplanations, AreTheEnginesOwn) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  for (uint32_t seed = 0; seed < 2000 && !HasFailure(); ++seed) checkText(seed);
  EXPECT_GT(explained_, 5000U);
  EXPECT_GT(steps_, 500U);
}

}  // namespace

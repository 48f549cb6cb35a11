#include "coverage/device_coverage.h"

#include <gtest/gtest.h>

#include "base/system_log.h"
#include "database/commit.h"
#include "tests/support/database.h"

namespace {

using Texts = std::vector<std::string>;

// A device whose commits are noted. The text has one statement on each line.
class Watched {
 public:
  explicit Watched(const char* text, const Constants& constants = {}) : coverage_(text) {
    start(text, constants);
  }

  // Another device of the same text.
  void start(const char* text, const Constants& constants = {}) {
    transaction_.reset();
    database_ = std::make_unique<Database>();
    define(*database_, text, constants);
    device_ = std::make_unique<DeviceCoverage>(*database_, coverage_);
    transaction_ = std::make_unique<Transaction>(*database_);
  }

  void stage(const std::string& name, const std::string& value, bool force = false) {
    EXPECT_EQ(transaction_->set(name, value, force), STAGE_DONE) << name;
  }
  void reset(const std::string& name) {
    EXPECT_EQ(transaction_->reset(name, true), STAGE_DONE) << name;
  }
  int commit() {
    device_->noteCommit(*transaction_);
    std::vector<Change> changes;
    return ::commit(*transaction_, changes);
  }
  void set(const std::string& name, const std::string& value, bool force = false) {
    stage(name, value, force);
    static_cast<void>(commit());
  }
  void askRange(const std::string& name) { device_->noteRange(*transaction_, name); }
  void askIndex(const std::string& name) { device_->noteIndex(*transaction_, name); }

  // What was noted since the last call: "3" is a statement that was chosen, "3+" and "3-" are
  // conditions that were true and false.
  Texts noted() {
    Texts marks;
    for (StatementCoverage& statement : coverage_.statements()) {
      const std::string line = std::to_string(statement.line);
      if (statement.chosen > 0) marks.push_back(line);
      if (statement.whenTrue > 0) marks.push_back(line + "+");
      if (statement.whenFalse > 0) marks.push_back(line + "-");
      statement.chosen = statement.whenTrue = statement.whenFalse = 0;
    }
    return marks;
  }
  // The names of what was judged since the last call.
  Texts judged() {
    Texts names;
    for (DefinitionCoverage& definition : coverage_.definitions()) {
      if (definition.judged > 0) names.push_back(definition.name);
      definition.judged = 0;
    }
    return names;
  }

 private:
  LogRedirection silence_{[](const std::string& /*line*/) {}};
  TextCoverage coverage_;
  std::unique_ptr<Database> database_;
  std::unique_ptr<DeviceCoverage> device_;
  std::unique_ptr<Transaction> transaction_;
};

TEST(DeviceCoverage, NotesWhatACommitJudges) {
  Watched device(R"(mode rw {
  rangeValid { 0..3, "off" }
  default { 1 }
  valueChange { "off" -> 0 }
  valueChange { "none" -> "off" }
}
level rw {
  rangeValid (mode == 1) { 1..9 }
  rangeValid (mode < 2) { 0..5 }
  default (mode == 1) { 7 }
  default (mode == 2) { (5 / mode) }
  default { 3 }
  ctrlRO (mode == 3)
  ctrlValid (mode != 0)
}
other rw {
  rangeValid { 5 }
})");
  EXPECT_EQ(device.noted(), Texts{});
  device.set("mode", "none");
  EXPECT_EQ(device.noted(), (Texts{"2", "4", "5", "14", "14-"}));
  EXPECT_EQ(device.judged(), (Texts{"mode", "level"}));
  device.reset("mode");
  device.commit();
  // What follows is not asked whether it is read-only.
  EXPECT_EQ(device.noted(), (Texts{"2", "3", "8", "8+", "9", "9+", "14", "14+"}));
  device.set("level", "8");
  EXPECT_EQ(device.noted(), (Texts{"8", "8+", "9", "9+", "13", "13-", "14", "14+"}));
  device.reset("level");
  device.commit();
  EXPECT_EQ(device.noted(), (Texts{"8", "8+", "9", "9+", "14", "14+", "10", "10+"}));
  device.set("mode", "3");
  device.noted();
  device.set("level", "8");
  EXPECT_EQ(device.noted(), (Texts{"13", "13+", "14", "14+"}));
  device.set("level", "8", true);
  EXPECT_EQ(device.noted(), (Texts{"8-", "9-", "14", "14+"}));
  device.reset("level");
  device.commit();
  EXPECT_EQ(device.noted(), (Texts{"8-", "9-", "14", "14+", "10-", "11-", "12"}));
  EXPECT_EQ(device.judged(), (Texts{"mode", "level"}));
}

TEST(DeviceCoverage, NotesRangesThatCanBeUsed) {
  Watched device(R"(mode rw { }
width rw {
  rangeValid { 1..2 }
  rangeValid { (10 / mode) }
  rangeValid (mode == 3) { 0..(9 / (mode - 3)) }
  rangeDoc (mode == 1) { 1 }
  rangeDoc { 2 }
  rangeDoc { 3 }
})");
  device.set("width", "1");  // nothing can be divided by 0
  EXPECT_EQ(device.noted(), (Texts{"3", "5-"}));
  device.set("mode", "3");
  EXPECT_EQ(device.noted(), (Texts{"3", "4", "5+"}));
  device.askRange("width");
  EXPECT_EQ(device.noted(), (Texts{"6-", "7", "8"}));
  device.stage("mode", "1");
  device.askRange("width");
  EXPECT_EQ(device.noted(), (Texts{"6", "6+"}));
}

TEST(DeviceCoverage, NotesIndices) {
  Watched device(R"(n rw { }
i index {
  rangeValid { 1..2 }
  rangeValid (n == 1) { 1 }
  rangeValid (n != 1) { 1..2 }
  ctrlValid (n != 9)
}
p rw {
  index { i }
  default { 1 }
})");
  device.set("p[1]", "x");
  EXPECT_EQ(device.noted(), (Texts{"3", "4-", "5", "5+", "6", "6+", "9"}));
  EXPECT_EQ(device.judged(), (Texts{"i", "p"}));
  device.set("n", "9");
  EXPECT_EQ(device.noted(), (Texts{"6", "6-", "9"}));
  device.stage("n", "1");
  device.askIndex("i");
  EXPECT_EQ(device.noted(), (Texts{"3", "4", "4+", "5-", "6", "6+"}));
}

TEST(DeviceCoverage, NotesWhatConstantsDecide) {
  const char* const text = R"(p rw {
  rangeValid { "a" }
  rangeValid (M == 1) { "b" }
  rangeDoc (M == 1) { "a" }
  default (M == 1) { "b" }
  default (M == 2) { "a" }
  ctrlRO (M == 1)
  ctrlValid (M == 1)
})";
  Watched device(text, {{"M", "1"}});
  EXPECT_EQ(device.noted(), (Texts{"3+", "4+", "7", "7+", "8", "8+", "5+", "6-"}));
  device.set("p", "b", true);
  EXPECT_EQ(device.noted(), (Texts{"2", "3"}));
  device.reset("p");
  device.commit();
  EXPECT_EQ(device.noted(), (Texts{"2", "3", "5"}));
  device.start(text, {{"M", "2"}});
  EXPECT_EQ(device.noted(), (Texts{"3-", "4-", "7", "7-", "8", "8-", "5-", "6+"}));
  device.set("p", "a", true);
  EXPECT_EQ(device.noted(), Texts{"8"});
}

TEST(DeviceCoverage, ChangesNothing) {
  Watched device("a rw { rangeValid { 0..(b) } default { 3 } } b rw { default { 5 } }");
  device.reset("b");
  EXPECT_EQ(device.commit(), COMMIT_DONE);
  device.stage("a", "9");
  device.askRange("a");
  device.askRange("nothing");
  device.askIndex("nothing");
  EXPECT_EQ(device.commit(), COMMIT_DONE);
}

}  // namespace

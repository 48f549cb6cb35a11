#include "database/transaction.h"

#include <gtest/gtest.h>

#include <optional>

#include "database/commit.h"
#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
chan index { rangeValid { 0..3 } }
gain rw { index { chan } rangeValid { 0..255 } default { 128 } }
mode rw { rangeValid { "off", "auto" } default { "auto" } }
limit rw { rangeValid { 0..1000 } }
level rw { rangeValid { 0..(limit) } }
)";

class TransactionTest : public testing::Test {
 protected:
  void SetUp() override {
    define(database_, TEXT, {{"MODEL", "7"}, {"mode", "shadowed"}, {"sw::this", "5"}});
  }

  static std::optional<std::string> get(const Transaction& transaction, std::string_view name) {
    std::string value = "untouched";
    return transaction.get(name, value) == 0 ? std::optional(value) : std::nullopt;
  }

  Database database_;
  Transaction transaction_{database_};
};

TEST_F(TransactionTest, StagesWhatTheBaseBoundsAccept) {
  struct Case {
    std::string_view name;
    std::string value;
    int result;
    std::optional<std::string> seen;  // afterwards, in this transaction
  };
  const Case cases[] = {
      {"gain[2]", "200", STAGE_DONE, "200"},
      {"gain[2]", "0x10", STAGE_DONE, "0x10"},  // a text stays as the client gave it
      {"gain[2]", "256", STAGE_INVALID_VALUE, "0x10"},
      {"gain[2]", "auto", STAGE_INVALID_VALUE, "0x10"},
      {"gain[9]", "1", STAGE_DONE, "1"},  // the index values are judged at commit
      {"gain", "1", STAGE_DONE, "1"},     // and so is their number
      {"gain", "256", STAGE_INVALID_VALUE, "1"},
      {"mode", "off", STAGE_DONE, "off"},
      {"mode", "on", STAGE_INVALID_VALUE, "off"},
      {"mode[1", "auto", STAGE_DONE, "auto"},  // no bracket is closed: the name is mode
      {"mode", "", STAGE_INVALID_VALUE, "auto"},
      {"level", "99999", STAGE_DONE, "99999"},  // rules judge it at commit
      {"hue", "1", STAGE_INVALID_NAME, std::nullopt},
      {"chan", "1", STAGE_INVALID_NAME, std::nullopt},
      {"MODEL", "1", STAGE_INVALID_NAME, "7"},
      {"", "1", STAGE_INVALID_NAME, std::nullopt},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + "=" + c.value);
    EXPECT_EQ(transaction_.set(c.name, c.value, false), c.result);
    EXPECT_EQ(get(transaction_, c.name), c.seen);
  }
  EXPECT_EQ(get(transaction_, "mode"), "auto");  // staged as mode[1
}

TEST_F(TransactionTest, KeepsWhatIsStagedToItself) {
  Transaction other(database_);
  EXPECT_EQ(transaction_.set("limit", "5", false), STAGE_DONE);
  EXPECT_EQ(get(transaction_, "limit"), "5");
  EXPECT_EQ(get(other, "limit"), "");
}

TEST_F(TransactionTest, ReadsStagedThenCommittedThenConstants) {
  EXPECT_EQ(get(transaction_, "mode"), "");  // a parameter hides the constant of its name
  EXPECT_EQ(get(transaction_, "MODEL"), "7");
  EXPECT_EQ(get(transaction_, "sw::this"), std::nullopt);
  EXPECT_EQ(get(transaction_, "MODEL[1]"), std::nullopt);  // a constant has no instances
  EXPECT_EQ(get(transaction_, "gain[1][2]"), "");
  EXPECT_EQ(transaction_.set("mode", "off", false), STAGE_DONE);
  std::vector<std::string> changed;
  EXPECT_EQ(commitNames(transaction_, changed), COMMIT_DONE);
  EXPECT_EQ(get(transaction_, "mode"), "off");
  EXPECT_EQ(transaction_.set("mode", "auto", false), STAGE_DONE);
  EXPECT_EQ(get(transaction_, "mode"), "auto");
}

TEST_F(TransactionTest, TellsWhyItReadsNothing) {
  std::string value = "untouched";
  EXPECT_EQ(transaction_.get("nobody", value), 1);
  EXPECT_EQ(transaction_.get("sw::this", value), 2);
  EXPECT_EQ(value, "untouched");
}

TEST_F(TransactionTest, FindsManyNamesAsOne) {
  struct {
    std::string name;
    const char* text;  // null where there is no parameter
  } const cases[] = {
      {"mode", "off"},       {"gain[1]", "7"}, {"gain[2]", ""},       {"gain[", ""},
      {"gain[1][2]", ""},    {"MODEL", "7"},   {"MODEL[1]", nullptr}, {"nobody", nullptr},
      {"sw::this", nullptr}, {"", nullptr},
  };
  ASSERT_EQ(transaction_.set("gain[1]", "7", false), STAGE_DONE);
  ASSERT_EQ(transaction_.set("mode", "off", false), STAGE_DONE);
  std::vector<char*> names;
  for (const auto& c : cases) names.push_back(const_cast<char*>(c.name.c_str()));
  std::vector<const std::string*> found(names.size());
  transaction_.findAll(names, found);
  for (size_t i = 0; i < names.size(); ++i) {
    SCOPED_TRACE(names[i]);
    EXPECT_EQ(found[i], transaction_.find(names[i]));
    ASSERT_EQ(found[i] == nullptr, cases[i].text == nullptr);
    if (found[i] != nullptr) {
      EXPECT_EQ(*found[i], cases[i].text);
    }
  }
}

TEST_F(TransactionTest, MarksAnEntryAsResetUntilItIsSetAgain) {
  EXPECT_EQ(transaction_.set("gain[1]", "5", false), STAGE_DONE);
  EXPECT_EQ(transaction_.reset("gain[1]", true), STAGE_DONE);
  EXPECT_EQ(transaction_.reset("hue", true), STAGE_INVALID_NAME);
  const std::vector<StagedEntry*> entries = transaction_.staged().inNameOrder();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_TRUE(entries[0]->reset);
  EXPECT_TRUE(entries[0]->force);
  EXPECT_EQ(get(transaction_, "gain[1]"), "5");  // the default is worked out at commit

  EXPECT_EQ(transaction_.set("gain[1]", "300", true), STAGE_INVALID_VALUE);
  EXPECT_TRUE(entries[0]->reset);  // a refused value changes nothing
  EXPECT_EQ(transaction_.set("gain[1]", "6", false), STAGE_DONE);
  EXPECT_FALSE(entries[0]->reset);
  EXPECT_FALSE(entries[0]->force);
}

TEST_F(TransactionTest, LeavesTheEntryOfARefusedValueInPlace) {
  EXPECT_EQ(transaction_.set("mode", "on", false), STAGE_INVALID_VALUE);
  const std::vector<StagedEntry*> entries = transaction_.staged().inNameOrder();
  ASSERT_EQ(entries.size(), 1U);
  EXPECT_EQ(entries[0]->value.text(), "");
  EXPECT_TRUE(entries[0]->force);
  EXPECT_FALSE(entries[0]->reset);
}

TEST_F(TransactionTest, ValidatesWithoutStaging) {
  struct Case {
    std::string_view name;
    std::string value;
    bool valid;
  };
  const Case cases[] = {
      {"mode", "auto", true},    {"mode", "on", false}, {"gain[1]", "255", true},
      {"gain[1]", "256", false}, {"gain", "0", true},   {"level", "anything", true},
      {"hue", "1", false},       {"MODEL", "7", false}, {"chan", "1", false},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.name) + "=" + c.value);
    EXPECT_EQ(transaction_.validate(c.name, c.value), c.valid);
  }
  EXPECT_TRUE(transaction_.staged().empty());
}

uint32_t openOne(Transactions& transactions) {
  uint32_t id = 0;
  EXPECT_NE(transactions.open(id), nullptr);
  return id;
}

TEST(Transactions, HandOutAscendingIdsFromZero) {
  Database database;
  Transactions transactions(database);
  EXPECT_EQ(openOne(transactions), 0U);
  EXPECT_EQ(openOne(transactions), 1U);
  EXPECT_EQ(transactions.end(0), 0);
  EXPECT_EQ(openOne(transactions), 2U);  // a free id waits until the counter has wrapped
}

TEST(Transactions, WrapTheIdAndSkipThoseThatAreOpen) {
  Database database;
  Transactions transactions(database);
  EXPECT_EQ(openOne(transactions), 0U);
  transactions.continueWith(UINT32_MAX - 1);
  EXPECT_EQ(openOne(transactions), UINT32_MAX - 1);
  EXPECT_EQ(openOne(transactions), UINT32_MAX);
  EXPECT_EQ(openOne(transactions), 1U);  // 0 is open
  transactions.continueWith(UINT32_MAX - 1);
  EXPECT_EQ(openOne(transactions), 2U);
}

TEST(Transactions, UseUpAnIdWithoutOpeningIt) {
  Database database;
  Transactions transactions(database);
  EXPECT_EQ(openOne(transactions), 0U);
  transactions.continueWith(UINT32_MAX);
  uint32_t id = 0;
  EXPECT_EQ(transactions.useId(id), 0);
  EXPECT_EQ(id, UINT32_MAX);
  EXPECT_EQ(transactions.find(id), nullptr);
  EXPECT_EQ(transactions.useId(id), 0);
  EXPECT_EQ(id, 1U);  // 0 is open
  EXPECT_EQ(openOne(transactions), 2U);
}

TEST(Transactions, FindAndEndOnlyWhatIsOpen) {
  Database database;
  Transactions transactions(database);
  EXPECT_EQ(transactions.find(0), nullptr);
  EXPECT_EQ(transactions.end(0), 1);
  uint32_t id = 7;
  Transaction* transaction = transactions.open(id);
  EXPECT_EQ(transactions.find(id), transaction);
  EXPECT_EQ(transactions.find(id + 1), nullptr);
  EXPECT_EQ(transactions.end(id), 0);
  EXPECT_EQ(transactions.find(id), nullptr);
  EXPECT_EQ(transactions.end(id), 1);
}

}  // namespace

#include "database/reason_rows.h"

#include <gtest/gtest.h>

#include <map>

#include "base/system_log.h"
#include "database/instance_state.h"
#include "sw/parm/statement_text.h"
#include "tests/support/random_texts.h"

namespace {

constexpr std::string_view TEXT = R"(mode rw { rangeValid { "slow", "fast" } }
rate rw {
  rangeValid (mode == "slow") { 1..10 }
  rangeValid (mode == "fast") { 1..100 }
  ctrlRO (lock && mode == "slow")
  default (mode == "slow") { 5 }
}
boost rw { ctrlValid (mode == "fast") }
lock rw { rangeValid { 0..1 } }
broken rw { rangeValid { 0..(7 / lock) } }
narrow rw { rangeValid { 1, 2 } rangeValid (lock == 1) { 7 } }
open rw { rangeValid { 1, 7 } rangeValid (lock == 1) { 7 } }
behind rw { rangeValid { 0..(narrow) } }
)";

// The rows of one question, without it.
std::string rowsOf(Transaction& transaction, const char* name, const std::string& question) {
  const auto rows = reasonRows(transaction, Outlook(transaction), name);
  if (!rows) return "no instance";
  std::string text;
  for (const ReasonRow& row : *rows) {
    if (row.question != question) continue;
    text += (text.empty() ? "" : "; ") + row.answer + " " + std::to_string(row.reason.line) + " " +
            row.reason.statement;
    for (const UsedName& used : row.reason.names) {
      text += " " + used.name + "=" + used.value.value_or("?");
    }
  }
  return text;
}

TEST(ReasonRows, AnswerEachQuestionWithItsStatement) {
  Database database;
  define(database, TEXT);
  Transaction transaction(database);
  for (const auto& [name, value] : {std::pair("mode", "slow"), {"rate", "7"}, {"lock", "1"}}) {
    ASSERT_EQ(transaction.set(name, value, false), STAGE_DONE);
  }
  const struct {
    const char* name;
    const char* question;
    const char* rows;
  } cases[] = {
      {"rate", "exists", "yes 0 "},
      {"rate", "writable", "no 5 ctrlRO (lock && mode == \"slow\") lock=1 mode=slow"},
      {"rate", "limits", "1..10 3 rangeValid (mode == \"slow\") { 1..10 } mode=slow"},
      {"rate", "default", "5 6 default (mode == \"slow\") { 5 } mode=slow"},
      {"rate", "value", "7 3 rangeValid (mode == \"slow\") { 1..10 } mode=slow"},
      {"mode", "default", " 0 "},
      {"mode", "writable", "yes 0 "},
      {"boost", "exists", "no 8 ctrlValid (mode == \"fast\") mode=slow"},
      {"boost", "writable", "no 8 ctrlValid (mode == \"fast\") mode=slow"},
      {"boost", "limits", "any 0 "},
      {"lock", "limits", "0..1 9 rangeValid { 0..1 }"},
      {"broken", "limits", "0..7 10 rangeValid { 0..(7 / lock) } lock=1"},
      {"narrow", "writable",
       "no 11 rangeValid { 1, 2 }; no 11 rangeValid (lock == 1) { 7 } lock=1"},
      {"narrow", "limits",
       "none 11 rangeValid { 1, 2 }; none 11 rangeValid (lock == 1) { 7 } lock=1"},
      {"open", "writable", "yes 0 "},
      {"open", "limits", "7 12 rangeValid (lock == 1) { 7 } lock=1"},
      // What refuses is below.
      {"behind", "limits",
       "none 11 rangeValid { 1, 2 }; none 11 rangeValid (lock == 1) { 7 } lock=1"},
      {"nosuch", "exists", "no instance"},
      {"rate[1]", "exists", "no instance"},
  };
  for (const auto& [name, question, rows] : cases) {
    EXPECT_EQ(rowsOf(transaction, name, question), rows) << name << " " << question;
  }
}

TEST(RandomReasonRows, AnswerAsTheEngineDoes) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  size_t compared = 0;
  for (uint32_t seed = 0; seed < 2000 && !testing::Test::HasFailure(); ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database database;
    if (defineOrRefuse(database, text) != 0) continue;
    SCOPED_TRACE(text);
    Transaction transaction(database);
    for (const char* name : {"a", "b", "c[0]", "d[1]", "b[0]", "a[1][a]"}) {
      static_cast<void>(transaction.set(name, random.oneOf(VALUES), true));
    }
    InstanceStates states(transaction);
    for (const char* name : {"a", "a[0]", "b", "b[1]", "c", "c[0]", "d[0][a]", "d[1]"}) {
      const auto rows = reasonRows(transaction, Outlook(transaction), name);
      if (!rows) continue;
      ++compared;
      const InstanceState state = states.of(name);
      std::string limits = "none";
      if (state.rangeResult == 0) {
        limits = state.range.count() == 0 ? "any" : rangeItemsText(state.range);
      }
      for (const ReasonRow& row : *rows) {
        const std::map<std::string, std::string> answers = {
            {"exists", state.exists ? "yes" : "no"},
            {"writable", state.isWritable ? "yes" : "no"},
            {"limits", limits},
            {"default", row.answer},  // compared with the engine's by the explanations' own test
            {"value", *state.value}};
        EXPECT_EQ(row.answer, answers.at(row.question)) << name << " " << row.question;
      }
    }
  }
  EXPECT_GT(compared, 1000U);
}

}  // namespace

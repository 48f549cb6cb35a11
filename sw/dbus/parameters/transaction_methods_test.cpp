#include "sw/dbus/parameters/transaction_methods.h"

#include "tests/support/parameters.h"

namespace {

constexpr std::string_view TEXT = "a rw { }\nb rw { rangeValid { (a) } }\n";

TEST(TransactionMethods, BeginForTheCallerAlone) {
  TestParameters device(TEXT);
  ServiceState& state = device.service().state();
  state.setCaller(":1.1");
  EXPECT_EQ(device.call(answerBegin), "0");
  ASSERT_NE(state.findTransaction(0), nullptr);
  ASSERT_EQ(state.findTransaction(0)->set("a", "1", false), STAGE_DONE);
  uint32_t open = 0;
  ASSERT_EQ(state.openTransaction(open), 0);
  EXPECT_EQ(device.call(answerListTransactions), "[(0, \":1.1\", 1, 0), (1, \"\", 0, 0)]");
  state.setCaller(":1.2");
  EXPECT_EQ(state.findTransaction(0), nullptr);
  EXPECT_EQ(state.endTransaction(0), 1);
  EXPECT_NE(state.findTransaction(1), nullptr);
  state.clientLeft(":1.1");
  EXPECT_EQ(device.call(answerListTransactions), "[(1, \"\", 0, 0)]");
}

TEST(TransactionMethods, BeginSoManyTimesAtMost) {
  TestParameters device(TEXT);
  ServiceState& state = device.service().state();
  state.setCaller(":1.1");
  for (size_t i = 0; i < OwnedTransactions::MOST; ++i) {
    EXPECT_EQ(device.call(answerBegin), std::to_string(i));
  }
  const char* const refusal =
      "TooLarge: A client has 1000 transactions of its own at most; end one";
  EXPECT_EQ(device.call(answerBegin), refusal);
  state.setCaller(":1.2");
  EXPECT_EQ(device.call(answerBegin), "1000");
  state.setCaller(":1.1");
  EXPECT_EQ(state.endTransaction(7), 0);
  EXPECT_EQ(device.call(answerBegin), "1001");
  state.setCaller("");
  EXPECT_EQ(device.call(answerBegin), refusal);
}

TEST(TransactionMethods, WatchUntilNothingIsWanted) {
  TestParameters device(TEXT);
  ServiceState& state = device.service().state();
  const auto watchers = [&] { return device.state().watchers().all().size(); };
  state.setCaller(":1.1");
  EXPECT_EQ(device.call(answerWatch, true, false), "");
  EXPECT_EQ(watchers(), 1U);
  EXPECT_TRUE(device.state().watchers().all().at(":1.1").changes);
  EXPECT_FALSE(device.state().watchers().all().at(":1.1").limits);
  EXPECT_EQ(device.call(answerWatch, false, true), "");
  EXPECT_FALSE(device.state().watchers().all().at(":1.1").changes);
  EXPECT_TRUE(device.state().watchers().all().at(":1.1").limits);
  EXPECT_EQ(device.call(answerWatch, false, false), "");
  EXPECT_EQ(watchers(), 0U);
  EXPECT_EQ(device.call(answerWatch, true, true), "");
  state.clientLeft(":1.1");
  EXPECT_EQ(watchers(), 0U);
  state.setCaller("");
  EXPECT_EQ(device.call(answerWatch, true, true), "");
  EXPECT_EQ(watchers(), 0U);
}

// `text` without the times, which follow a serial each.
std::string withoutTimes(const std::string& text) {
  std::string result;
  for (size_t at = 0; at < text.size(); ++at) {
    const bool isTime = text.compare(at, 2, ", ") == 0 && isdigit(text[at + 2]) != 0;
    if (isTime) at = text.find(',', at + 2);
    result += text[at];
  }
  return result;
}

TEST(TransactionMethods, TellTheHistory) {
  TestParameters device(TEXT);
  EXPECT_EQ(device.call(answerHistory, 0U), "[]");
  device.commit(":1.1", {{"a", "3"}});
  device.commit(":1.2", {{"a", "4"}});
  device.commit(":1.2", {});
  const std::string first = "(1, \":1.1\", [(\"a\", \"\", \"3\"), (\"b\", \"\", \"3\")])";
  const std::string second = "(2, \":1.2\", [(\"a\", \"3\", \"4\"), (\"b\", \"3\", \"4\")])";
  EXPECT_EQ(withoutTimes(device.call(answerHistory, 0U)), "[" + first + ", " + second + "]");
  EXPECT_EQ(withoutTimes(device.call(answerHistory, 1U)), "[" + second + "]");
  EXPECT_EQ(withoutTimes(device.call(answerHistory, 5U)), "[" + first + ", " + second + "]");
  EXPECT_EQ(device.state().commits(), 2U);
}

}  // namespace

#include "sw/dbus/parameters/readiness_methods.h"

#include "tests/support/parameters.h"

namespace {

constexpr bool NOT_READY = false;

MessagePointer callOfWaitReady(bool wantsReply) {
  static uint32_t serial = 0;
  MessagePointer call(dbus_message_new_method_call("a.b", "/parameters", nullptr, "WaitReady"));
  dbus_message_set_serial(call.get(), ++serial);
  dbus_message_set_no_reply(call.get(), wantsReply ? 0 : 1);
  return call;
}

// What a call of `client` meets: "later", "at once", or the error.
std::string waitReady(TestParameters& device, const char* client, bool wantsReply = true) {
  device.service().state().setCaller(client);
  try {
    const MessagePointer call = callOfWaitReady(wantsReply);
    return isAnsweredLater(device.state(), call.get()) ? "later" : "at once";
  } catch (const BusError& error) {
    return std::string(error.name) + ": " + error.text;
  }
}

TEST(Readiness, IsThereFromTheStartWhereNobodyBringsUp) {
  TestParameters device("a rw { }\n");
  EXPECT_EQ(waitReady(device, ":1.1"), "at once");
  EXPECT_EQ(device.call(answerWaitReady), "");
  EXPECT_EQ(device.call(answerGet, "", "Ready"), "<true>");
}

TEST(Readiness, ComesOnceAndStays) {
  TestParameters device("a rw { }\n", NOT_READY);
  EXPECT_EQ(device.call(answerGet, "", "Ready"), "<false>");
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(device.call(answerSetReady), "");
    EXPECT_EQ(device.call(answerGet, "", "Ready"), "<true>");
    EXPECT_EQ(waitReady(device, ":1.1"), "at once");
  }
}

TEST(Readiness, IsWaitedForByThoseWhoCanBeAnswered) {
  const struct {
    const char* client;
    bool wantsReply;
    std::string answer;
    size_t count;
  } cases[] = {
      {":1.1", true, "later", 1}, {":1.1", true, "later", 2}, {":1.1", false, "at once", 2},
      {":1.2", true, "later", 1}, {"", true, "at once", 0},  // it has left
  };
  TestParameters device("a rw { }\n", NOT_READY);
  const Readiness& readiness = device.state().readiness();
  for (const auto& [client, wantsReply, answer, count] : cases) {
    EXPECT_EQ(waitReady(device, client, wantsReply), answer) << client;
    EXPECT_EQ(readiness.countOf(client), count) << client;
  }
  device.service().state().clientLeft(":1.1");
  EXPECT_EQ(readiness.countOf(":1.1"), 0U);
  EXPECT_EQ(readiness.countOf(":1.2"), 1U);
}

TEST(Readiness, IsWaitedForSoManyTimesByAClientAtMost) {
  TestParameters device("a rw { }\n", NOT_READY);
  for (size_t i = 0; i < Readiness::MOST; ++i) EXPECT_EQ(waitReady(device, ":1.1"), "later");
  const char* const refusal =
      "org.tavrel.parameters1.Error.TooLarge: A client has 100 calls of WaitReady at most that "
      "wait";
  EXPECT_EQ(waitReady(device, ":1.1"), refusal);
  EXPECT_EQ(waitReady(device, ":1.1", false), "at once");
  EXPECT_EQ(waitReady(device, ":1.2"), "later");
  device.service().state().clientLeft(":1.1");
  EXPECT_EQ(waitReady(device, ":1.1"), "later");
}

}  // namespace

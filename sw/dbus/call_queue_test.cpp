#include "sw/dbus/call_queue.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/support/allocations.h"

namespace {

// A call that can be told by its method.
WaitingCall callOf(const char* method, bool wantsReply = true) {
  MessagePointer message(dbus_message_new_method_call(nullptr, "/", nullptr, method));
  dbus_message_set_no_reply(message.get(), wantsReply ? 0 : 1);
  return {std::move(message), nullptr, 0, false};
}

// The methods of all calls, in the order of their turns.
std::vector<std::string> turns(CallQueue& queue) {
  std::vector<std::string> methods;
  while (!queue.empty()) {
    const size_t count = queue.count();
    methods.emplace_back(dbus_message_get_member(queue.next().message.get()));
    EXPECT_EQ(queue.count(), count - 1);
  }
  return methods;
}

struct AddedCall {
  const char* sender;
  const char* method;
};

TEST(CallQueue, GivesOneCallOfEachSenderInTurn) {
  struct TurnCase {
    std::vector<AddedCall> added;
    std::vector<std::string> turns;
  };
  const TurnCase cases[] = {
      {{}, {}},
      {{{"a", "a1"}}, {"a1"}},
      {{{"a", "a1"}, {"a", "a2"}, {"a", "a3"}}, {"a1", "a2", "a3"}},
      {{{"a", "a1"}, {"a", "a2"}, {"a", "a3"}, {"b", "b1"}}, {"a1", "b1", "a2", "a3"}},
      {{{"a", "a1"}, {"b", "b1"}, {"a", "a2"}, {"b", "b2"}, {"c", "c1"}},
       {"a1", "b1", "c1", "a2", "b2"}},
  };
  for (const TurnCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.turns));
    CallQueue queue;
    for (const AddedCall& call : c.added) queue.add(call.sender, callOf(call.method));
    EXPECT_EQ(queue.count(), c.added.size());
    EXPECT_EQ(turns(queue), c.turns);
  }
}

TEST(CallQueue, ASenderThatHasHadItsTurnComesBehindTheOthers) {
  CallQueue queue;
  for (const char* method : {"a1", "a2", "a3"}) queue.add("a", callOf(method));
  EXPECT_STREQ(dbus_message_get_member(queue.next().message.get()), "a1");
  queue.add("b", callOf("b1"));
  queue.add("b", callOf("b2"));
  EXPECT_EQ(turns(queue), (std::vector<std::string>{"a2", "b1", "a3", "b2"}));
  queue.add("b", callOf("b3"));
  EXPECT_EQ(turns(queue), std::vector<std::string>{"b3"});
}

TEST(CallQueue, OfSendersThatHaveLeftKeepsTheFirstCallAndWhatWantsNoReply) {
  CallQueue queue;
  queue.leave("a");
  for (const char* sender : {"a", "b", "c"}) {
    const std::string name = sender;
    queue.add(sender, callOf((name + "1").c_str()));
    queue.add(sender, callOf((name + "2").c_str()));
    queue.add(sender, callOf((name + "3").c_str(), false));
    queue.add(sender, callOf((name + "4").c_str()));
  }
  queue.leave("a");
  EXPECT_EQ(queue.count(), 10U);
  queue.leave("c");
  EXPECT_EQ(queue.count(), 8U);
  queue.leave("a");
  // What is left of a and c has one turn in common, which was a's.
  const struct {
    const char* method;
    bool hasLeft;
  } expected[] = {{"a1", true}, {"b1", false}, {"a3", true}, {"b2", false},
                  {"c1", true}, {"b3", false}, {"c3", true}, {"b4", false}};
  for (const auto& e : expected) {
    ASSERT_FALSE(queue.empty());
    const WaitingCall call = queue.next();
    EXPECT_STREQ(dbus_message_get_member(call.message.get()), e.method);
    EXPECT_EQ(call.hasLeft, e.hasLeft) << e.method;
  }
  EXPECT_TRUE(queue.empty());
}

TEST(CallQueue, DropsWhatIsLeftOfASenderWhereThereIsNoMemory) {
  CallQueue queue;
  for (const char* method : {"a1", "a2"}) queue.add("a", callOf(method));
  queue.add("b", callOf("b1"));
  Allocations::left = 0;
  queue.leave("a");
  Allocations::left = SIZE_MAX;
  EXPECT_EQ(queue.count(), 1U);
  EXPECT_EQ(turns(queue), std::vector<std::string>{"b1"});
}

TEST(CallQueue, KeepsTheNumbersOfTheCalls) {
  CallQueue queue;
  WaitingCall call = callOf("a1");
  call.number = 7;
  queue.add("a", std::move(call));
  EXPECT_EQ(queue.next().number, 7U);
}

}  // namespace

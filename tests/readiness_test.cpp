// Readiness: clients that wait until the device has been brought up, and what hostile ones get.
#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tests/harness/parameters_client.h"
#include "tests/harness/service_test.h"

namespace {

constexpr const char* TEXT = "note rw { }\n";
constexpr int MOST = 100;  // calls of a client that wait

class ReadinessTest : public ServiceTest {
 protected:
  void serveNotReady() { serve(TEXT, {}, {{"OSTREL_BRING_UP", "1"}}); }
  ParametersClient& parameters() { return parameters_; }
  size_t memoryNow() { return memoryOf(daemon().process().pid(), "VmRSS:"); }

 private:
  ParametersClient parameters_{client()};
};

// Calls of WaitReady, and how they were answered.
class Waiter {
 public:
  explicit Waiter(const PrivateBus& bus) : client_(bus.address()) {
    g_dbus_connection_add_filter(client_.connection(), countAnswer, this, nullptr);
  }
  void wait(int count = 1) {
    for (int i = 0; i < count; ++i) {
      GDBusMessage* const call = g_dbus_message_new_method_call(INTERFACE_NAME, PARAMETERS_PATH,
                                                                PARAMETERS_INTERFACE, "WaitReady");
      g_dbus_connection_send_message(client_.connection(), call, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                     nullptr, nullptr);
      g_object_unref(call);
    }
    waitForBus(client_);
  }
  // Returns when all answers that the daemon has sent until now are counted, and no others.
  void settle() { EXPECT_EQ(ParametersClient(client_).answer("Get('Commits')"), "<uint64 0>"); }
  [[nodiscard]] int ready() const { return ready_; }
  [[nodiscard]] int refused() const { return refused_; }
  Client& client() { return client_; }

 private:
  // In the thread of the connection. Answers to other calls have arguments.
  static GDBusMessage* countAnswer(GDBusConnection* /*connection*/, GDBusMessage* message,
                                   gboolean isIncoming, gpointer data) {
    auto* const self = static_cast<Waiter*>(data);
    const GDBusMessageType type = g_dbus_message_get_message_type(message);
    const gchar* const error = g_dbus_message_get_error_name(message);
    const gchar* const sender = g_dbus_message_get_sender(message);
    const bool isOfService =
        isIncoming != FALSE && sender != nullptr && std::string_view(sender).starts_with(":");
    if (!isOfService) return message;  // the bus itself answers, too
    if (type == G_DBUS_MESSAGE_TYPE_METHOD_RETURN && g_dbus_message_get_body(message) == nullptr) {
      ++self->ready_;
    } else if (error != nullptr && std::string_view(error).ends_with(".TooLarge")) {
      ++self->refused_;
    }
    return message;
  }

  std::atomic<int> ready_ = 0;
  std::atomic<int> refused_ = 0;
  Client client_;
};

TEST_F(ReadinessTest, IsThereFromTheStartWithoutAUnit) {
  serve(TEXT);
  EXPECT_EQ(parameters().answer("Get('Ready')"), "<true>");
  EXPECT_EQ(parameters().answer("WaitReady()"), "()");
  EXPECT_EQ(parameters().answer("SetReady()"), "()");
}

TEST_F(ReadinessTest, FollowsTheEnvironment) {
  const struct {
    const char* value;
    const char* isReady;
  } cases[] = {{"1", "<false>"}, {"0", "<true>"}, {"yes", "<true>"}, {"", "<true>"}};
  for (const auto& [value, isReady] : cases) {
    serve(TEXT, {}, {{"OSTREL_BRING_UP", value}});
    EXPECT_EQ(parameters().answer("Get('Ready')"), isReady) << value;
    expectOrderlyEnd();
  }
}

TEST_F(ReadinessTest, AnswersAllWhoWaitAndServesMeanwhile) {
  serveNotReady();
  std::vector<std::unique_ptr<Waiter>> waiters;
  for (int i = 0; i < 20; ++i) {
    waiters.push_back(std::make_unique<Waiter>(bus()));
    waiters.back()->wait(1 + i % 3);
    waiters.back()->settle();
    EXPECT_EQ(waiters.back()->ready(), 0);
  }
  EXPECT_EQ(client().answer("single_get('note')"), "''");
  EXPECT_EQ(parameters().answer("Get('Ready')"), "<false>");
  EXPECT_EQ(parameters().answer("SetReady()"), "()");
  EXPECT_EQ(parameters().answer("SetReady()"), "()");
  EXPECT_EQ(parameters().answer("Get('Ready')"), "<true>");
  int calls = 0;
  for (const auto& waiter : waiters) {
    waiter->settle();
    EXPECT_EQ(waiter->ready(), 1 + calls++ % 3);
    EXPECT_EQ(waiter->refused(), 0);
  }
  EXPECT_EQ(parameters().answer("WaitReady()"), "()");
}

TEST_F(ReadinessTest, DropsThoseWhoLeave) {
  serveNotReady();
  const size_t before = openDescriptors(daemon().process().pid());
  Waiter staying(bus());
  staying.wait();
  for (int i = 0; i < 300; ++i) Waiter(bus()).wait(3);
  EXPECT_EQ(parameters().answer("SetReady()"), "()");
  staying.settle();
  EXPECT_EQ(staying.ready(), 1);
  EXPECT_EQ(openDescriptors(daemon().process().pid()), before);
}

TEST_F(ReadinessTest, BoundsTheCallsOfAClient) {
  serveNotReady();
  Waiter greedy(bus());
  Waiter modest(bus());
  const size_t before = memoryNow();
  constexpr int CALLS = 100000;
  for (int done = 0; done < CALLS; done += 10000) {
    greedy.wait(10000);
    greedy.settle();
  }
  modest.wait();
  EXPECT_EQ(client().answer("single_get('note')"), "''");
  EXPECT_EQ(greedy.refused(), CALLS - MOST);
  EXPECT_EQ(greedy.ready(), 0);
  RecordProperty("KiB", std::to_string(memoryNow() - before));
  EXPECT_LT(isWatched() ? 0 : memoryNow(), before + (size_t{8} << 10U));
  EXPECT_EQ(parameters().answer("SetReady()"), "()");
  greedy.settle();
  modest.settle();
  EXPECT_EQ(greedy.ready(), MOST);
  EXPECT_EQ(modest.ready(), 1);
}

TEST_F(ReadinessTest, WantsNoArgumentsAndSurvivesCallsWithoutReply) {
  serveNotReady();
  for (int i = 0; i < 1000; ++i) parameters().callWithoutReply("WaitReady", nullptr);
  Waiter waiter(bus());
  g_dbus_connection_call(waiter.client().connection(), INTERFACE_NAME, PARAMETERS_PATH,
                         PARAMETERS_INTERFACE, "SetReady", g_variant_new("(b)", TRUE), nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
  waiter.wait();
  waiter.settle();
  EXPECT_EQ(waiter.ready(), 0);
  parameters().callWithoutReply("SetReady", nullptr);
  EXPECT_EQ(parameters().answer("WaitReady()"), "()");
  waiter.settle();
  EXPECT_EQ(waiter.ready(), 1);
}

}  // namespace

#include "sw/dbus/parameters/parameters_object.h"

#include "base/work.h"
#include "sw/dbus/reply.h"
#include "tests/support/message_text.h"
#include "tests/support/service.h"

namespace {

// The connection; the library's functions for it are at the end of this file.
struct {
  std::string path;
  const DBusObjectPathVTable* handlers = nullptr;
  void* object = nullptr;
  bool hasMemory = true;  // for an object
  bool isListening = false;
  int failingSends = 0;
  std::vector<std::string> replies;
} bus;

constexpr std::string_view TEXT = "a rw { rangeValid { 0..9 } }\nb rw { }\n";

class ParametersObjectTest : public testing::Test {
 protected:
  void SetUp() override {
    bus = {};
    ASSERT_EQ(service_.state().createMainLoop(), 0);
    calls_ = std::make_unique<CallServer>(nullptr, service_.state());
    bus.isListening = true;
    object_ = std::make_unique<ParametersObject>(nullptr, "/parameters/x", service_.state(),
                                                 *calls_, "2.0 test", true);
  }
  void TearDown() override {
    object_.reset();
    EXPECT_EQ(bus.path, "");
  }

  static MessagePointer call(const char* interface, const char* member) {
    MessagePointer message(
        dbus_message_new_method_call(nullptr, bus.path.c_str(), interface, member));
    dbus_message_set_serial(message.get(), 7);
    dbus_message_set_sender(message.get(), ":1.1");
    return message;
  }
  // Gives the object a call, with a text where there is one. Returns its reply, or what the handler
  // has returned where there is none.
  static std::string answer(const MessagePointer& message, const char* text = nullptr) {
    if (text != nullptr) {
      dbus_message_append_args(message.get(), DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    }
    const DBusHandlerResult result =
        bus.handlers->message_function(nullptr, message.get(), bus.object);
    if (!bus.replies.empty()) {
      EXPECT_EQ(result, DBUS_HANDLER_RESULT_HANDLED);
      EXPECT_EQ(bus.replies.size(), 1U);
      std::string reply = bus.replies.back();
      bus.replies.clear();
      return reply;
    }
    return result == DBUS_HANDLER_RESULT_HANDLED ? "no reply" : "not handled";
  }

  TestService service_{TEXT};
  std::unique_ptr<CallServer> calls_;
  std::unique_ptr<ParametersObject> object_;
};

TEST_F(ParametersObjectTest, AnswersCallsOfItsMethods) {
  constexpr const char* OURS = "org.tavrel.parameters1";
  const char* const list = "[(\"b\", \"rw\", [], 2, 0)]";
  const struct {
    const char* interface;
    const char* member;
    const char* argument;
    std::string answer;
  } cases[] = {
      {OURS, "List", "b", list},
      {nullptr, "List", "b", list},
      {OURS, "Begin", nullptr, "0"},
      {OURS, "Nosuch", nullptr, "not handled"},
      {"a.b", "List", "b", "not handled"},
      {DBUS_INTERFACE_PEER, "Ping", nullptr, "not handled"},
      {OURS, "List", nullptr, "org.freedesktop.DBus.Error.InvalidArgs: \"List takes (s), not ()\""},
      {OURS, "Begin", "b", "org.freedesktop.DBus.Error.InvalidArgs: \"Begin takes (), not (s)\""},
      {OURS, "GetDefinition", "nosuch",
       "org.tavrel.parameters1.Error.UnknownParameter: \"No definition has the name \"nosuch\"\""},
      {DBUS_INTERFACE_PROPERTIES, "GetAll", "a.b",
       "org.freedesktop.DBus.Error.UnknownInterface: \"The interface \"a.b\" has no properties "
       "here; "
       "org.tavrel.parameters1 has\""},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(answer(call(c.interface, c.member), c.argument), c.answer) << c.member;
  }
  EXPECT_NE(answer(call(DBUS_INTERFACE_INTROSPECTABLE, "Introspect")).find("<method name=\"List\""),
            std::string::npos);
}

TEST_F(ParametersObjectTest, AnswersNobodyWhoWantsNoReply) {
  const MessagePointer begin = call("org.tavrel.parameters1", "Begin");
  dbus_message_set_no_reply(begin.get(), TRUE);
  EXPECT_EQ(answer(begin), "no reply");
  service_.state().setCaller(":1.1");
  EXPECT_NE(service_.state().findTransaction(0), nullptr);
}

TEST_F(ParametersObjectTest, AnswersLaterWhoWaits) {
  object_.reset();
  object_ = std::make_unique<ParametersObject>(nullptr, "/parameters/x", service_.state(), *calls_,
                                               "2", false);
  EXPECT_EQ(answer(call("org.tavrel.parameters1", "WaitReady")), "no reply");
  const MessagePointer set = call("org.tavrel.parameters1", "SetReady");
  dbus_message_set_no_reply(set.get(), TRUE);
  EXPECT_EQ(answer(set), "");
  EXPECT_EQ(answer(call("org.tavrel.parameters1", "WaitReady")), "");
}

TEST_F(ParametersObjectTest, TakesCallsOnly) {
  const MessagePointer signal(dbus_message_new_signal("/parameters/x", "a.b", "List"));
  EXPECT_EQ(answer(signal, "a"), "not handled");
}

TEST_F(ParametersObjectTest, TriesAgainWhereAReplyCannotBeSent) {
  bus.failingSends = 2;
  EXPECT_EQ(answer(call("org.tavrel.parameters1", "Begin")), "0");
  EXPECT_EQ(bus.failingSends, 0);
}

TEST_F(ParametersObjectTest, RefusesWhatIsTooMuchWork) {
  // Of so many values that one call cannot list them.
  object_.reset();
  TestService large(
      "i index { rangeValid { 0..2000000000 } }\nj index { rangeValid { 0..2000000000 } }\n"
      "a rw { index { i, j } }\n");
  object_ = std::make_unique<ParametersObject>(nullptr, "/parameters/x", large.state(), *calls_,
                                               "2", true);
  const MessagePointer message = call("org.tavrel.parameters1", "ListInstances");
  const uint32_t none = 4294967295;
  const char* names[] = {"a"};
  const char* const* const list = names;
  dbus_message_append_args(message.get(), DBUS_TYPE_UINT32, &none, DBUS_TYPE_ARRAY,
                           DBUS_TYPE_STRING, &list, 1, DBUS_TYPE_INVALID);
  EXPECT_EQ(answer(message),
            "org.tavrel.parameters1.Error.TooLarge: \"ListInstances would take "
            "longer than a call may\"");
  object_.reset();
}

TEST_F(ParametersObjectTest, FailsWithoutMemoryForIt) {
  object_.reset();
  bus.hasMemory = false;
  EXPECT_THROW(ParametersObject(nullptr, "/parameters", service_.state(), *calls_, "2", true),
               std::bad_alloc);
}

}  // namespace

// In the place of the library's own.
extern "C" {

dbus_bool_t dbus_connection_register_object_path(DBusConnection* /*connection*/, const char* path,
                                                 const DBusObjectPathVTable* handlers, void* data) {
  if (!bus.hasMemory) return FALSE;
  bus.path = path;
  bus.handlers = handlers;
  bus.object = data;
  return TRUE;
}

dbus_bool_t dbus_connection_unregister_object_path(DBusConnection* /*connection*/,
                                                   const char* path) {
  EXPECT_EQ(path, bus.path);
  bus.path.clear();
  return TRUE;
}

dbus_bool_t dbus_connection_send(DBusConnection* /*connection*/, DBusMessage* message,
                                 dbus_uint32_t* /*serial*/) {
  if (!bus.isListening) return TRUE;
  if (bus.failingSends > 0) return --bus.failingSends, FALSE;
  const char* const error = dbus_message_get_error_name(message);
  bus.replies.push_back((error == nullptr ? "" : std::string(error) + ": ") + argumentsOf(message));
  EXPECT_EQ(dbus_message_get_reply_serial(message), 7U);
  return TRUE;
}

void dbus_connection_set_max_received_size(DBusConnection* /*connection*/, long /*size*/) {}
dbus_bool_t dbus_connection_add_filter(DBusConnection* /*connection*/,
                                       DBusHandleMessageFunction /*filter*/, void* /*data*/,
                                       DBusFreeFunction /*free*/) {
  return TRUE;
}
void dbus_connection_remove_filter(DBusConnection* /*connection*/,
                                   DBusHandleMessageFunction /*filter*/, void* /*data*/) {}
long dbus_connection_get_outgoing_size(DBusConnection* /*connection*/) { return 0; }
DBusDispatchStatus dbus_connection_get_dispatch_status(DBusConnection* /*connection*/) {
  return DBUS_DISPATCH_COMPLETE;
}

gboolean g_main_loop_is_running(GMainLoop* /*loop*/) { return TRUE; }
}

// Messages that no client of the interface should send: wrong arguments, other kinds of messages,
// other interfaces. They are refused or passed over, and leave nothing behind.
#include <gio/gunixfdlist.h>
#include <sys/resource.h>

#include "tests/harness/hostile_test.h"

namespace {

using HostileMessagesTest = HostileTest;

constexpr const char* UNKNOWN_METHOD = "org.freedesktop.DBus.Error.UnknownMethod";
constexpr const char* INVALID_ARGUMENTS = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr const char* ACCESS_DENIED = "org.freedesktop.DBus.Error.AccessDenied";

struct Arguments {
  const char* type;
  const char* text;
};

// Between them they have most types that the bus knows, and all that the interface takes.
constexpr Arguments ARGUMENTS[] = {
    {"()", "()"},
    {"(s)", "('note',)"},
    {"(u)", "(0,)"},
    {"(as)", "(['note'],)"},
    {"(us)", "(0, 'note')"},
    {"(su)", "('note', 0)"},
    {"(ss)", "('note', '1')"},
    {"(uu)", "(0, 0)"},
    {"(uas)", "(0, ['note'])"},
    {"(uss)", "(0, 'note', '1')"},
    {"(asas)", "(['note'], ['1'])"},
    {"(uasas)", "(0, ['note'], ['1'])"},
    {"(uuas)", "(0, 4294967295, ['note'])"},
    {"(ussss)", "(0, 'note', '1', '2', '3')"},
    {"(is)", "(-1, 'note')"},
    {"(xs)", "(-9223372036854775808, 'note')"},
    {"(ys)", "(255, 'note')"},
    {"(ds)", "(1e308, 'note')"},
    {"(bs)", "(true, 'note')"},
    {"(uo)", "(0, '/note')"},
    {"(ug)", "(0, 'as')"},
    {"(uv)", "(0, <'note'>)"},
    {"(vv)", "(<<<<<<<<<<<<<<<<<<'deep'>>>>>>>>>>>>>>>>>>, <['note']>)"},
    {"(ay)", "([0x61, 0xff, 0x00],)"},
    {"(uay)", "(0, [])"},
    {"(a{sv})", "({'note': <1>},)"},
    {"(uaas)", "(0, [['note']])"},
    {"((us))", "((0, 'note'),)"},
    {"(a(ss))", "([('note', '1')],)"},
    {"(aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaas)", "([],)"},
    {"((((((((s))))))))", "(((((((('x',),),),),),),),)"},
};

GVariant* valueOf(const Arguments& arguments) {
  GError* error = nullptr;
  GVariant* value =
      g_variant_parse(G_VARIANT_TYPE(arguments.type), arguments.text, nullptr, nullptr, &error);
  if (error != nullptr) {
    ADD_FAILURE() << arguments.text << ": " << error->message;
    g_error_free(error);
  }
  return value;
}

TEST_F(HostileMessagesTest, WrongArgumentsAreRefusedByEveryMethod) {
  for (const BusMethod& method : busMethods()) {
    for (const Arguments& arguments : ARGUMENTS) {
      if (method.inType() == arguments.type) continue;
      SCOPED_TRACE(method.name + arguments.text);
      EXPECT_EQ(client().call(method.name, valueOf(arguments)).errorName, UNKNOWN_METHOD);
    }
    expectSound();
  }
}

// A message to the service, with a body if there is one.
class Message {
 public:
  explicit Message(GDBusMessage* message, GVariant* body = nullptr) : message_(message) {
    g_dbus_message_set_destination(message_, INTERFACE_NAME);
    if (body != nullptr) g_dbus_message_set_body(message_, body);
  }
  ~Message() { g_object_unref(message_); }
  Message(const Message&) = delete;
  Message& operator=(const Message&) = delete;

  [[nodiscard]] GDBusMessage* get() const { return message_; }
  void send(const Client& client) const {
    GError* error = nullptr;
    g_dbus_connection_send_message(client.connection(), message_, G_DBUS_SEND_MESSAGE_FLAGS_NONE,
                                   nullptr, &error);
    if (error != nullptr) ADD_FAILURE() << error->message;
  }

 private:
  GDBusMessage* message_;
};

GDBusMessage* methodCall(const char* method) {
  return g_dbus_message_new_method_call(nullptr, OBJECT_PATH, INTERFACE_NAME, method);
}

TEST_F(HostileMessagesTest, CallsThatWantNoReplyAreServed) {
  for (const BusMethod& method : busMethods()) {
    for (const Arguments& arguments : ARGUMENTS) {
      if (method.name == "die" && method.inType() == arguments.type) continue;
      const Message message(methodCall(method.name.c_str()), valueOf(arguments));
      g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
      message.send(client());
    }
  }
  // The calls of a client are served in their order.
  EXPECT_EQ(client().answer("single_get('level')"), "'5'");
  expectSound();
}

struct ForeignCall {
  const char* path;
  const char* interface;  // null: none
  const char* method;
  Arguments arguments;
  const char* answer;  // the error's name, or "" for an answer
};

constexpr const char* PROPERTIES = "org.freedesktop.DBus.Properties";

TEST_F(HostileMessagesTest, CallsOfOtherThingsThanTheInterfaceAreRefused) {
  const ForeignCall calls[] = {
      {"/", INTERFACE_NAME, "start", {"()", "()"}, UNKNOWN_METHOD},
      {"/transaction/x", INTERFACE_NAME, "start", {"()", "()"}, UNKNOWN_METHOD},
      {OBJECT_PATH, "org.tavrel.other", "start", {"()", "()"}, UNKNOWN_METHOD},
      {OBJECT_PATH, INTERFACE_NAME, "Start", {"()", "()"}, UNKNOWN_METHOD},
      {OBJECT_PATH, INTERFACE_NAME, "transaction", {"(as)", "(['a=1'],)"}, UNKNOWN_METHOD},
      {OBJECT_PATH, nullptr, "single_get", {"(s)", "('level',)"}, ""},
      {OBJECT_PATH, nullptr, "single_get", {"(u)", "(1,)"}, UNKNOWN_METHOD},
      {OBJECT_PATH, PROPERTIES, "Get", {"()", "()"}, INVALID_ARGUMENTS},
      {OBJECT_PATH, PROPERTIES, "Get", {"(uu)", "(1, 2)"}, INVALID_ARGUMENTS},
      {OBJECT_PATH, PROPERTIES, "Get", {"(s)", "('org.tavrel.transaction',)"}, INVALID_ARGUMENTS},
      {OBJECT_PATH,
       PROPERTIES,
       "Get",
       {"(ss)", "('org.tavrel.transaction', 'note')"},
       INVALID_ARGUMENTS},
      {OBJECT_PATH, PROPERTIES, "Get", {"(ss)", "('', '')"}, INVALID_ARGUMENTS},
      {OBJECT_PATH, PROPERTIES, "GetAll", {"()", "()"}, INVALID_ARGUMENTS},
      {OBJECT_PATH, PROPERTIES, "GetAll", {"(s)", "('',)"}, ""},
      {OBJECT_PATH, PROPERTIES, "GetAll", {"(s)", "('org.tavrel.transaction',)"}, UNKNOWN_METHOD},
      {OBJECT_PATH, PROPERTIES, "Set", {"(s)", "('org.tavrel.transaction',)"}, INVALID_ARGUMENTS},
      {OBJECT_PATH,
       PROPERTIES,
       "Set",
       {"(sss)", "('org.tavrel.transaction', 'note', 'not a variant')"},
       ACCESS_DENIED},
      {OBJECT_PATH,
       PROPERTIES,
       "Set",
       {"(ssv)", "('org.tavrel.transaction', 'note', <[<(1, [{'a': <'b'>}])>]>)"},
       ACCESS_DENIED},
      {OBJECT_PATH, "org.freedesktop.DBus.Introspectable", "Introspect", {"(s)", "('x',)"}, ""},
      {OBJECT_PATH, "org.freedesktop.DBus.Peer", "Ping", {"(s)", "('x',)"}, ""},
      {OBJECT_PATH, "org.freedesktop.DBus.Peer", "Pong", {"()", "()"}, UNKNOWN_METHOD},
      {OBJECT_PATH, "org.freedesktop.DBus", "RequestName", {"(su)", "('a.b', 0)"}, UNKNOWN_METHOD},
  };
  for (const ForeignCall& c : calls) {
    SCOPED_TRACE(std::string(c.path) + " " + c.method + c.arguments.text);
    const Message call(g_dbus_message_new_method_call(nullptr, c.path, c.interface, c.method),
                       valueOf(c.arguments));
    GDBusMessage* reply = g_dbus_connection_send_message_with_reply_sync(
        client().connection(), call.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, PATIENCE * 1000, nullptr,
        nullptr, nullptr);
    ASSERT_NE(reply, nullptr);
    const char* error = g_dbus_message_get_error_name(reply);
    EXPECT_STREQ(error == nullptr ? "" : error, c.answer);
    g_object_unref(reply);
    expectSound();
  }
}

// How many calls bring how many descriptors each, to a daemon that may have so many files.
struct DescriptorCase {
  rlim_t files;
  int calls;
  int descriptors;
};

class DescriptorsTest : public HostileMessagesTest,
                        public testing::WithParamInterface<DescriptorCase> {
 protected:
  void SetUp() override {
    HostileMessagesTest::SetUp();
    const rlimit limit = {GetParam().files, GetParam().files};
    ASSERT_EQ(prlimit(daemon().process().pid(), RLIMIT_NOFILE, &limit, nullptr), 0);
    for (int i = 0; i < GetParam().descriptors; ++i) {
      ASSERT_GE(g_unix_fd_list_append(descriptors_, 0, nullptr), 0);
    }
  }
  void TearDown() override {
    g_object_unref(descriptors_);
    HostileMessagesTest::TearDown();
  }
  [[nodiscard]] GUnixFDList* descriptors() const { return descriptors_; }

 private:
  GUnixFDList* descriptors_ = g_unix_fd_list_new();
};

TEST_P(DescriptorsTest, CallsThatBringThemAreRefusedByTheBus) {
  const Arguments arguments[] = {
      {"(s)", "('level',)"},  // not among the arguments, but with the message
      {"(uh)", "(0, 0)"},
      {"(ah)", "([0],)"},
  };
  for (const Arguments& a : arguments) {
    SCOPED_TRACE(a.text);
    for (int i = 0; i < GetParam().calls; ++i) {
      const Message call(methodCall("single_get"), valueOf(a));
      g_dbus_message_set_unix_fd_list(call.get(), descriptors());
      call.send(client());
    }
    expectSound();
    const Message last(methodCall("single_get"), valueOf(a));
    g_dbus_message_set_unix_fd_list(last.get(), descriptors());
    GDBusMessage* reply = g_dbus_connection_send_message_with_reply_sync(
        client().connection(), last.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, PATIENCE * 1000, nullptr,
        nullptr, nullptr);
    ASSERT_NE(reply, nullptr);
    EXPECT_STREQ(g_dbus_message_get_error_name(reply), "org.freedesktop.DBus.Error.NotSupported");
    g_object_unref(reply);
    EXPECT_EQ(client().answer("single_get('level')"), "'5'");
    expectSound();
  }
}

TEST_P(DescriptorsTest, SignalsThatBringThemAreDropped) {
  for (int i = 0; i < GetParam().calls; ++i) {
    const Message signal(g_dbus_message_new_signal(OBJECT_PATH, INTERFACE_NAME, "single_get"),
                         valueOf({"(s)", "('level',)"}));
    g_dbus_message_set_unix_fd_list(signal.get(), descriptors());
    signal.send(client());
  }
  EXPECT_EQ(client().answer("single_get('level')"), "'5'");
  expectSound();
}

// 16 are what the bus library takes in one message, 253 what the system does.
INSTANTIATE_TEST_SUITE_P(Bursts, DescriptorsTest,
                         testing::Values(DescriptorCase{1024, 200, 16},
                                         DescriptorCase{1024, 5000, 16},
                                         DescriptorCase{64, 1000, 16}, DescriptorCase{1024, 1, 17},
                                         DescriptorCase{1024, 1000, 253},
                                         DescriptorCase{64, 1000, 253}),
                         [](const testing::TestParamInfo<DescriptorCase>& burst) {
                           const DescriptorCase& c = burst.param;
                           return std::to_string(c.calls) + "CallsWith" +
                                  std::to_string(c.descriptors) + "Of" + std::to_string(c.files);
                         });

GDBusMessage* replyTo(guint32 serial, GDBusMessageType type) {
  GDBusMessage* message = g_dbus_message_new();
  g_dbus_message_set_message_type(message, type);
  g_dbus_message_set_reply_serial(message, serial);
  if (type == G_DBUS_MESSAGE_TYPE_ERROR) g_dbus_message_set_error_name(message, "org.tavrel.Error");
  return message;
}

TEST_F(HostileMessagesTest, RepliesToNoCallArePassedOver) {
  for (guint32 serial : {1U, 2U, 3U, 4U, 2147483647U, 4294967295U}) {
    for (const Arguments& arguments : ARGUMENTS) {
      Message(replyTo(serial, G_DBUS_MESSAGE_TYPE_METHOD_RETURN), valueOf(arguments))
          .send(client());
      Message(replyTo(serial, G_DBUS_MESSAGE_TYPE_ERROR), valueOf(arguments)).send(client());
    }
  }
  EXPECT_EQ(client().answer("single_get('level')"), "'5'");
  expectSound();
}

struct Signal {
  const char* path;
  const char* interface;
  const char* name;
  Arguments arguments;
};

// Those of the bus itself come from a client here.
TEST_F(HostileMessagesTest, SignalsArePassedOver) {
  constexpr const char* BUS = "org.freedesktop.DBus";
  constexpr const char* BUS_PATH = "/org/freedesktop/DBus";
  const Signal signals[] = {
      {BUS_PATH, BUS, "NameLost", {"(s)", "('org.tavrel.transaction',)"}},
      {BUS_PATH, BUS, "NameAcquired", {"(s)", "('org.tavrel.transaction',)"}},
      {BUS_PATH, BUS, "NameOwnerChanged", {"(sss)", "('org.freedesktop.DBus', ':1.0', '')"}},
      {BUS_PATH, BUS, "NameOwnerChanged", {"(sss)", "('org.tavrel.transaction', ':1.0', '')"}},
      {BUS_PATH, BUS, "NameOwnerChanged", {"(u)", "(1,)"}},
      {BUS_PATH, BUS, "Disconnected", {"()", "()"}},
      {OBJECT_PATH, INTERFACE_NAME, "transaction", {"(as)", "(['witness=1'],)"}},
      {OBJECT_PATH, INTERFACE_NAME, "transaction", {"(u)", "(1,)"}},
  };
  for (const Signal& signal : signals) {
    SCOPED_TRACE(std::string(signal.name) + signal.arguments.text);
    Message(g_dbus_message_new_signal(signal.path, signal.interface, signal.name),
            valueOf(signal.arguments))
        .send(client());
    EXPECT_EQ(client().answer("single_get('level')"), "'5'");
    expectSound();
  }
}

// The binding library does not look at the kind of a message.
TEST_F(HostileMessagesTest, OnlyMethodCallsAreServed) {
  const Arguments arguments[] = {
      {"(ss)", "('note', 'x')"}, {"(uss)", "(0, 'note', 'x')"}, {"(u)", "(0,)"}, {"()", "()"}};
  for (const GDBusMessageType type :
       {G_DBUS_MESSAGE_TYPE_SIGNAL, G_DBUS_MESSAGE_TYPE_METHOD_RETURN, G_DBUS_MESSAGE_TYPE_ERROR}) {
    SCOPED_TRACE(type);
    for (const Arguments& a : arguments) {
      for (const BusMethod& method : busMethods()) {
        const Message message(replyTo(1, type), valueOf(a));
        g_dbus_message_set_path(message.get(), OBJECT_PATH);
        g_dbus_message_set_interface(message.get(), INTERFACE_NAME);
        g_dbus_message_set_member(message.get(), method.name.c_str());
        message.send(client());
      }
    }
    EXPECT_EQ(client().answer("single_get('note')"), "''");
    EXPECT_EQ(client().answer("get(0, 'note')"), "''");
    expectSound();
  }
}

class PolicyTest : public ServiceTest {
 protected:
  PolicyTest()
      : ServiceTest({.policy = "<deny send_type=\"method_call\" send_interface=\"" +
                               std::string(INTERFACE_NAME) + "\" send_member=\"single_set\"/>"}) {}
};

TEST_F(PolicyTest, WhatTheBusDeniesASignalDoesNotReach) {
  serve("note rw { }");
  EXPECT_TRUE(client().answer("single_set('note', 'x')").starts_with(ACCESS_DENIED));
  Message(g_dbus_message_new_signal(OBJECT_PATH, INTERFACE_NAME, "single_set"),
          valueOf({"(ss)", "('note', 'x')"}))
      .send(client());
  expectFacts({{"single_get('note')", "''"}});
}

}  // namespace

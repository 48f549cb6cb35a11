// The interface on the bus, as introspection shows it, and the name of its errors.
#include "tests/harness/bus_methods.h"
#include "tests/harness/service_test.h"

namespace {

class InterfaceTest : public ServiceTest {};

struct DocumentUnref {
  void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};
using DocumentPointer = std::unique_ptr<GDBusNodeInfo, DocumentUnref>;

DocumentPointer introspect(const Client& client, const char* path) {
  VariantPointer reply(g_dbus_connection_call_sync(
      client.connection(), INTERFACE_NAME, path, "org.freedesktop.DBus.Introspectable",
      "Introspect", nullptr, G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NONE, PATIENCE * 1000,
      nullptr, nullptr));
  if (reply == nullptr) return nullptr;
  const gchar* text = nullptr;
  g_variant_get(reply.get(), "(&s)", &text);
  return DocumentPointer(g_dbus_node_info_new_for_xml(text, nullptr));
}

std::string argumentsText(GDBusArgInfo** arguments) {
  std::string text;
  for (; *arguments != nullptr; ++arguments) {
    text += std::string(" ") + (*arguments)->name + ":" + (*arguments)->signature;
  }
  return text;
}

std::string argumentsText(const std::vector<BusArgument>& arguments) {
  std::string text;
  for (const BusArgument& argument : arguments) text += " " + argument.name + ":" + argument.type;
  return text;
}

TEST_F(InterfaceTest, IntrospectionListsTheMethodsInOrder) {
  serve("");
  const DocumentPointer document = introspect(client(), OBJECT_PATH);
  ASSERT_NE(document, nullptr);
  const GDBusInterfaceInfo* interface =
      g_dbus_node_info_lookup_interface(document.get(), INTERFACE_NAME);
  ASSERT_NE(interface, nullptr);
  std::string seen;
  for (GDBusMethodInfo** method = interface->methods; *method != nullptr; ++method) {
    seen += (*method)->name + argumentsText((*method)->in_args) + " ->" +
            argumentsText((*method)->out_args) + "\n";
  }
  std::string expected;
  for (const BusMethod& method : busMethods()) {
    expected += method.name + argumentsText(method.in) + " ->" + argumentsText(method.out) + "\n";
  }
  EXPECT_EQ(busMethods().size(), 33U);
  EXPECT_EQ(seen, expected);
}

TEST_F(InterfaceTest, IntrospectionListsOneSignalAndNoProperty) {
  serve("");
  const DocumentPointer document = introspect(client(), OBJECT_PATH);
  ASSERT_NE(document, nullptr);
  const GDBusInterfaceInfo* interface =
      g_dbus_node_info_lookup_interface(document.get(), INTERFACE_NAME);
  ASSERT_NE(interface, nullptr);
  ASSERT_NE(interface->signals[0], nullptr);
  EXPECT_EQ(interface->signals[1], nullptr);
  EXPECT_STREQ(interface->signals[0]->name, "transaction");
  ASSERT_NE(interface->signals[0]->args[0], nullptr);
  EXPECT_EQ(interface->signals[0]->args[1], nullptr);
  EXPECT_STREQ(interface->signals[0]->args[0]->signature, "as");
  EXPECT_TRUE(interface->properties == nullptr || interface->properties[0] == nullptr);
}

TEST_F(InterfaceTest, EveryErrorHasOneNameAndTheMessageTellsTheCause) {
  serve("");
  const Reply reply = client().call("end", g_variant_new("(u)", 0U));
  EXPECT_EQ(reply.errorName, "org.freedesktop.DBus.GLib.UnmappedError.DbusTavrelTransaction.Code0");
  EXPECT_EQ(reply.errorMessage,
            "dbus_tavrel_transaction: End failed because of invalid transaction id");
}

TEST_F(InterfaceTest, UnknownMethodsAndWrongArgumentsAreTheBusLibrarysOwnErrors) {
  serve("a rw { }");
  EXPECT_EQ(client().call("no_such_method", nullptr).errorName,
            "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(client().call("single_get", nullptr).errorName,
            "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(client().call("single_get", g_variant_new("(u)", 1U)).errorName,
            "org.freedesktop.DBus.Error.UnknownMethod");
  EXPECT_EQ(client().answer("single_get('a')"), "''");
}

}  // namespace

#include "tests/harness/plain_client.h"

#include <dbus/dbus.h>
#include <gtest/gtest.h>

#include "tests/harness/bus_methods.h"
#include "tests/harness/parameters_client.h"

PlainClient::PlainClient(const std::string& busAddress)
    : connection_(dbus_connection_open_private(busAddress.c_str(), nullptr)) {
  EXPECT_NE(dbus_bus_register(connection_, nullptr), 0);
}

PlainClient::~PlainClient() {
  dbus_connection_close(connection_);
  dbus_connection_unref(connection_);
}

bool PlainClient::list() {
  DBusMessage* const call =
      dbus_message_new_method_call(INTERFACE_NAME, PARAMETERS_PATH, PARAMETERS_INTERFACE, "List");
  const char* const all = "";
  dbus_message_append_args(call, DBUS_TYPE_STRING, &all, DBUS_TYPE_INVALID);
  DBusMessage* const reply =
      dbus_connection_send_with_reply_and_block(connection_, call, -1, nullptr);
  dbus_message_unref(call);
  if (reply == nullptr) return false;
  dbus_message_unref(reply);
  return true;
}

#include "tests/harness/deaf_client.h"

#include <gtest/gtest.h>

#include "tests/harness/bus_methods.h"
#include "tests/harness/parameters_client.h"

void DeafClient::send(const char* method, const char* argument) {
  DBusMessage* message =
      dbus_message_new_method_call(INTERFACE_NAME, OBJECT_PATH, INTERFACE_NAME, method);
  if (argument != nullptr) {
    dbus_message_append_args(message, DBUS_TYPE_STRING, &argument, DBUS_TYPE_INVALID);
  }
  sendMessage(message);
}

void DeafClient::watch() {
  DBusMessage* message =
      dbus_message_new_method_call(INTERFACE_NAME, PARAMETERS_PATH, PARAMETERS_INTERFACE, "Watch");
  const dbus_bool_t yes = TRUE;
  dbus_message_append_args(message, DBUS_TYPE_BOOLEAN, &yes, DBUS_TYPE_BOOLEAN, &yes,
                           DBUS_TYPE_INVALID);
  sendMessage(message);
}

void DeafClient::sendMessage(DBusMessage* message) {
  EXPECT_NE(dbus_connection_send(connection_.get(), message, nullptr), 0);
  dbus_message_unref(message);
  dbus_connection_flush(connection_.get());
}

void DeafClient::subscribe() {
  dbus_bus_add_match(connection_.get(), "type='signal'", nullptr);
  dbus_connection_flush(connection_.get());
}

#include "tests/harness/plain_client.h"

#include <dbus/dbus.h>

#include "tests/harness/bus_methods.h"
#include "tests/harness/parameters_client.h"

bool PlainClient::list() {
  DBusMessage* const call =
      dbus_message_new_method_call(INTERFACE_NAME, PARAMETERS_PATH, PARAMETERS_INTERFACE, "List");
  const char* const all = "";
  dbus_message_append_args(call, DBUS_TYPE_STRING, &all, DBUS_TYPE_INVALID);
  DBusMessage* const reply =
      dbus_connection_send_with_reply_and_block(connection_.get(), call, -1, nullptr);
  dbus_message_unref(call);
  if (reply == nullptr) return false;
  dbus_message_unref(reply);
  return true;
}

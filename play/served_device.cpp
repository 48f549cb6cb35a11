#include "play/served_device.h"

#include "play/bus_call.h"
#include "play/bus_monitor.h"

namespace {

Answer failed(GError* error) {
  const std::optional<std::string> text = busError(error->message);
  Answer answer = {.error = text.value_or(error->message)};
  g_error_free(error);
  return answer;
}

}  // namespace

Answer ServedDevice::call(const Call& call) {
  GVariant* const arguments = busArguments(call);
  if (arguments == nullptr) return {.error = "the bus has no such method"};
  const BusMessage message(g_dbus_message_new_method_call(
      name_.c_str(), path_.c_str(), SERVICE_NAME, std::string(call.method).c_str()));
  g_dbus_message_set_body(message.get(), arguments);
  GError* error = nullptr;
  const BusMessage reply(g_dbus_connection_send_message_with_reply_sync(
      &connection_, message.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, G_MAXINT, &lastSerial_, nullptr,
      &error));
  if (reply == nullptr) return failed(error);
  if (g_dbus_message_to_gerror(reply.get(), &error) != FALSE) return failed(error);
  GVariant* const values = g_dbus_message_get_body(reply.get());
  return values == nullptr ? Answer() : busAnswer(*values);
}

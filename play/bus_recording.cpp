#include "play/bus_recording.h"

#include <optional>

#include "play/bus_call.h"

namespace {

std::string textOf(const char* text) { return text == nullptr ? "" : text; }

// The arguments; without any, the empty tuple.
VariantHolder bodyOf(GDBusMessage& message) {
  GVariant* const body = g_dbus_message_get_body(&message);
  return VariantHolder(body == nullptr ? g_variant_ref_sink(g_variant_new_tuple(nullptr, 0))
                                       : g_variant_ref(body));
}

std::string firstText(GVariant& values, gsize number) {
  const VariantHolder text(g_variant_get_child_value(&values, number));
  return g_variant_get_string(text.get(), nullptr);
}

}  // namespace

void BusRecording::see(GDBusMessage& message) {
  switch (g_dbus_message_get_message_type(&message)) {
    case G_DBUS_MESSAGE_TYPE_METHOD_CALL:
      return seeCall(message);
    case G_DBUS_MESSAGE_TYPE_METHOD_RETURN:
    case G_DBUS_MESSAGE_TYPE_ERROR:
      return seeAnswer(message);
    case G_DBUS_MESSAGE_TYPE_SIGNAL:
      return seeSignal(message);
    default:
      return;
  }
}

void BusRecording::seeCall(GDBusMessage& message) {
  const std::string client = textOf(g_dbus_message_get_sender(&message));
  const std::string destination = textOf(g_dbus_message_get_destination(&message));
  const std::string interface = textOf(g_dbus_message_get_interface(&message));
  const bool isForService = destination == name_ || destination == owner_;
  if (!isForService || client == self_) return;
  if (!interface.empty() && interface != SERVICE_NAME) return;
  const std::string method = textOf(g_dbus_message_get_member(&message));
  const VariantHolder arguments = bodyOf(message);
  const std::optional<Call> call = busCall(method, *arguments);
  if (!call) {
    if (!hasBegun_) return;
    return recorder_.comment("no operation: " + method + " with the arguments " +
                             g_variant_get_type_string(arguments.get()));
  }
  const bool wantsAnswer =
      (g_dbus_message_get_flags(&message) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) == 0;
  recorder_.called(client, g_dbus_message_get_serial(&message), *call, wantsAnswer);
}

void BusRecording::seeAnswer(GDBusMessage& message) {
  const std::string client = textOf(g_dbus_message_get_destination(&message));
  const uint32_t serial = g_dbus_message_get_reply_serial(&message);
  if (client == self_) {
    if (textOf(g_dbus_message_get_sender(&message)) != owner_) return;
    lastOwnAnswer_ = serial;
    if (!hasBegun_ && serial == begin_) {
      recorder_.begin();
      hasBegun_ = true;
    }
    return;
  }
  // The bus answers for a service that has gone.
  const bool isServices = textOf(g_dbus_message_get_sender(&message)) == owner_;
  if (!hasBegun_ || !isServices) return recorder_.forget(client, serial);
  const VariantHolder values = bodyOf(message);
  if (g_dbus_message_get_message_type(&message) == G_DBUS_MESSAGE_TYPE_METHOD_RETURN) {
    return recorder_.answered(client, serial, busAnswer(*values));
  }
  const bool hasText = g_variant_is_of_type(values.get(), G_VARIANT_TYPE("(s)")) != FALSE;
  const std::optional<std::string> error = busError(hasText ? firstText(*values, 0) : "");
  if (!error) return recorder_.forget(client, serial);
  recorder_.answered(client, serial, {.error = *error});
}

void BusRecording::seeSignal(GDBusMessage& message) {
  const std::string member = textOf(g_dbus_message_get_member(&message));
  const VariantHolder values = bodyOf(message);
  if (member == "NameOwnerChanged" &&
      g_variant_is_of_type(values.get(), G_VARIANT_TYPE("(sss)")) != FALSE) {
    if (firstText(*values, 0) == owner_ && firstText(*values, 2).empty()) isOver_ = true;
    return;
  }
  if (textOf(g_dbus_message_get_sender(&message)) != owner_ || member != "transaction") return;
  if (g_variant_is_of_type(values.get(), G_VARIANT_TYPE("(as)")) == FALSE) return;
  const VariantHolder changes(g_variant_get_child_value(values.get(), 0));
  recorder_.announced(busTexts(*changes));
}

#include "tests/harness/client.h"

#include <glib-unix.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace {

constexpr const char* BUS = "org.freedesktop.DBus";

struct CallText {
  std::string method;
  GVariant* arguments = nullptr;
};

// "get_deps('a')" has a tuple of one, which GLib writes with a comma.
std::string tupleText(const BusMethod& method, std::string text) {
  if (method.in.size() == 1) text.insert(text.size() - 1, ",");
  return text;
}

CallText parseCall(const std::string& text) {
  CallText call;
  const size_t open = text.find('(');
  call.method = text.substr(0, open);
  const BusMethod* method = findBusMethod(call.method);
  if (method == nullptr || open == std::string::npos) {
    ADD_FAILURE() << "no method: " << text;
    return call;
  }
  GError* error = nullptr;
  call.arguments =
      g_variant_parse(G_VARIANT_TYPE(method->inType().c_str()),
                      tupleText(*method, text.substr(open)).c_str(), nullptr, nullptr, &error);
  if (error != nullptr) {
    ADD_FAILURE() << text << ": " << error->message;
    g_error_free(error);
  }
  return call;
}

Reply replyOf(GVariant* value, GError* error) {
  Reply reply;
  reply.value.reset(value);
  if (error != nullptr) {
    gchar* name = g_dbus_error_get_remote_error(error);
    if (name != nullptr) g_dbus_error_strip_remote_error(error);
    reply.errorName = name == nullptr ? "(no reply)" : name;
    reply.errorMessage = error->message;
    g_free(name);
    g_error_free(error);
  }
  return reply;
}

gboolean stopWaiting(gpointer waiting) {
  *static_cast<bool*>(waiting) = false;
  return G_SOURCE_CONTINUE;
}

gboolean stopWaitingAtEnd(gint /*descriptor*/, GIOCondition /*condition*/, gpointer waiting) {
  return stopWaiting(waiting);
}

void onNameAppeared(GDBusConnection* /*connection*/, const gchar* /*name*/, const gchar* /*owner*/,
                    gpointer appeared) {
  *static_cast<bool*>(appeared) = true;
}

}  // namespace

std::string printed(GVariant* value) {
  gchar* text = g_variant_print(value, FALSE);
  std::string result = text;
  g_free(text);
  return result;
}

std::string textOf(const Reply& reply) {
  if (reply.value != nullptr) {
    GVariant* value = reply.value.get();
    return g_variant_n_children(value) == 1
               ? printed(VariantPointer(g_variant_get_child_value(value, 0)).get())
               : printed(value);
  }
  if (reply.errorName == ERROR_NAME && reply.errorMessage.starts_with(ERROR_PREFIX)) {
    return reply.errorMessage.substr(ERROR_PREFIX.size());
  }
  return reply.errorName + ": " + reply.errorMessage;
}

void iterateUntilIdle() {
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
}

std::vector<std::string> textsOf(GVariant* array) {
  std::vector<std::string> texts;
  GVariantIter iterator;
  g_variant_iter_init(&iterator, array);
  const gchar* text = nullptr;
  while (g_variant_iter_next(&iterator, "&s", &text) != FALSE) texts.emplace_back(text);
  return texts;
}

void waitForBus(const Client& client) {
  // It answers a client's calls in their order.
  GVariant* id = g_dbus_connection_call_sync(client.connection(), BUS, "/org/freedesktop/DBus", BUS,
                                             "GetId", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                             PATIENCE * 1000, nullptr, nullptr);
  ASSERT_NE(id, nullptr);
  g_variant_unref(id);
}

Client::Client(const std::string& busAddress) {
  GError* error = nullptr;
  connection_ = g_dbus_connection_new_for_address_sync(
      busAddress.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &error);
  if (connection_ == nullptr) {
    fprintf(stderr, "no connection to the private bus: %s\n", error->message);
    abort();
  }
  g_dbus_connection_signal_subscribe(connection_, nullptr, INTERFACE_NAME, nullptr, nullptr,
                                     nullptr, G_DBUS_SIGNAL_FLAGS_NONE, &Client::onSignal, this,
                                     nullptr);
}

Client::~Client() {
  g_dbus_connection_close_sync(connection_, nullptr, nullptr);
  g_object_unref(connection_);
  iterateUntilIdle();
}

void Client::setTarget(std::string busName, std::string objectPath) {
  busName_ = std::move(busName);
  objectPath_ = std::move(objectPath);
}

bool Client::waitForService(const Process& daemon) {
  bool appeared = false;
  bool waiting = true;
  const guint watch =
      g_bus_watch_name_on_connection(connection_, busName_.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
                                     &onNameAppeared, nullptr, &appeared, nullptr);
  const guint end = g_unix_fd_add(daemon.endDescriptor(), G_IO_IN, &stopWaitingAtEnd, &waiting);
  const guint timeout = g_timeout_add_seconds(PATIENCE, &stopWaiting, &waiting);
  while (!appeared && waiting) g_main_context_iteration(nullptr, TRUE);
  g_bus_unwatch_name(watch);
  g_source_remove(end);
  g_source_remove(timeout);
  return appeared;
}

Reply Client::call(const std::string& method, GVariant* arguments) const {
  return callObject(objectPath_, INTERFACE_NAME, method, arguments);
}

Reply Client::callObject(const std::string& path, const std::string& interface,
                         const std::string& method, GVariant* arguments) const {
  GError* error = nullptr;
  GVariant* value = g_dbus_connection_call_sync(
      connection_, busName_.c_str(), path.c_str(), interface.c_str(), method.c_str(), arguments,
      nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, PATIENCE * 1000, nullptr, &error);
  return replyOf(value, error);
}

std::string Client::answer(const std::string& text) const {
  const CallText callText = parseCall(text);
  return textOf(call(callText.method, callText.arguments));
}

void Client::send(const std::string& text) {
  const CallText callText = parseCall(text);
  pending_.push_back(std::make_unique<Pending>());
  g_dbus_connection_call(connection_, busName_.c_str(), objectPath_.c_str(), INTERFACE_NAME,
                         callText.method.c_str(), callText.arguments, nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, PATIENCE * 1000, nullptr,
                         &Client::onAnswer, pending_.back().get());
}

std::vector<std::string> Client::collectAnswers(size_t count) {
  std::vector<std::string> answers;
  for (; answers.size() < count; pending_.pop_front()) {
    while (!pending_.front()->done) g_main_context_iteration(nullptr, TRUE);
    answers.push_back(pending_.front()->answer);
  }
  return answers;
}

std::vector<std::vector<std::string>> Client::newSignals() {
  // A signal that the service sent before a reply is queued before that reply is given out.
  iterateUntilIdle();
  return std::exchange(signals_, {});
}

void Client::onSignal(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                      const gchar* /*path*/, const gchar* /*interface*/, const gchar* signal,
                      GVariant* parameters, gpointer self) {
  auto& signals = static_cast<Client*>(self)->signals_;
  if (std::string_view(signal) != "transaction" ||
      !g_variant_is_of_type(parameters, G_VARIANT_TYPE("(as)"))) {
    signals.push_back({"not the signal of the interface:", signal, printed(parameters)});
    return;
  }
  signals.push_back(textsOf(VariantPointer(g_variant_get_child_value(parameters, 0)).get()));
}

void Client::onAnswer(GObject* connection, GAsyncResult* result, gpointer pending) {
  GError* error = nullptr;
  GVariant* value = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error);
  auto* answered = static_cast<Pending*>(pending);
  answered->answer = textOf(replyOf(value, error));
  answered->done = true;
}

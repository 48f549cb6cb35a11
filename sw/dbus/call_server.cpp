#include "sw/dbus/call_server.h"

#include <exception>
#include <new>
#include <string_view>
#include <utility>

#include "sw/dbus/bus_memory.h"
#include "sw/dbus/reply.h"

namespace {

// How long the main loop waits at most while the bus library is short of memory, in milliseconds.
constexpr gint SHORT_OF_MEMORY_STEP = 100;

constexpr const char* DEPARTURES =
    "type='signal',sender='" DBUS_SERVICE_DBUS "',interface='" DBUS_INTERFACE_DBUS
    "',member='NameOwnerChanged',arg2=''";

// The name that has left the bus, where `message` says so, or the empty text. Only a message of the
// bus itself is believed.
std::string_view departed(DBusMessage* message) {
  const char* name = nullptr;
  const char* oldOwner = nullptr;
  const char* newOwner = nullptr;
  if (dbus_message_is_signal(message, DBUS_INTERFACE_DBUS, "NameOwnerChanged") == 0 ||
      dbus_message_has_sender(message, DBUS_SERVICE_DBUS) == 0 ||
      dbus_message_get_args(message, nullptr, DBUS_TYPE_STRING, &name, DBUS_TYPE_STRING, &oldOwner,
                            DBUS_TYPE_STRING, &newOwner, DBUS_TYPE_INVALID) == 0 ||
      *newOwner != '\0') {
    return {};
  }
  return name;
}

// Whether `message` is the bus library's own, which says that the connection is gone. A message
// that comes over the bus has a sender.
bool isDisconnection(DBusMessage* message) {
  return dbus_message_is_signal(message, DBUS_INTERFACE_LOCAL, "Disconnected") != 0 &&
         dbus_message_get_sender(message) == nullptr;
}

std::string_view senderOf(DBusMessage* message) {
  const char* sender = dbus_message_get_sender(message);
  return sender == nullptr ? std::string_view() : sender;
}

// Answers a call as the bus library answers one that no handler takes.
void refuse(DBusConnection* connection, DBusMessage* call) {
  constexpr const char* ERROR = "error";  // what messages call it
  const char* interface = dbus_message_get_interface(call);
  const MessagePointer error(retried(ERROR, [&] {
    return dbus_message_new_error_printf(
        call, DBUS_ERROR_UNKNOWN_METHOD,
        "Method \"%s\" with signature \"%s\" on interface \"%s\" doesn't exist\n",
        dbus_message_get_member(call), dbus_message_get_signature(call),
        interface == nullptr ? "(null)" : interface);
  }));
  retried(ERROR, [&] {
    const bool isSent = dbus_connection_send(connection, error.get(), nullptr) != 0;
    return isSent ? error.get() : nullptr;
  });
}

void require(dbus_bool_t hasMemory) {
  if (hasMemory == 0) throw std::bad_alloc();
}

// Does what dbus_bus_add_match() does without an error argument: neither waits for an answer. But
// that function does not tell when it finds no memory, and then no client that leaves would ever be
// noticed.
void addMatch(DBusConnection* connection, const char* rule) {
  const MessagePointer call(dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS,
                                                         DBUS_INTERFACE_DBUS, "AddMatch"));
  require(call != nullptr ? 1 : 0);
  dbus_message_set_no_reply(call.get(), TRUE);
  require(dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &rule, DBUS_TYPE_INVALID));
  require(dbus_connection_send(connection, call.get(), nullptr));
}

}  // namespace

struct CallServer::Source {
  GSource source;
  CallServer* server;
  bool (CallServer::*isReady)() const;
  void (CallServer::*act)();
};

GSource* CallServer::addSource(int priority, bool (CallServer::*isReady)() const,
                               void (CallServer::*act)()) {
  // A source becomes ready by what other sources do, never while the loop waits; so it needs no
  // timeout. But only a new attempt shows whether there is memory for a message again.
  static GSourceFuncs functions = {
      [](GSource* source, gint* timeout) -> gboolean {
        const auto* self = reinterpret_cast<Source*>(source);
        const bool acts = (self->server->*self->isReady)();
        if (isBusShortOfMemory()) *timeout = SHORT_OF_MEMORY_STEP;
        return acts ? TRUE : FALSE;
      },
      nullptr,
      [](GSource* source, GSourceFunc /*callback*/, gpointer /*data*/) -> gboolean {
        const auto* self = reinterpret_cast<Source*>(source);
        (self->server->*self->act)();
        return G_SOURCE_CONTINUE;
      },
      nullptr,
      nullptr,
      nullptr};
  GSource* source = g_source_new(&functions, sizeof(Source));
  auto* self = reinterpret_cast<Source*>(source);
  self->server = this;
  self->isReady = isReady;
  self->act = act;
  g_source_set_priority(source, priority);
  g_source_attach(source, nullptr);
  return source;
}

// The priorities: messages that are there are taken before a source of the binding library reads
// the socket again, and calls are served when no message is left to read.
CallServer::CallServer(DBusConnection* connection, ServiceState& state)
    : connection_(connection),
      state_(state),
      takeSource_(addSource(G_PRIORITY_HIGH, &CallServer::mayTake, &CallServer::takeOrFree)),
      serveSource_(
          addSource(G_PRIORITY_DEFAULT + 1, &CallServer::hasCall, &CallServer::serveBatch)) {
  dbus_connection_set_max_received_size(connection, MAX_TAKEN_BYTES);
  require(dbus_connection_add_filter(connection, filter, this, nullptr));
  addMatch(connection, DEPARTURES);
}

CallServer::~CallServer() {
  dbus_connection_remove_filter(connection_, filter, this);
  for (GSource* source : {takeSource_, serveSource_}) {
    g_source_destroy(source);
    g_source_unref(source);
  }
}

DBusHandlerResult CallServer::filter(DBusConnection* /*connection*/, DBusMessage* message,
                                     void* self) {
  noteMessage();
  if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_SIGNAL) {
    static_cast<CallServer*>(self)->handleSignal(message);
  }
  return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
}

void CallServer::handleSignal(DBusMessage* signal) noexcept {
  if (isDisconnection(signal)) {
    last_ = 0;  // nobody waits for an answer any more
    g_main_loop_quit(state_.mainLoop());
    return;
  }
  const std::string_view client = departed(signal);
  if (client.empty()) return;
  queue_.leave(client);
  state_.clientLeft(client);
}

bool CallServer::mayServe() const {
  return dbus_connection_get_outgoing_size(connection_) <= MAX_UNSENT_BYTES;
}

bool CallServer::hasMessage() const {
  return dbus_connection_get_dispatch_status(connection_) == DBUS_DISPATCH_DATA_REMAINS;
}

void CallServer::takeMessages() {
  while (dbus_connection_dispatch(connection_) == DBUS_DISPATCH_DATA_REMAINS &&
         queue_.count() < MAX_TAKEN && !last_) {
  }
}

// The calls that wait hold memory. As long as the bus library tries to read a message, the loop
// would not come to serve them.
bool CallServer::mustFreeMemory() const { return isBusShortOfMemory() && hasCall(); }

void CallServer::takeOrFree() {
  takeMessages();
  if (mustFreeMemory()) serveNext();
}

DBusHandlerResult CallServer::take(DBusMessage* message, ServeCall serveCall) noexcept {
  if (last_) return DBUS_HANDLER_RESULT_HANDLED;  // the bus answers it when the connection ends
  const CallToServe call{message, serveCall, ++taken_};
  if (queue_.empty() && !hasMessage() && mayServe()) return serve(call, senderOf(message));
  if (queue_.count() >= MAX_TAKEN && mayServe()) serveNext();
  try {
    queue_.add(senderOf(message),
               {MessagePointer(dbus_message_ref(message)), serveCall, call.number, false});
  } catch (const std::exception&) {
    // There is no memory to keep the call, so those that wait are served first and then this one.
    while (!queue_.empty()) serveNext();
    return serve(call, senderOf(message));
  }
  return DBUS_HANDLER_RESULT_HANDLED;
}

DBusHandlerResult CallServer::serve(const CallToServe& call, std::string_view caller) {
  state_.setCaller(caller);
  const DBusHandlerResult result = call.serve(connection_, call.message);
  state_.finishCall();
  if (!last_ && g_main_loop_is_running(state_.mainLoop()) == FALSE) last_ = call.number;
  return result;
}

void CallServer::serveNext() {
  const WaitingCall call = queue_.next();
  if (last_ && call.number > *last_) return;
  DBusMessage* message = call.message.get();
  const std::string_view caller = call.hasLeft ? std::string_view() : senderOf(message);
  if (serve({message, call.serve, call.number}, caller) == DBUS_HANDLER_RESULT_NOT_YET_HANDLED) {
    refuse(connection_, message);
  }
}

// Several at a time, as each round of the main loop costs some system calls, but not for long:
// meanwhile nobody else's call is taken. By the time that this source has its turn, another one may
// have served the call that made it ready.
void CallServer::serveBatch() {
  constexpr gint64 LONG = 1000;  // in microseconds
  const gint64 end = g_get_monotonic_time() + LONG;
  while (hasCall() && !last_) {
    serveNext();
    if (g_get_monotonic_time() >= end) return;
  }
}

void CallServer::end() {
  const uint64_t most = taken_ + MAX_TAKEN;
  while (!last_ && taken_ < most) {
    dbus_connection_read_write(connection_, 0);
    if (!hasMessage()) break;
    takeMessages();
  }
  if (!last_) last_ = taken_;
  g_main_loop_quit(state_.mainLoop());
}

void CallServer::serveEarlier() {
  constexpr int STEP = 10;  // in milliseconds
  const gint64 patience = 2 * G_TIME_SPAN_SECOND;
  while (!queue_.empty()) {
    const gint64 deadline = g_get_monotonic_time() + patience;
    while (!mayServe()) {
      if (dbus_connection_read_write(connection_, STEP) == 0) return;  // no bus any more
      if (g_get_monotonic_time() > deadline) return;
    }
    serveNext();
  }
}

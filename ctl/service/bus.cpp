#include "ctl/service/bus.h"

#include <algorithm>
#include <array>
#include <functional>

namespace {

constexpr const char* SERVICE_NAME = "org.tavrel.transaction";
constexpr const char* INTERFACES[] = {"org.tavrel.transaction", "org.tavrel.parameters1",
                                      "org.freedesktop.DBus.Properties"};
constexpr const char* PATHS[] = {"/transaction", "/parameters"};
// What the service puts before each error of its first interface.
constexpr std::string_view ERROR_START = "dbus_tavrel_transaction: ";
constexpr std::string_view BUS_ERROR = "org.freedesktop.DBus.Error.";

// Errors of the bus that say that there is nobody who answers, without that start.
constexpr std::array<std::string_view, 3> NO_OWNER = {"ServiceUnknown", "NameHasNoOwner",
                                                      "Spawn.ServiceNotFound"};
constexpr std::array<std::string_view, 3> NO_OBJECT = {"UnknownMethod", "UnknownObject",
                                                       "UnknownInterface"};
constexpr std::array<std::string_view, 4> NO_REPLY = {"NoReply", "Timeout", "TimedOut",
                                                      "Disconnected"};

std::string suffixed(const char* start, char sign, const std::string& suffix) {
  return suffix.empty() ? start : start + (sign + suffix);
}

bool isAmong(std::string_view word, const auto& words) {
  return std::ranges::find(words, word) != words.end();
}

std::string takeText(GError* error) {
  std::string text = error->message;
  g_error_free(error);
  return text;
}

// The name of an error as it travels on the bus; of one that arose here that of its kind.
std::string errorNameOf(const GError& error) {
  gchar* const remote = g_dbus_error_get_remote_error(&error);
  if (remote != nullptr) {
    std::string name = remote;
    g_free(remote);
    return name;
  }
  const bool isLate = g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT) != FALSE;
  const bool isClosed = g_error_matches(&error, G_IO_ERROR, G_IO_ERROR_CLOSED) != FALSE;
  return std::string(BUS_ERROR) + (isLate ? "NoReply" : isClosed ? "Disconnected" : "Failed");
}

// Whether nobody has answered, or not in time.
bool isSilence(std::string_view errorName) {
  if (!errorName.starts_with(BUS_ERROR)) return false;
  const std::string_view kind = errorName.substr(BUS_ERROR.size());
  return isAmong(kind, NO_OWNER) || isAmong(kind, NO_REPLY);
}

// More calls that wait would only be slower, and a bus may limit them.
constexpr size_t MOST_WAITING = 100;

// Calls that wait for their replies.
struct Waiting {
  std::function<BusReply(size_t number, GVariant* value, GError* error)> read;
  std::vector<BusReply> replies;
  size_t missing = 0;                     // replies to what has been sent
  size_t last = 0;                        // the call whose reply has come last
  std::optional<size_t> silentCall = {};  // one that nobody has answered
};
struct WaitingCall {
  Waiting* waiting;
  size_t number;
};

void takeReply(GObject* connection, GAsyncResult* result, gpointer data) {
  const auto& call = *static_cast<WaitingCall*>(data);
  Waiting& waiting = *call.waiting;
  GError* error = nullptr;
  GVariant* const value =
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error);
  waiting.replies[call.number] = waiting.read(call.number, value, error);
  if (isSilence(waiting.replies[call.number].errorName)) waiting.silentCall = call.number;
  --waiting.missing;
  waiting.last = call.number;
}

void dropArguments(const BusCall& call) {
  if (call.arguments == nullptr) return;
  g_variant_ref_sink(call.arguments);
  g_variant_unref(call.arguments);
}

constexpr BusMethod WAIT_READY = {PARAMETERS_INTERFACE, "WaitReady", "()"};

BusReply errorOf(const BusReply& reply) {
  return {.outcome = reply.outcome, .errorName = reply.errorName, .error = reply.error};
}

// Whether the answer to the wait says that there is nobody to ask. An older service does not know
// the call, and another may not allow it: what is asked next tells. So it does where there is
// nobody at all, or nobody who answers anything.
bool isUnready(const BusReply& waited, const std::vector<BusReply>& others) {
  if (!waited.errorName.starts_with(BUS_ERROR)) return false;
  const std::string_view kind = std::string_view(waited.errorName).substr(BUS_ERROR.size());
  if (isAmong(kind, NO_OWNER)) return false;
  const bool isSilent = !others.empty() && std::ranges::all_of(others, [](const BusReply& reply) {
    return reply.outcome == BUS_NO_SERVICE;
  });
  return kind.starts_with("Spawn.") || (isAmong(kind, NO_REPLY) && !isSilent);
}

// Nobody but who waits for the device starts it.
GDBusCallFlags flagsOf(const BusMethod& method) {
  return method.name == WAIT_READY.name ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START;
}

}  // namespace

std::vector<std::string> serviceArguments(const BusOptions& options) {
  std::vector<std::string> arguments;
  const auto add = [&](const char* option, const std::string& value) {
    if (value.empty()) return;
    arguments.emplace_back(option);
    arguments.push_back(value);
  };
  add("-b", options.busSuffix);
  add("-o", options.pathSuffix);
  add("--address", options.address);
  return arguments;
}

const char* interfaceName(BusInterface interface) { return INTERFACES[interface]; }

bool isBusSuffix(const std::string& suffix) {
  return suffix.empty() || g_dbus_is_name((std::string(SERVICE_NAME) + "." + suffix).c_str());
}

bool isPathSuffix(const std::string& suffix) {
  return suffix.empty() || g_variant_is_object_path(("/" + suffix).c_str());
}

std::unique_ptr<Bus> Bus::connect(const BusOptions& options, std::string& error) {
  GError* failure = nullptr;
  std::string address = options.address;
  if (address.empty()) {
    gchar* const session = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, &failure);
    if (session == nullptr) {
      error = "no session bus: " + takeText(failure);
      return nullptr;
    }
    address = session;
    g_free(session);
  }
  GDBusConnection* const connection = g_dbus_connection_new_for_address_sync(
      address.c_str(),
      static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                        G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
      nullptr, nullptr, &failure);
  if (connection == nullptr) {
    error = "no bus at " + address + ": " + takeText(failure);
    return nullptr;
  }
  return std::unique_ptr<Bus>(new Bus(connection, options));
}

Bus::Bus(GDBusConnection* connection, const BusOptions& options)
    : connection_(connection),
      options_(options),
      name_(suffixed(SERVICE_NAME, '.', options.busSuffix)),
      destination_(name_),
      paths_{suffixed(PATHS[TRANSACTION_INTERFACE], '/', options.pathSuffix),
             suffixed(PATHS[PARAMETERS_INTERFACE], '/', options.pathSuffix),
             suffixed(PATHS[PARAMETERS_INTERFACE], '/', options.pathSuffix)},
      mustWait_(options.waits) {}

Bus::~Bus() { g_object_unref(connection_); }

BusReply Bus::call(const BusCall& call) { return std::move(callAll({call}).front()); }

std::vector<BusReply> Bus::callAll(const std::vector<BusCall>& calls) {
  return mustWait_ ? callWhenReady(calls) : callInOrder(calls);
}

// The timeout of each call begins as it is sent. Once nobody has answered one, those that have not
// been sent end as it has.
std::vector<BusReply> Bus::callInOrder(const std::vector<BusCall>& calls, bool* isFirstLast) {
  Waiting waiting = {.read = [&](size_t number, GVariant* value,
                                 GError* error) { return replyOf(calls[number], value, error); },
                     .replies = std::vector<BusReply>(calls.size())};
  std::vector<WaitingCall> sent;
  sent.reserve(calls.size());
  GMainContext* const context = g_main_context_new();
  g_main_context_push_thread_default(context);
  const auto isMoreToSend = [&] { return sent.size() < calls.size() && !waiting.silentCall; };
  while (isMoreToSend() || waiting.missing > 0) {
    while (isMoreToSend() && waiting.missing < MOST_WAITING) {
      sent.push_back({&waiting, sent.size()});
      ++waiting.missing;
      sendWaiting(calls[sent.size() - 1], takeReply, &sent.back());
    }
    g_main_context_iteration(context, TRUE);
  }
  g_main_context_pop_thread_default(context);
  g_main_context_unref(context);
  if (isFirstLast != nullptr) *isFirstLast = waiting.last == 0;
  for (size_t i = sent.size(); i < calls.size(); ++i) {
    dropArguments(calls[i]);
    waiting.replies[i] = errorOf(waiting.replies[*waiting.silentCall]);
  }
  return std::move(waiting.replies);
}

void Bus::sendWaiting(const BusCall& call, GAsyncReadyCallback taken, gpointer data) {
  const BusMethod& method = call.method;
  g_dbus_connection_call(connection_, destination_.c_str(), path(method.interface).c_str(),
                         interfaceName(method.interface), method.name, call.arguments,
                         G_VARIANT_TYPE(method.replyType), flagsOf(method), options_.timeout * 1000,
                         nullptr, taken, data);
}

// Questions are sent right behind the call that waits, which costs no round trip: the service
// answers in order. Where the answer to the wait comes last, they were answered too early and are
// asked again. What changes something is sent once the device is ready.
std::vector<BusReply> Bus::callWhenReady(const std::vector<BusCall>& calls) {
  mustWait_ = false;
  // Floating arguments would be gone with the first call.
  for (const BusCall& call : calls) {
    if (call.arguments != nullptr) g_variant_ref_sink(call.arguments);
  }
  std::vector<BusCall> all = {{WAIT_READY, nullptr}};
  if (std::ranges::all_of(calls, [](const BusCall& call) { return call.method.isQuestion; })) {
    all.insert(all.end(), calls.begin(), calls.end());
  }
  bool hasWaited = false;
  std::vector<BusReply> replies = callInOrder(all, &hasWaited);
  const BusReply waited = std::move(replies.front());
  replies.erase(replies.begin());
  if (isUnready(waited, replies)) {
    replies.clear();
    for (size_t i = 0; i < calls.size(); ++i) replies.push_back(errorOf(waited));
  } else if (hasWaited) {
    replies = callInOrder(calls);
  }
  for (const BusCall& call : calls) {
    if (call.arguments != nullptr) g_variant_unref(call.arguments);
  }
  return replies;
}

// What the bus itself answers to a question about a name; null for an error.
VariantHolder Bus::askBus(const char* method, const char* type, const std::string& name) {
  return VariantHolder(g_dbus_connection_call_sync(
      connection_, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
      g_variant_new("(s)", name.c_str()), G_VARIANT_TYPE(type), G_DBUS_CALL_FLAGS_NONE,
      options_.timeout * 1000, nullptr, nullptr));
}

std::string Bus::owner() {
  const VariantHolder reply = askBus("GetNameOwner", "(s)", name_);
  const gchar* owner = "";
  if (reply != nullptr) g_variant_get(reply.get(), "(&s)", &owner);
  return owner;
}

std::optional<uint32_t> Bus::processOfService() {
  const VariantHolder reply = askBus("GetConnectionUnixProcessID", "(u)", destination_);
  if (reply == nullptr) return std::nullopt;
  guint32 process = 0;
  g_variant_get(reply.get(), "(u)", &process);
  return process;
}

void Bus::send(const BusCall& call) {
  const BusMethod& method = call.method;
  g_dbus_connection_call(connection_, destination_.c_str(), path(method.interface).c_str(),
                         interfaceName(method.interface), method.name, call.arguments, nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

guint Bus::subscribe(const char* signal, GDBusSignalCallback taken, gpointer data) {
  return g_dbus_connection_signal_subscribe(
      connection_, name_.c_str(), interfaceName(PARAMETERS_INTERFACE), signal,
      path(PARAMETERS_INTERFACE).c_str(), nullptr, G_DBUS_SIGNAL_FLAGS_NONE, taken, data, nullptr);
}

std::string Bus::noServiceText(std::string_view errorName, const BusCall& call,
                               const std::string& text) const {
  if (!errorName.starts_with(BUS_ERROR)) return {};
  const std::string_view kind = errorName.substr(BUS_ERROR.size());
  if (isAmong(kind, NO_OWNER)) {
    return "no service: nobody has the bus name " + name_ +
           "; is ostrel running, with the same -b?";
  }
  if (isAmong(kind, NO_OBJECT)) {
    return "no service: " + name_ + " does not serve " + interfaceName(call.method.interface) +
           " at " + path(call.method.interface) +
           "; was it started with another -o, or is it older than this program?";
  }
  if (kind.starts_with("Spawn.")) return "no service: " + name_ + " cannot be started: " + text;
  if (!isAmong(kind, NO_REPLY)) return {};
  if (call.method.name == WAIT_READY.name && kind != "Disconnected") {
    return "no service: " + name_ + " has not become ready within " +
           std::to_string(options_.timeout) + " s; --no-wait asks it as it is";
  }
  return "no service: " + name_ + " does not reply to " + call.method.name +
         (kind == "Disconnected" ? ", as the bus has gone"
                                 : " within " + std::to_string(options_.timeout) + " s");
}

BusReply Bus::replyOf(const BusCall& call, GVariant* value, GError* error) const {
  if (error == nullptr) return {.value = VariantHolder(value)};
  BusReply reply = {.outcome = BUS_REFUSED, .errorName = errorNameOf(*error)};
  g_dbus_error_strip_remote_error(error);
  reply.error = takeText(error);
  if (reply.error.starts_with(ERROR_START)) reply.error.erase(0, ERROR_START.size());
  const std::string noService = noServiceText(reply.errorName, call, reply.error);
  if (!noService.empty()) {
    reply.outcome = BUS_NO_SERVICE;
    reply.error = noService;
  }
  return reply;
}

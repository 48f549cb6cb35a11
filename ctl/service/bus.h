// The bus as a client sees it: one connection, calls of the two objects of the service.
#pragma once

#include <gio/gio.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct UnrefVariant {
  void operator()(GVariant* value) const { g_variant_unref(value); }
};
using VariantHolder = std::unique_ptr<GVariant, UnrefVariant>;

/// Where the service is.
struct BusOptions {
  std::string address = {};     ///< of the bus; empty for the session's
  std::string busSuffix = {};   ///< as of the daemon's -b
  std::string pathSuffix = {};  ///< as of the daemon's -o
  int timeout = 30;             ///< for each reply, in seconds
  bool waits = true;            ///< whether the first call waits until the device is ready
};

/// The options of a command line for the same service; those that are not given are left out.
std::vector<std::string> serviceArguments(const BusOptions& options);

/// The interfaces of the service; each has an object of its own.
enum BusInterface : int {
  TRANSACTION_INTERFACE,
  PARAMETERS_INTERFACE,
  PARAMETERS_PROPERTIES,  ///< those of the second, which have an interface of their own
};

/// A method, and the type of its reply.
struct BusMethod {
  BusInterface interface;
  const char* name;
  const char* replyType;
  bool isQuestion = false;  ///< whether it changes nothing and can be asked again
};

struct BusCall {
  BusMethod method;
  GVariant* arguments;  ///< a tuple that may be floating; null for none
};

/// How a call ended.
enum BusOutcome : int {
  BUS_ANSWERED = 0,
  BUS_REFUSED = 1,     ///< the service itself answers with an error
  BUS_NO_SERVICE = 2,  ///< no service, or not in time
};

struct BusReply {
  BusOutcome outcome = BUS_ANSWERED;
  VariantHolder value = {};    ///< a tuple; null for an error
  std::string errorName = {};  ///< as on the bus
  std::string error = {};      ///< a text for people
};

/// One connection to a bus.
class Bus {
 public:
  /// Connects; null where there is no bus, and why is in `error`.
  static std::unique_ptr<Bus> connect(const BusOptions& options, std::string& error);
  ~Bus();
  Bus(const Bus&) = delete;
  Bus& operator=(const Bus&) = delete;

  /// From now on calls go to the client with this unique name alone, and not to another that gets
  /// the bus name of the service.
  void callOnly(const std::string& owner) { destination_ = owner; }
  /// Does not wait until the device is ready, whatever the options say.
  void doNotWait() { mustWait_ = false; }
  /// Calls a method and waits for its reply. The first call first waits until the device is ready,
  /// and lets the bus start the service.
  BusReply call(const BusCall& call);
  /// Makes the calls in their order, and waits for no reply before the next call as long as few
  /// wait. The replies have the order of the calls.
  std::vector<BusReply> callAll(const std::vector<BusCall>& calls);
  /// Calls a method that nobody waits for.
  void send(const BusCall& call);

  /// Has `taken` called for each such signal of the second interface, with `data`. Returns the
  /// subscription.
  guint subscribe(const char* signal, GDBusSignalCallback taken, gpointer data);

  /// Where the service is.
  [[nodiscard]] const BusOptions& options() const { return options_; }
  /// The unique name of whoever has the service's bus name; empty where nobody has it.
  [[nodiscard]] std::string owner();
  /// The process of the service, where the bus knows it.
  [[nodiscard]] std::optional<uint32_t> processOfService();

  [[nodiscard]] GDBusConnection& connection() { return *connection_; }
  /// The bus name of the service.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// The object with an interface.
  [[nodiscard]] const std::string& path(BusInterface interface) const { return paths_[interface]; }

 private:
  Bus(GDBusConnection* connection, const BusOptions& options);
  std::vector<BusReply> callInOrder(const std::vector<BusCall>& calls, bool* isFirstLast = nullptr);
  void sendWaiting(const BusCall& call, GAsyncReadyCallback taken, gpointer data);
  std::vector<BusReply> callWhenReady(const std::vector<BusCall>& calls);
  VariantHolder askBus(const char* method, const char* type, const std::string& name);
  BusReply replyOf(const BusCall& call, GVariant* value, GError* error) const;
  [[nodiscard]] std::string noServiceText(std::string_view errorName, const BusCall& call,
                                          const std::string& text) const;

  GDBusConnection* connection_;
  const BusOptions options_;
  const std::string name_;
  std::string destination_;  // of calls
  const std::string paths_[3];
  bool mustWait_;
};

/// Whether `suffix` can be behind a bus name, or behind an object path.
bool isBusSuffix(const std::string& suffix);
bool isPathSuffix(const std::string& suffix);

/// The name of an interface.
const char* interfaceName(BusInterface interface);

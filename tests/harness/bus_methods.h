// The bus interface as its clients know it: methods and arguments, in the order of introspection.
#pragma once

#include <string>
#include <string_view>
#include <vector>

constexpr const char* INTERFACE_NAME = "org.tavrel.transaction";
constexpr const char* OBJECT_PATH = "/transaction";
/// The one name that every error of the interface has; clients tell causes apart by the message.
constexpr const char* ERROR_NAME =
    "org.freedesktop.DBus.GLib.UnmappedError.DbusTavrelTransaction.Code0";
/// What every message of the interface begins with.
constexpr std::string_view ERROR_PREFIX = "dbus_tavrel_transaction: ";

struct BusArgument {
  std::string name;
  std::string type;
};

struct BusMethod {
  std::string name;
  std::vector<BusArgument> in;
  std::vector<BusArgument> out;

  /// The type of all in-arguments together, as a tuple.
  [[nodiscard]] std::string inType() const;
};

const std::vector<BusMethod>& busMethods();
/// The method of that name, or null.
const BusMethod* findBusMethod(std::string_view name);

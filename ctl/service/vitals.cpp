// What the service tells of itself, and what the system knows of its process.
#include <unistd.h>

#include <fstream>

#include "ctl/service/exit_status.h"
#include "ctl/service/service.h"

namespace {

constexpr BusMethod GET_ALL = {PARAMETERS_PROPERTIES, "GetAll", "(a{sv})"};

// As `read` makes it of the property; `otherwise` where there is none of the type.
template <typename Value, typename Read>
Value propertyOf(GVariant& all, const char* name, const char* type, const Read& read,
                 Value otherwise) {
  const VariantHolder value(g_variant_lookup_value(&all, name, G_VARIANT_TYPE(type)));
  return value == nullptr ? otherwise : static_cast<Value>(read(value.get()));
}

std::string readText(GVariant* value) { return g_variant_get_string(value, nullptr); }
bool readFlag(GVariant* value) { return g_variant_get_boolean(value) != FALSE; }

// Whether the process is a daemon. The bus names the process that connected: that of a daemon that
// has detached since is gone, and another may have its number.
bool isDaemon(const std::string& directory) {
  std::ifstream file(directory + "/comm");
  std::string name;
  return std::getline(file, name) && name == "ostrel";
}

// The memory that the daemon has now, in bytes; none where the system does not tell.
std::optional<uint64_t> memoryOf(uint32_t process) {
  const std::string directory = "/proc/" + std::to_string(process);
  std::ifstream file(directory + "/statm");
  uint64_t all = 0;
  uint64_t resident = 0;
  file >> all >> resident;
  if (!file || !isDaemon(directory)) return std::nullopt;
  return resident * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

std::optional<Vitals> Service::vitals(std::string& error) {
  const gint64 begin = g_get_monotonic_time();
  const BusReply reply =
      bus_.call({GET_ALL, g_variant_new("(s)", interfaceName(PARAMETERS_INTERFACE))});
  const gint64 end = g_get_monotonic_time();
  if (reply.outcome != BUS_ANSWERED) {
    error = reply.error;
    return std::nullopt;
  }
  const VariantHolder all(g_variant_get_child_value(reply.value.get(), 0));
  Vitals vitals;
  vitals.version = propertyOf(*all, "Version", "s", readText, std::string());
  vitals.definitions = propertyOf(*all, "Definitions", "u", g_variant_get_uint32, 0U);
  vitals.commits = propertyOf(*all, "Commits", "t", g_variant_get_uint64, uint64_t{0});
  vitals.transactions = propertyOf(*all, "OpenTransactions", "u", g_variant_get_uint32, 0U);
  vitals.watchers = propertyOf(*all, "Watchers", "u", g_variant_get_uint32, 0U);
  vitals.started = propertyOf(*all, "Started", "t", g_variant_get_uint64, uint64_t{0});
  vitals.isReady = propertyOf(*all, "Ready", "b", readFlag, true);
  vitals.latency = static_cast<double>(end - begin) / G_USEC_PER_SEC;
  if (const std::optional<uint32_t> process = bus_.processOfService()) {
    vitals.memory = memoryOf(*process);
  }
  return vitals;
}

#include "play/wrong_name.h"

#include <cstddef>

#include "base/nearest_word.h"
#include "sw/parm/parm_name.h"

namespace {

std::string inQuotes(std::string_view text) { return std::string("\"").append(text).append("\""); }

std::string counted(size_t count) {
  if (count == 0) return "no index values";
  return std::to_string(count) + (count == 1 ? " index value" : " index values");
}

}  // namespace

std::optional<std::string> wrongName(const KnownDevice& device, const std::string& name) {
  const ParmName parts = splitName(name);
  const auto parm = device.parms.find(parts.base);
  if (parm == device.parms.end()) {
    NearestWord nearest(parts.base);
    for (const auto& [known, indices] : device.parms) nearest.offer(known);
    const std::string proposal =
        nearest.found() ? "; did you mean " + inQuotes(*nearest.found()) + "?" : "";
    return "there is no parameter " + inQuotes(parts.base) + proposal;
  }
  const size_t given = parts.indices.size();
  if (given == parm->second.size()) return {};
  return inQuotes(parts.base) + " has " + counted(parm->second.size()) + ", and " + inQuotes(name) +
         " names " + (given == 0 ? "none" : std::to_string(given));
}

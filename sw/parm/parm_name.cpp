#include "sw/parm/parm_name.h"

#include <algorithm>

#include "base/value_limit.h"

std::string_view baseName(std::string_view name) { return name.substr(0, name.find('[')); }

ParmName splitName(std::string_view name) {
  ParmName parts{std::string(baseName(name)), {}};
  size_t open = name.find('[');
  while (open != std::string_view::npos) {
    const size_t close = name.find(']', open + 1);
    if (close == std::string_view::npos) break;
    parts.indices.emplace_back(name.substr(open + 1, close - open - 1));
    open = name.find('[', close + 1);
  }
  return parts;
}

bool hasTooLongPart(std::string_view name) {
  if (!isTooLong(name)) return false;
  const ParmName parts = splitName(name);
  return isTooLong(parts.base) || std::any_of(parts.indices.begin(), parts.indices.end(),
                                              [](const std::string& i) { return isTooLong(i); });
}

std::string fullName(std::string_view base, const IndexTuple& indices) {
  std::string name(base);
  appendSuffix(name, indices);
  return name;
}

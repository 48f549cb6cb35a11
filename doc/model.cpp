#include "doc/model.h"

#include <algorithm>
#include <unordered_set>

bool DocRange::isConstant() const {
  return std::ranges::all_of(items, [](const DocItem& item) { return item.span || item.text; });
}

const DocParameter* DocModel::find(const std::string& name) const {
  const auto found = places.find(name);
  return found == places.end() ? nullptr : &parameters[found->second];
}

std::vector<std::string> DocModel::sections() const {
  std::vector<std::string> names;
  std::unordered_set<std::string> known;
  for (const DocParameter& parameter : parameters) {
    if (known.insert(parameter.section).second) names.push_back(parameter.section);
  }
  std::stable_partition(names.begin(), names.end(),
                        [](const std::string& name) { return name.empty(); });
  return names;
}

uint32_t DocModel::levels() const {
  uint32_t count = 0;
  for (const DocParameter& parameter : parameters) count = std::max(count, parameter.level + 1);
  return count;
}

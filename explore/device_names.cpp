#include "explore/device_names.h"

#include <glib.h>

#include <algorithm>

#include "sw/parm/parm_name.h"

bool canBeSaid(const std::string& text) {
  return g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) != FALSE;
}

DeviceNames::DeviceNames(const KnownDevice& known) {
  for (const auto& [index, values] : known.indices) {
    std::ranges::copy_if(values, std::back_inserter(values_[index]), canBeSaid);
  }
  size_t count = 0;
  for (const auto& [parm, indices] : known.parms) {
    size_t instances = 1;
    for (const std::string& index : indices) instances *= values_[index].size();
    if (!canBeSaid(parm) || instances == 0) continue;
    indices_.emplace(parm, indices);
    parms_.push_back(parm);
    count += instances;
  }
  if (count > MAX_LISTED) return;
  for (const std::string& parm : parms_) {
    Texts names = {parm};
    for (const std::string& index : indices_.at(parm)) names = crossed(names, values_.at(index));
    all_.insert(all_.end(), names.begin(), names.end());
  }
}

std::string DeviceNames::anyOf(const std::string& parm, ExploreRandom& random) const {
  std::string name = parm;
  for (const std::string& index : indices_.at(parm)) {
    const Texts& values = values_.at(index);
    name.append("[").append(values[below(random, values.size())]).append("]");
  }
  return name;
}

bool DeviceNames::isInstance(std::string_view name) const {
  const auto found = indices_.find(baseName(name));
  if (found == indices_.end()) return false;
  if (found->second.empty()) return found->first.size() == name.size();
  return splitName(name).indices.size() == found->second.size() && name.ends_with(']');
}

std::string_view DeviceNames::nameIn(std::string_view change) const {
  for (size_t sign = change.find('='); sign != std::string_view::npos;
       sign = change.find('=', sign + 1)) {
    if (isInstance(change.substr(0, sign))) return change.substr(0, sign);
  }
  return {};
}

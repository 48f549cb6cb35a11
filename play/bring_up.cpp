#include "play/bring_up.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "sw/parm/parm_name.h"

DeviceClient::Names crossed(const DeviceClient::Names& names, const DeviceClient::Names& values) {
  DeviceClient::Names result;
  for (const std::string& name : names) {
    for (const std::string& value : values) {
      result.push_back(std::string(name).append("[").append(value).append("]"));
    }
  }
  return result;
}

BringUp::BringUp(DeviceClient& client, KnownDevice device)
    : client_(client), device_(std::move(device)) {
  for (const auto& [parm, indices] : device_.parms) parms_.push_back(parm);
  for (const auto& [name, value] : device_.lastValues) {
    lastNames_[std::string(baseName(name))].push_back(name);
  }
}

void BringUp::run() {
  const BringUpSteps plan = bringUpSteps(dependencies());
  for (size_t i = 0; i < parms_.size(); ++i) {
    if (plan.isInRing[i]) rings_.insert(parms_[i]);
  }
  for (const std::vector<uint32_t>& parms : plan.steps) {
    const Names step = namesOf(parms);
    ++steps_;
    resetStep(step);
    resetVaried(step);
    settleRings(step);
    setLastValues(step);
  }
  fillZeros();
}

// Adds the full names of a parameter, with all combinations of the values of its indices.
template <typename ValuesOf>
void BringUp::addInstances(Names& all, const std::string& parm, ValuesOf valuesOf) const {
  Names names = {parm};
  for (const std::string& index : device_.parms.at(parm)) names = crossed(names, valuesOf(index));
  all.insert(all.end(), names.begin(), names.end());
}

// Those of all parameters, by their places in `parms_`. What is no parameter is left out.
ParmDependencies BringUp::dependencies() {
  std::unordered_map<std::string_view, uint32_t> places;
  for (const std::string& parm : parms_) places.emplace(parm, static_cast<uint32_t>(places.size()));
  ParmDependencies dependencies;
  for (const std::string& parm : parms_) {
    std::vector<uint32_t>& others = dependencies.emplace_back();
    for (const std::string& name : client_.dependencies(parm)) {
      const auto place = places.find(baseName(name));
      if (place != places.end()) others.push_back(place->second);
    }
    std::ranges::sort(others);
    others.erase(std::unique(others.begin(), others.end()), others.end());
  }
  return dependencies;
}

BringUp::Names BringUp::namesOf(const std::vector<uint32_t>& parms) const {
  Names names;
  for (const uint32_t parm : parms) names.push_back(parms_[parm]);
  return names;
}

// Resets all instances at once. Where that fails, resets each alone, so that no instance keeps
// another from its default.
void BringUp::resetStep(const Names& step) {
  const Names names = instancesOf(step);
  if (!names.empty() && !client_.reset(names)) resetAlone(names);
}

void BringUp::resetAlone(const Names& names) {
  for (const std::string& name : names) client_.reset({name});
}

// Whether one of the parameter's indices looks at index values. The index queries judge each
// index without the values of others, so they may list too many instances of `parm`, or too few.
bool BringUp::isVaried(const std::string& parm) const {
  const Names& indices = device_.parms.at(parm);
  return std::any_of(indices.begin(), indices.end(), [&](const std::string& index) {
    return device_.variedIndices.contains(index);
  });
}

void BringUp::resetVaried(const Names& step) {
  for (const std::string& parm : step) {
    if (isVaried(parm)) resetAlone(possibleInstancesOf({parm}));
  }
}

// Resets the rings of a step until they rest: the first reset judged each parameter of a ring
// while the others had not followed yet.
void BringUp::settleRings(const Names& step) {
  Names ring;
  std::copy_if(step.begin(), step.end(), std::back_inserter(ring),
               [&](const std::string& parm) { return isInRing(parm); });
  if (ring.empty()) return;
  for (size_t round = 1; round <= MOST_ROUNDS; ++round) {
    rounds_ = std::max(rounds_, round);
    if (!resetMovesAny(ring)) return;
  }
  restless_.insert(ring.begin(), ring.end());
}

// Resets each instance alone, and compares all values after each reset, because one reset may
// take back what another did. What a ring holds may decide which of its instances exist, so all
// that may ever exist are named.
bool BringUp::resetMovesAny(const Names& ring) {
  const Names names = possibleInstancesOf(ring);
  bool isMoved = false;
  Names before = client_.values(names);
  for (const std::string& name : names) {
    client_.reset({name});
    Names after = client_.values(names);
    isMoved = isMoved || after != before;
    before = std::move(after);
  }
  return isMoved;
}

void BringUp::setLastValues(const Names& step) {
  for (const std::string& parm : step) {
    const auto names = lastNames_.find(parm);
    if (names == lastNames_.end()) continue;
    for (const std::string& name : names->second) client_.set(name, device_.lastValues.at(name));
  }
}

// Sets 0 where a value is still empty and 0 is all that is allowed: a reset leaves the empty
// value, which counts as 0, as it is.
void BringUp::fillZeros() {
  for (const std::string& parm : parms_) {
    const bool isForeseeable = !isVaried(parm) && !isInRing(parm);
    const Names names = isForeseeable ? instancesOf({parm}) : possibleInstancesOf({parm});
    if (!device_.replacingZero.contains(parm)) fillZeros(names);
  }
}

void BringUp::fillZeros(const Names& names) {
  const Names values = client_.values(names);
  for (size_t i = 0; i < names.size(); ++i) {
    if (values[i].empty() && client_.allowsOnlyZero(names[i])) client_.set(names[i], "0");
  }
}

BringUp::Names BringUp::instancesOf(const Names& parms) {
  Names all;
  for (const std::string& parm : parms) {
    const Names present = client_.presentIndices(parm);
    addInstances(all, parm, [&](const std::string& index) {
      const bool isThere = std::find(present.begin(), present.end(), index) != present.end();
      return isThere ? client_.indexValues(index) : Names{};
    });
  }
  return all;
}

// The full names of all instances that may exist at one time or another.
BringUp::Names BringUp::possibleInstancesOf(const Names& parms) const {
  Names all;
  for (const std::string& parm : parms) {
    addInstances(all, parm, [&](const std::string& index) { return device_.indices.at(index); });
  }
  return all;
}

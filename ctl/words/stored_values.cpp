#include "ctl/words/stored_values.h"

#include <set>

#include "ctl/service/emptiable.h"
#include "ctl/text/sentences.h"

namespace {

constexpr size_t MOST_NAMED = 20;

// No range has the empty text, which the service may take all the same.
bool isDoubtful(const InstanceState& state) {
  return state.is(STATE_LIMITED) || state.is(STATE_NO_LIMITS);
}

}  // namespace

std::optional<StoredValues> storedValues(Service& service, const Levels& levels, bool isStatus,
                                         bool mayGo) {
  const std::optional<std::vector<InstanceState>> states = service.tryStates(mayGo);
  if (!states) return std::nullopt;
  StoredValues stored;
  Names doubtful;
  for (const InstanceState& state : *states) {
    const std::string& access = levels.access(state.name);
    stored.isUp = stored.isUp || state.is(STATE_HAS_VALUE);
    if (!isStatus && access != "rw") continue;
    if (state.value.empty() && access == "wo") continue;  // it has no value to be kept
    stored.values.push_back({state.name, state.value});
    if (state.value.empty() && isDoubtful(state)) doubtful.push_back(state.name);
  }
  const std::optional<Names> kept = emptiable(service, doubtful, mayGo);
  if (!kept) return std::nullopt;
  const std::set<std::string_view> settable(kept->begin(), kept->end());
  for (const std::string& name : doubtful) {
    if (!settable.contains(name)) stored.leftOut.push_back(name);
  }
  const std::set<std::string_view> leftOut(stored.leftOut.begin(), stored.leftOut.end());
  std::erase_if(stored.values, [&](const Assignment& each) { return leftOut.contains(each.name); });
  return stored;
}

std::vector<Assignment> valuesWorthKeeping(const StoredValues& stored) {
  return stored.isUp ? stored.values : std::vector<Assignment>();
}

std::string leftOutText(const Names& leftOut) {
  if (leftOut.empty()) return {};
  return namesText(leftOut, MOST_NAMED) + (leftOut.size() == 1
                                               ? " is empty, and no set makes it so"
                                               : " are empty, and no set makes them so");
}

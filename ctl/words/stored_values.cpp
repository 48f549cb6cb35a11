#include "ctl/words/stored_values.h"

std::optional<std::vector<Assignment>> storedValues(Service& service, const Levels& levels,
                                                    bool isStatus, bool mayGo) {
  const std::optional<std::vector<InstanceState>> states = service.tryStates(mayGo);
  if (!states) return std::nullopt;
  std::vector<Assignment> values;
  for (const InstanceState& state : *states) {
    const bool isWanted = isStatus || levels.access(state.name) == "rw";
    if (isWanted && state.is(STATE_HAS_VALUE)) values.push_back({state.name, state.value});
  }
  return values;
}

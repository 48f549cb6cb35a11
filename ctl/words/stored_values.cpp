#include "ctl/words/stored_values.h"

namespace {

// No range has the empty text; where there is none, a client may have set it. Write-only parameters
// have no value.
bool isSetEmpty(const InstanceState& state, const std::string& access) {
  return state.is(STATE_EXISTS) && state.value.empty() && access != "wo" &&
         !state.is(STATE_LIMITED) && !state.is(STATE_NO_LIMITS);
}

}  // namespace

std::optional<std::vector<Assignment>> storedValues(Service& service, const Levels& levels,
                                                    bool isStatus, bool mayGo) {
  const std::optional<std::vector<InstanceState>> states = service.tryStates(mayGo);
  if (!states) return std::nullopt;
  std::vector<Assignment> values;
  bool isUp = false;
  for (const InstanceState& state : *states) {
    const std::string& access = levels.access(state.name);
    isUp = isUp || state.is(STATE_HAS_VALUE);
    if (!isStatus && access != "rw") continue;
    if (state.is(STATE_HAS_VALUE) || isSetEmpty(state, access)) {
      values.push_back({state.name, state.value});
    }
  }
  if (!isUp) values.clear();
  return values;
}

#include "play/bring_up_steps.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace {

class StepPlan {
 public:
  explicit StepPlan(const ParmDependencies& dependencies)
      : dependencies_(dependencies),
        before_(dependencies.size()),
        step_(dependencies.size()),
        isInRing_(dependencies.size()) {}

  BringUpSteps plan() {
    for (uint32_t parm = 0; parm < dependencies_.size(); ++parm) lookAt(parm);
    for (const uint32_t parm : inOrder()) step_[parm] = stepOf(parm);
    BringUpSteps result = {{}, std::move(isInRing_)};
    for (uint32_t parm = 0; parm < step_.size(); ++parm) {
      result.steps.resize(std::max<size_t>(result.steps.size(), step_[parm] + 1));
      result.steps[step_[parm]].push_back(parm);
    }
    // Where dependencies are not told with all that these depend on, a step may be left without.
    std::erase_if(result.steps, [](const std::vector<uint32_t>& step) { return step.empty(); });
    return result;
  }

 private:
  // Whether `parm`, which depends on `other`, is `other` itself or in a ring with it.
  [[nodiscard]] bool isRing(uint32_t parm, uint32_t other) const {
    return other == parm || std::ranges::binary_search(dependencies_[other], parm);
  }

  void lookAt(uint32_t parm) {
    std::vector<uint32_t>& before = before_[parm];
    for (const uint32_t other : dependencies_[parm]) {
      if (!isRing(parm, other)) before.push_back(other);
    }
    isInRing_[parm] = before.size() < dependencies_[parm].size();
  }

  // Whatever a parameter depends on, rings aside, depends on fewer.
  [[nodiscard]] std::vector<uint32_t> inOrder() const {
    std::vector<uint32_t> order(dependencies_.size());
    std::iota(order.begin(), order.end(), 0);
    std::ranges::stable_sort(order, {}, [&](uint32_t parm) { return before_[parm].size(); });
    return order;
  }

  [[nodiscard]] uint32_t stepOf(uint32_t parm) const {
    uint32_t step = 0;
    for (const uint32_t other : before_[parm]) step = std::max(step, step_[other] + 1);
    return step;
  }

  const ParmDependencies& dependencies_;
  ParmDependencies before_;  // those outside of its ring
  std::vector<uint32_t> step_;
  std::vector<bool> isInRing_;
};

}  // namespace

BringUpSteps bringUpSteps(const ParmDependencies& dependencies) {
  return StepPlan(dependencies).plan();
}

#include "explore/find.h"

#include <algorithm>
#include <utility>

#include "play/session_words.h"

namespace {

// Half of the steps are left out at a time, then a quarter, up to each of them.
class Shrinking {
 public:
  Shrinking(Find find, const StartDevice& start, const DeviceNames& names, ShrinkBudget budget)
      : find_(std::move(find)), start_(start), names_(names), budget_(std::move(budget)) {}

  Find result() {
    for (size_t count = (find_.walk.steps.size() + 1) / 2; count > 0 && !isOver();) {
      const bool isShorter = leaveOut(count);
      if (count > 1) {
        count = (count + 1) / 2;
      } else if (!isShorter) {
        break;
      }
    }
    return std::move(find_);
  }

 private:
  [[nodiscard]] bool isOver() const {
    return budget_.walks == 0 || (budget_.isOver && budget_.isOver());
  }

  // Leaves out `count` steps wherever that is possible, but never the last one of all.
  bool leaveOut(size_t count) {
    bool isShorter = false;
    for (size_t at = 0; at + 1 < find_.walk.steps.size() && !isOver();) {
      const size_t end = std::min(at + count, find_.walk.steps.size() - 1);
      if (showsWithout(at, end)) {
        isShorter = true;
      } else {
        at = end;
      }
    }
    return isShorter;
  }

  bool showsWithout(size_t begin, size_t end) {
    Find shorter = find_;
    std::vector<WalkStep>& steps = shorter.walk.steps;
    steps.erase(steps.begin() + static_cast<std::ptrdiff_t>(begin),
                steps.begin() + static_cast<std::ptrdiff_t>(end));
    --budget_.walks;
    std::optional<Fault> fault = foundAgain(shorter, start_, names_);
    if (!fault) return false;
    shorter.fault = *std::move(fault);
    find_ = std::move(shorter);
    return true;
  }

  Find find_;
  const StartDevice& start_;
  const DeviceNames& names_;
  ShrinkBudget budget_;
};

// An operation with its arguments.
std::string line(const std::string& operation, const WalkStep& step) {
  std::string text = operation + " " + spelledWord(step.name);
  if (!step.isReset()) text += " " + spelledWord(step.value);
  return text;
}
std::string single(const WalkStep& step) {
  return line("single_" + std::string(step.method), step);
}

std::string arrow(const std::string& expected) {
  return expected.empty() ? " ->\n" : " -> " + expected + "\n";
}

// The operations that show the fault after the last step, of which the last has the expectation.
std::string showing(const WalkStep& last, const Fault& fault) {
  const std::string did = single(last) + "\n";
  const std::string staged = line(std::string(last.method), last) + "\n";
  const std::string expected = arrow(fault.expected);
  switch (fault.property) {
    case PROPERTY_REPEAT:
      return did + single(last) + expected;
    case PROPERTY_TRIAL:
      return staged + "try\ncommit" + expected;
    case PROPERTY_REFUSAL:
      return staged + "range " + spelledWord(last.name) + "\ncommit" + expected;
    case PROPERTY_ORDER:
      return "start other\nother: " + line(std::string(fault.other->method), *fault.other) +
             "\nother: try" + expected + did + "other: try" + expected;
    case PROPERTY_START:
    case PROPERTY_LIMITS:
      break;
  }
  return did + single({"set_status", fault.name, fault.value}) + expected;
}

// What shows a fault that is there as soon as the device is up.
std::string showing(const Fault& fault) {
  if (fault.property == PROPERTY_START) {
    return single({"reset_status", fault.name}) + arrow(fault.expected);
  }
  return single({"set_status", fault.name, fault.value}) + arrow(fault.expected);
}

}  // namespace

std::optional<Fault> foundAgain(const Find& find, const StartDevice& start,
                                const DeviceNames& names) {
  const std::unique_ptr<Device> device = start(find.walk.constants);
  if (device == nullptr) return {};
  Probe probe(*device, names);
  std::optional<Fault> fault;
  if (find.walk.isUp) {
    std::optional<KnownDevice> known = device->known();
    if (!known) return {};
    if (find.walk.steps.empty()) {
      fault = probe.bringUp(*std::move(known));
    } else {
      probe.bringUpOnly(*std::move(known));
    }
  }
  for (const WalkStep& step : find.walk.steps) {
    if (&step != &find.walk.steps.back()) {
      probe.replay(step);
    } else {
      fault = probe.commit(step, find.fault.other ? &*find.fault.other : nullptr);
    }
  }
  // What no commit has touched, only a look at all finds.
  if (!fault && find.fault.property == PROPERTY_LIMITS) fault = probe.look();
  const bool isSame =
      fault && fault->property == find.fault.property && fault->failed == find.fault.failed;
  return isSame ? fault : std::nullopt;
}

Find shrunk(Find find, const StartDevice& start, const DeviceNames& names, ShrinkBudget budget) {
  return Shrinking(std::move(find), start, names, std::move(budget)).result();
}

std::string sessionOf(const Find& find) {
  std::string text = "# " + find.fault.text + "\n";
  if (!find.walk.constants.empty()) {
    text += "constants";
    for (const auto& [name, value] : find.walk.constants) {
      text += " " + spelledChange(std::string(name).append("=").append(value));
    }
    text += "\n";
  }
  if (find.walk.isUp) text += "up\n";
  const std::vector<WalkStep>& steps = find.walk.steps;
  for (size_t i = 0; i + 1 < steps.size(); ++i) text += single(steps[i]) + "\n";
  return text + (steps.empty() ? showing(find.fault) : showing(steps.back(), find.fault));
}

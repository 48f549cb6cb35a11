#include "explore/explorer.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "explore/device_names.h"
#include "explore/probe.h"
#include "explore/vocabulary.h"
#include "sw/parm/parm_name.h"
#include "vid_std.h"

namespace {

using Texts = std::vector<std::string>;

constexpr size_t STEPS_OF_WALK = 150;
constexpr size_t STEPS_OF_COLD_WALK = 30;
// So many steps are taken between looks at what is missing.
constexpr size_t STEPS_BETWEEN_LOOKS = 20;
// A kind of fault that has a find is looked at so many times more, with so many walks each, for
// one that is shorter.
constexpr size_t MOST_AGAIN = 3;
constexpr size_t WALKS_AGAIN = 60;

// The finds with the same cause, as far as that can be told.
struct FindKind {
  size_t place = 0;  // among the finds
  size_t again = 0;  // how often it was looked at since
};

// One variant, with what is known of its devices, and how far its tour has come.
struct ExploredVariant {
  PlayConstants constants;
  std::optional<KnownDevice> known = {};
  std::unique_ptr<DeviceNames> names = {};
  std::unique_ptr<DependencyMap> dependencies = {};
  std::vector<WalkStep> tour = {};  // what is left of it; the last is next
  size_t walks = 0;
};

class Explorer {
 public:
  explicit Explorer(const ExploreTask& task)
      : task_(task), random_(task.seed), vocabulary_(*task.coverage) {
    for (const PlayConstants& constants : task.variants) variants_.push_back({constants});
  }

  ExploreResult explore() {
    for (size_t next = 0; !isOver() && result_.failure.empty(); ++next) {
      walk(variants_[next % variants_.size()]);
    }
    return std::move(result_);
  }

 private:
  bool isOver() const {
    return result_.steps >= task_.budget.steps || result_.finds.size() >= MAX_FINDS ||
           (task_.budget.isOver && task_.budget.isOver()) || isInterrupted();
  }
  bool isInterrupted() const { return task_.budget.isInterrupted && task_.budget.isInterrupted(); }

  // Returns whether the variant can be explored.
  bool learn(ExploredVariant& variant, Device& device) {
    if (variant.names != nullptr) return true;
    variant.known = device.known();
    if (!variant.known) {
      result_.failure = "the device has more than 1000000 instances";
      return false;
    }
    variant.names = std::make_unique<DeviceNames>(*variant.known);
    variant.dependencies = std::make_unique<DependencyMap>(device, *variant.known);
    planTour(variant);
    if (variant.names->parms().empty()) result_.failure = "the text has no parameter";
    return !variant.names->parms().empty();
  }

  void walk(ExploredVariant& variant) {
    std::unique_ptr<Device> device = task_.start(variant.constants);
    if (device == nullptr) {
      result_.failure = "the device does not start" + withConstants(variant.constants);
      return;
    }
    if (!learn(variant, *device)) return;
    // Before a device is up it is in situations that are never seen again.
    const bool isUp = variant.walks++ % 4 != 1;
    Walk walk = {variant.constants, isUp, {}};
    Probe probe(*device, *variant.names);
    std::optional<Fault> fault;
    if (isUp) {
      ++result_.steps;
      fault = untold(probe.bringUp(*variant.known));
    }
    const size_t most = isUp ? STEPS_OF_WALK : STEPS_OF_COLD_WALK;
    for (size_t i = 0; i < most && !fault && !isOver(); ++i) {
      walk.steps.push_back(nextStep(variant, isUp));
      fault = untold(step(variant, probe, *device, walk.steps.back()));
    }
    if (!fault && isUp) fault = untold(probe.look());
    result_.commits += probe.commits();
    if (!fault) return;
    device.reset();  // one lives at a time, and shrinking takes many
    keep({std::move(walk), *std::move(fault)}, *variant.names);
  }

  // Keeps the shortest of each kind.
  void keep(Find find, const DeviceNames& names) {
    const auto [kind, isNew] = kinds_.try_emplace({find.fault.property, find.fault.failed},
                                                  FindKind{result_.finds.size()});
    ShrinkBudget budget = {.isOver = task_.budget.isInterrupted};
    if (!isNew) {
      ++kind->second.again;
      budget.walks = WALKS_AGAIN;
    }
    Find shorter = shrunk(repeatable(std::move(find), names), task_.start, names, budget);
    if (isNew) {
      result_.finds.push_back(std::move(shorter));
    } else if (Find& kept = result_.finds[kind->second.place];
               shorter.walk.steps.size() < kept.walk.steps.size()) {
      kept = std::move(shorter);
    }
  }

  // A session commits each step once, the probe has done so twice: where that matters, each is
  // there twice.
  Find repeatable(Find find, const DeviceNames& names) const {
    if (foundAgain(find, task_.start, names)) return find;
    std::vector<WalkStep> twice;
    for (const WalkStep& step : find.walk.steps) twice.insert(twice.end(), 2, step);
    if (!twice.empty()) twice.pop_back();
    find.walk.steps = std::move(twice);
    return find;
  }

  // The walk goes on where a fault is known, and its find is short or was looked at often enough.
  std::optional<Fault> untold(std::optional<Fault> fault) const {
    if (!fault) return {};
    const auto kind = kinds_.find({fault->property, fault->failed});
    if (kind == kinds_.end()) return fault;
    const bool isShort = result_.finds[kind->second.place].walk.steps.size() <= 1;
    if (isShort || kind->second.again == MOST_AGAIN) return {};
    return fault;
  }

  std::optional<Fault> step(const ExploredVariant& variant, Probe& probe, Device& device,
                            const WalkStep& step) {
    ++result_.steps;
    // Some statements only answer.
    if (below(random_, 4) == 0) askRanges(device, step.name);
    const std::optional<WalkStep> other = independentStep(variant, step);
    return probe.commit(step, other ? &*other : nullptr);
  }

  static void askRanges(Device& device, const std::string& name) {
    const uint32_t id = device.call({"start"}).transaction;
    static_cast<void>(device.call({"get_range", id, {name}}));
    for (const std::string& index :
         device.call({"get_parm_idx", id, {std::string(baseName(name))}}).texts) {
      static_cast<void>(device.call({"get_idx_range", id, {index}}));
    }
    static_cast<void>(device.call({"end", id}));
  }

  static std::string withConstants(const PlayConstants& constants) {
    std::string text;
    for (const auto& [name, value] : constants) {
      text.append(text.empty() ? " with " : " ").append(name).append("=").append(value);
    }
    return text;
  }

  // Now and then, something that has nothing to do with `step`.
  std::optional<WalkStep> independentStep(const ExploredVariant& variant, const WalkStep& step) {
    if (below(random_, 8) != 0) return {};
    const std::string& parm = anyParm(variant);
    if (!variant.dependencies->areIndependent(parm, std::string(baseName(step.name)))) return {};
    return stepOf(variant, parm);
  }

  WalkStep nextStep(ExploredVariant& variant, bool isUp) {
    if (isUp && !variant.tour.empty() && below(random_, 2) == 0) {
      WalkStep step = std::move(variant.tour.back());
      variant.tour.pop_back();
      return step;
    }
    const std::optional<size_t> missing = anyMissing();
    if (missing && below(random_, 4) != 0) return stepTowards(variant, *missing);
    return stepOf(variant, anyParm(variant));
  }

  // Each value that may make a difference, and the default, once for each parameter.
  void planTour(ExploredVariant& variant) {
    for (const std::string& parm : variant.names->parms()) {
      const NameVocabulary& words = vocabulary_.of(parm);
      const std::string name = variant.names->anyOf(parm, random_);
      variant.tour.push_back({words.isStatus ? "reset_status" : "reset", name});
      for (const std::string& value : words.values) {
        if (canBeSaid(value)) variant.tour.push_back({setOf(words), name, value});
      }
    }
    std::ranges::shuffle(variant.tour, random_);
  }

  const std::string& anyParm(const ExploredVariant& variant) {
    const Texts& parms = variant.names->parms();
    return parms[below(random_, parms.size())];
  }

  // A statement of which something was not reached yet.
  std::optional<size_t> anyMissing() {
    if (result_.steps >= lookedAt_) {
      lookedAt_ = result_.steps + STEPS_BETWEEN_LOOKS;
      missing_.clear();
      const std::vector<StatementCoverage>& statements = task_.coverage->statements();
      for (size_t i = 0; i < statements.size(); ++i) {
        if (statements[i].isMissing()) missing_.push_back(i);
      }
    }
    if (missing_.empty()) return {};
    return missing_[below(random_, missing_.size())];
  }

  // Writes the definition of the statement, or something that this depends on.
  WalkStep stepTowards(const ExploredVariant& variant, size_t missing) {
    const StatementCoverage& statement = task_.coverage->statements()[missing];
    const std::string& own = task_.coverage->definitions()[statement.definition].name;
    Texts candidates = {own};
    const std::set<std::string>& names = vocabulary_.namesIn(missing);
    candidates.insert(candidates.end(), names.begin(), names.end());
    std::string chosen = candidates[below(random_, candidates.size())];
    const auto known = variant.known->parms.find(chosen);
    if (known == variant.known->parms.end()) {
      chosen = indexedBy(variant, chosen);
    } else if (below(random_, 4) == 0) {
      chosen = dependencyOf(variant, chosen);
    }
    if (!isParm(variant, chosen)) return stepOf(variant, anyParm(variant));
    if (chosen == own && statement.keyword == "default") return resetOf(variant, chosen);
    return stepOf(variant, chosen);
  }

  static bool isParm(const ExploredVariant& variant, const std::string& name) {
    return std::ranges::binary_search(variant.names->parms(), name);
  }

  // A parameter that has the index `name`, or that name.
  std::string indexedBy(const ExploredVariant& variant, const std::string& name) {
    Texts parms;
    for (const auto& [parm, indices] : variant.known->parms) {
      if (std::ranges::find(indices, name) != indices.end()) parms.push_back(parm);
    }
    return parms.empty() ? name : parms[below(random_, parms.size())];
  }

  std::string dependencyOf(const ExploredVariant& variant, const std::string& parm) {
    const std::set<std::string>& all = variant.dependencies->dependencies(parm);
    if (all.empty()) return parm;
    return *std::next(all.begin(), static_cast<std::ptrdiff_t>(below(random_, all.size())));
  }

  std::string_view setOf(const NameVocabulary& words) {
    return (below(random_, 4) == 0) != words.isStatus ? "set_status" : "set";
  }

  WalkStep resetOf(const ExploredVariant& variant, const std::string& parm) {
    const bool isForced = (below(random_, 4) == 0) != vocabulary_.of(parm).isStatus;
    return {isForced ? "reset_status" : "reset", variant.names->anyOf(parm, random_)};
  }

  WalkStep stepOf(const ExploredVariant& variant, const std::string& parm) {
    if (below(random_, 8) == 0) return resetOf(variant, parm);
    const NameVocabulary& words = vocabulary_.of(parm);
    return {setOf(words), variant.names->anyOf(parm, random_), valueFor(words)};
  }

  std::string valueFor(const NameVocabulary& words) {
    const size_t choice = below(random_, 16);
    if (choice == 0) return std::to_string(static_cast<int64_t>(below(random_, 4000)) - 1000);
    if (choice == 1) return anyOf({"", "0", "x", "-2147483648", "2147483647", "010", " 1"});
    if (words.isSelector && (choice < 4 || words.values.empty())) return anyStandard();
    if (words.values.empty()) return anyOf({"", "0", "1", "2", "a"});
    const std::string& value = words.values[below(random_, words.values.size())];
    return canBeSaid(value) ? value : std::string();
  }

  std::string anyOf(std::initializer_list<const char*> values) {
    return *(values.begin() + below(random_, values.size()));
  }

  std::string anyStandard() {
    const auto standards = vidStds();
    return standards.empty() ? std::string() : standards[below(random_, standards.size())].name;
  }

  const ExploreTask& task_;
  ExploreRandom random_;
  const Vocabulary vocabulary_;
  std::vector<ExploredVariant> variants_;
  ExploreResult result_;
  std::map<std::pair<Property, std::string>, FindKind> kinds_;  // by what fails of which parameter
  std::vector<size_t> missing_;  // statements of which something was missing at the last look
  uint64_t lookedAt_ = 0;        // the step of the next one
};

}  // namespace

ExploreResult explore(const ExploreTask& task) { return Explorer(task).explore(); }

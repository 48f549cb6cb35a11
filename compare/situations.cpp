#include "compare/situations.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "compare/sight.h"
#include "coverage/text_coverage.h"
#include "explore/device_names.h"
#include "explore/vocabulary.h"
#include "explore/walk.h"
#include "play/outcome.h"
#include "play/session_words.h"
#include "sw/parm/parm_name.h"

namespace {

using Texts = std::vector<std::string>;

// Of the values that the texts name for one parameter, so many are tried.
constexpr size_t MOST_VALUES = 40;
// Of them, so many are set to see what becomes of them.
constexpr size_t MOST_OUTCOMES = 6;
constexpr size_t RANDOM_STEPS = 20;  // of a walk at random
constexpr size_t MOST_SHRINKING = 30;
constexpr size_t MOST_INDEX_VALUES = 64;

// The way through the situations, the same for both devices.
struct Way {
  std::vector<WalkStep> steps;                  // from a device that was brought up
  std::vector<std::vector<std::string>> looks;  // the instances to look at after each step
};

std::string shownRange(const NamedRange& range) {
  return range.isOpen() ? "any value" : rangeText(range);
}

// A parameter of both texts.
struct Common {
  uint32_t line = 0;  // in the new text
  bool isWritable = false;
  bool isAnnounced = false;
  Texts instances = {};
  Texts values = {};  // that are set to see what becomes of them
};

class SituationComparison {
 public:
  SituationComparison(const ComparedText& old, const ComparedText& now,
                      const PlayConstants& constants, const SituationBudget& budget,
                      Differences& differences)
      : old_(old), now_(now), constants_(constants), budget_(budget), differences_(differences) {}

  void run() {
    if (!knowDevices()) return;
    // An index that has lost values in the text itself is told of already.
    for (const Difference& told : differences_) {
      const bool isIndex = now_.model.indexPlaces.contains(told.name);
      if (told.isIncompatible && isIndex) noted_.insert({told.name, CHANGE_ABSENT});
    }
    planWays();
    const std::vector<std::vector<Sight>> before = sightsOf(old_);
    const std::vector<std::vector<Sight>> after = sightsOf(now_);
    size_t place = 0;
    for (const Way& way : ways_) {
      for (size_t step = 0; step < way.looks.size(); ++step, ++place) {
        compareStep(way, step, before[place], after[place]);
      }
    }
  }

 private:
  // Returns whether both devices can be asked.
  bool knowDevices() {
    std::optional<KnownDevice> known;
    for (const ComparedText* const text : {&old_, &now_}) {
      const std::unique_ptr<Device> device = text->start(constants_);
      if (device == nullptr) return false;
      const std::optional<KnownDevice> one = device->known();
      if (!one) return false;
      if (!known) known = one;
      for (const auto& [parm, indices] : one->parms) {
        for (const std::string& name : device->call({"get_deps", 0, {parm}}).texts) {
          followers_[std::string(baseName(name))].insert(parm);
        }
      }
    }
    for (const DocParameter& parameter : now_.model.parameters) learn(parameter, *known);
    return true;
  }

  // A parameter of both texts, with its instances in the old one.
  void learn(const DocParameter& now, const KnownDevice& known) {
    const auto place = old_.model.places.find(now.name);
    const auto indices = known.parms.find(now.name);
    if (place == old_.model.places.end() || indices == known.parms.end()) return;
    const DocParameter& old = old_.model.parameters[place->second];
    if (old.indices != now.indices) return;
    Common& common = common_[now.name];
    common.line = now.line;
    common.isWritable = now.access == "rw" || now.access == "wo";
    common.isAnnounced = now.access != "rostrict" && old.access != "rostrict";
    common.instances = {now.name};
    for (const std::string& index : indices->second) {
      common.instances = crossed(common.instances, fewOf(known.indices.at(index)));
    }
  }

  // All values of an index, or of very many those at the ends.
  static Texts fewOf(const Texts& values) {
    if (values.size() <= MOST_INDEX_VALUES) return values;
    return {values.front(), values[1], values[values.size() - 2], values.back()};
  }

  // First all instances of a device that was brought up; then what follows each parameter.
  void planWays() {
    Way up;
    up.looks.emplace_back();
    for (const auto& [parm, common] : common_) addLook(up.looks.back(), common.instances);
    ways_.push_back(std::move(up));
    const TextCoverage oldCoverage(old_.text);
    const TextCoverage nowCoverage(now_.text);
    const Vocabulary oldWords(oldCoverage);
    const Vocabulary nowWords(nowCoverage);
    std::vector<WalkStep> all;
    for (auto& [parm, common] : common_) {
      const Texts values = valuesFor(parm, oldWords, nowWords, MOST_VALUES);
      if (common.isWritable) common.values = valuesFor(parm, oldWords, nowWords, MOST_OUTCOMES);
      const Texts& instances = common.instances;
      if (instances.empty() || !followers_.contains(parm)) continue;
      for (const std::string& name : {instances.front(), instances.back()}) {
        std::vector<WalkStep> steps;
        const std::string_view method = common.isWritable ? "set" : "set_status";
        for (const std::string& value : values) steps.push_back({method, name, value});
        all.insert(all.end(), steps.begin(), steps.end());
        addWay(steps);
        if (instances.size() == 1) break;
      }
    }
    planRandomWays(all);
  }

  void planRandomWays(const std::vector<WalkStep>& all) {
    if (all.empty()) return;
    ExploreRandom random(1);
    const size_t most = std::min(budget_.steps, all.size() * 4);
    for (size_t done = 0; done < most && !isSpent(); done += RANDOM_STEPS) {
      std::vector<WalkStep> steps;
      for (size_t i = 0; i < RANDOM_STEPS; ++i) steps.push_back(all[below(random, all.size())]);
      addWay(steps);
    }
  }

  [[nodiscard]] bool isSpent() const {
    return steps_ >= budget_.steps || observations_ >= budget_.observations;
  }

  static Texts valuesFor(const std::string& parm, const Vocabulary& old, const Vocabulary& now,
                         size_t most) {
    std::set<std::string> values;
    for (const Vocabulary* const words : {&old, &now}) {
      const Texts& some = words->of(parm).values;
      values.insert(some.begin(), some.end());
    }
    // Evenly from all of them where they are too many.
    Texts chosen;
    size_t number = 0;
    const size_t every = (values.size() + most - 1) / most;
    for (const std::string& value : values) {
      if (number++ % std::max<size_t>(every, 1) == 0) chosen.push_back(value);
    }
    return chosen;
  }

  void addWay(const std::vector<WalkStep>& steps) {
    if (isSpent()) return;
    Way way;
    for (const WalkStep& step : steps) {
      ++steps_;
      const std::string parm(baseName(step.name));
      way.looks.emplace_back();
      for (const std::string& follower : followers_[parm]) {
        const auto found = common_.find(follower);
        if (found != common_.end()) addLook(way.looks.back(), found->second.instances);
      }
      way.steps.push_back(step);
    }
    ways_.push_back(std::move(way));
  }

  void addLook(Texts& look, const Texts& instances) {
    observations_ += instances.size();
    look.insert(look.end(), instances.begin(), instances.end());
  }

  // What is known of the parameter of an instance that is looked at.
  [[nodiscard]] const Common& commonOf(const std::string& instance) const {
    return common_.at(std::string(baseName(instance)));
  }

  // One list for each step of each way.
  std::vector<std::vector<Sight>> sightsOf(const ComparedText& text) {
    std::vector<std::vector<Sight>> sights;
    for (const Way& way : ways_) {
      LedDevice device(text.start, constants_);
      for (size_t step = 0; step < way.looks.size(); ++step) {
        sights.emplace_back();
        if (!device.isThere()) continue;
        if (step < way.steps.size()) device.walk(way.steps[step]);
        if (step < way.steps.size()) {
          Sight led;
          led.fallback = device.valueOf(way.steps[step].name);
          sights.back().push_back(std::move(led));
        }
        for (const std::string& name : way.looks[step]) {
          sights.back().push_back(device.look(name, commonOf(name).values));
        }
      }
    }
    return sights;
  }

  // The first sight behind a step is of what it has set. Where that differs, the devices are no
  // longer led alike.
  void compareStep(const Way& way, size_t step, const std::vector<Sight>& before,
                   const std::vector<Sight>& after) {
    const size_t first = step < way.steps.size() ? 1 : 0;
    if (before.size() != first + way.looks[step].size() || after.size() != before.size()) return;
    if (first == 1 && before[0].fallback != after[0].fallback) return;
    for (size_t i = first; i < before.size(); ++i) {
      note(way, step, way.looks[step][i - first], before[i], after[i]);
    }
  }

  void note(const Way& way, size_t step, const std::string& name, const Sight& before,
            const Sight& after) {
    const std::string parm(baseName(name));
    const Common& common = commonOf(name);
    for (const ChangeKind kind : changesBetween(before, after, common.values)) {
      if (kind == CHANGE_DEFAULT && !common.isAnnounced) continue;
      if (!noted_.insert({subject(parm, kind, after), kind}).second) continue;
      std::vector<WalkStep> steps(
          way.steps.begin(),
          way.steps.begin() + static_cast<std::ptrdiff_t>(std::min(step + 1, way.steps.size())));
      steps = shortened(std::move(steps), name, kind);
      add(steps, name, kind);
    }
  }

  // What a change is about: what does not exist by an index is told once for the index.
  [[nodiscard]] std::string subject(const std::string& parm, ChangeKind kind,
                                    const Sight& after) const {
    const bool isOfIndex =
        kind == CHANGE_ABSENT && now_.model.indexPlaces.contains(after.refusingIndex);
    return isOfIndex ? after.refusingIndex : parm;
  }

  // Where a device cannot be led there, nothing exists.
  Sight sightAfter(const ComparedText& text, const std::vector<WalkStep>& steps,
                   const std::string& name, std::string& led) {
    LedDevice device(text.start, constants_);
    if (!device.isThere()) return {};
    for (const WalkStep& step : steps) device.walk(step);
    led = steps.empty() ? std::string() : device.valueOf(steps.back().name);
    return device.look(name, commonOf(name).values);
  }

  bool shows(const std::vector<WalkStep>& steps, const std::string& name, ChangeKind kind) {
    std::string oldLed;
    std::string nowLed;
    const Sight old = sightAfter(old_, steps, name, oldLed);
    const Sight now = sightAfter(now_, steps, name, nowLed);
    const std::vector<ChangeKind> kinds = changesBetween(old, now, commonOf(name).values);
    return oldLed == nowLed && std::ranges::find(kinds, kind) != kinds.end();
  }

  // The last step alone, or else without those that do not matter.
  std::vector<WalkStep> shortened(std::vector<WalkStep> steps, const std::string& name,
                                  ChangeKind kind) {
    if (steps.size() < 2) return steps;
    if (shows({steps.back()}, name, kind)) return {steps.back()};
    size_t left = MOST_SHRINKING;
    for (size_t i = 0; i + 1 < steps.size() && left > 0; --left) {
      std::vector<WalkStep> fewer = steps;
      fewer.erase(fewer.begin() + static_cast<std::ptrdiff_t>(i));
      if (shows(fewer, name, kind)) {
        steps = std::move(fewer);
      } else {
        ++i;
      }
    }
    return steps;
  }

  void add(const std::vector<WalkStep>& steps, const std::string& name, ChangeKind kind) {
    const Common& common = commonOf(name);
    std::string led;
    const Sight before = sightAfter(old_, steps, name, led);
    LedDevice device(now_.start, constants_);
    for (const WalkStep& step : steps) device.walk(step);
    const Sight after = device.look(name, common.values);
    const std::string reason = device.reasonOf(name, kind);
    if (const std::string index = subject({}, kind, after); !index.empty()) {
      differences_.push_back({true, DIFFERENCE_IN_NEW, lineOfIndex(index), index,
                              " no longer has the value of " + spelledWord(name) + shownWay(steps),
                              reason});
      return;
    }
    const bool isIncompatible =
        kind != CHANGE_PRESENT && kind != CHANGE_WIDER && kind != CHANGE_DEFAULT;
    differences_.push_back({isIncompatible, DIFFERENCE_IN_NEW, common.line, name,
                            sentence(kind, before, after, common.values) + shownWay(steps),
                            reason});
  }

  [[nodiscard]] uint32_t lineOfIndex(const std::string& name) const {
    return now_.model.indices[now_.model.indexPlaces.at(name)].line;
  }

  static std::string rangesText(const char* what, const Sight& before, const Sight& after) {
    return std::string(" has ") + what + " range " + shownRange(after.range) + ", and had " +
           shownRange(before.range);
  }

  static std::string sentence(ChangeKind kind, const Sight& before, const Sight& after,
                              const Texts& values) {
    switch (kind) {
      case CHANGE_ABSENT:
        return " no longer exists";
      case CHANGE_PRESENT:
        return " exists, and did not";
      case CHANGE_BROKEN:
        return " has a range that cannot be worked out, and had " + shownRange(before.range);
      case CHANGE_OTHER:
        return rangesText("another", before, after);
      case CHANGE_NARROWER:
        return rangesText("the narrower", before, after);
      case CHANGE_WIDER:
        return rangesText("the wider", before, after);
      case CHANGE_LOCKED:
        return " can no longer be set";
      case CHANGE_OUTCOME: {
        const size_t i = firstOtherOutcome(before, after, values);
        if (i >= values.size()) return " takes other values";
        const std::string& now = *after.outcomes[i];
        return ": the value " + spelledWord(values[i]) +
               (now.empty() ? " is refused" : " becomes " + spelledWord(now)) + ", and became " +
               spelledWord(*before.outcomes[i]);
      }
      case CHANGE_DEFAULT:
        return " has the default " + spelledWord(after.fallback) + ", and had " +
               spelledWord(before.fallback);
    }
    return {};
  }

  static std::string shownWay(const std::vector<WalkStep>& steps) {
    std::string text;
    const char* const first = steps.size() > 1 ? ", after " : ", with ";
    for (const WalkStep& step : steps) {
      text += (text.empty() ? first : " ") + spelledChange(step.name + "=" + step.value);
    }
    return text;
  }

  const ComparedText& old_;
  const ComparedText& now_;
  const PlayConstants& constants_;
  const SituationBudget& budget_;
  Differences& differences_;
  std::map<std::string, Common> common_;  // parameters of both texts
  std::map<std::string, std::set<std::string>> followers_;
  std::vector<Way> ways_;
  size_t steps_ = 0;
  size_t observations_ = 0;
  std::set<std::pair<std::string, ChangeKind>> noted_;
};

}  // namespace

void compareSituations(const ComparedText& old, const ComparedText& now,
                       const PlayConstants& constants, const SituationBudget& budget,
                       Differences& differences) {
  SituationComparison(old, now, constants, budget, differences).run();
}

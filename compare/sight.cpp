#include "compare/sight.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "base/number.h"
#include "play/recipe_client.h"
#include "play/session_words.h"

namespace {

using Texts = std::vector<std::string>;

// What an explanation begins with where an index has no such value.
constexpr std::string_view BY_INDEX = "does not exist, by the index ";

bool isWithin(const Span& span, const Spans& spans) {
  return std::ranges::any_of(spans, [&](const Span& other) {
    return other.first <= span.first && span.second <= other.second;
  });
}

// Spans of ranges are apart from each other, and so one lies within one.
bool isWithin(const NamedRange& range, const NamedRange& other) {
  if (other.isOpen()) return true;
  if (range.isOpen()) return false;
  return std::ranges::all_of(range.spans,
                             [&](const Span& span) { return isWithin(span, other.spans); }) &&
         std::ranges::all_of(range.texts, [&](const std::string& text) {
           return std::ranges::find(other.texts, text) != other.texts.end();
         });
}

bool holds(const NamedRange& range, const std::string& value) {
  const std::optional<int32_t> number = wholeNumber(value);
  if (range.isOpen() || value.empty()) return true;
  return std::ranges::find(range.texts, value) != range.texts.end() ||
         (number && isWithin(Span{*number, *number}, range.spans));
}

// What a sentence about the kind of change says.
std::vector<std::string_view> wordsOf(ChangeKind kind) {
  switch (kind) {
    case CHANGE_ABSENT:
    case CHANGE_PRESENT:
      return {"exist"};
    case CHANGE_BROKEN:
      return {"has no range"};
    case CHANGE_OTHER:
    case CHANGE_NARROWER:
    case CHANGE_WIDER:
      return {"has the range"};
    case CHANGE_OUTCOME:
      return {};
    case CHANGE_LOCKED:
      return {"is read-only", "is not available"};
    case CHANGE_DEFAULT:
      return {"has the default"};
  }
  return {};
}

}  // namespace

size_t firstOtherOutcome(const Sight& old, const Sight& now, const Texts& values) {
  const size_t count = std::min({values.size(), old.outcomes.size(), now.outcomes.size()});
  for (size_t i = 0; i < count; ++i) {
    const bool areKnown = old.outcomes[i] && now.outcomes[i];
    if (areKnown && !old.outcomes[i]->empty() && *old.outcomes[i] != *now.outcomes[i]) return i;
  }
  return values.size();
}

std::vector<ChangeKind> changesBetween(const Sight& old, const Sight& now, const Texts& values) {
  if (!old.exists && !now.exists) return {};
  if (old.exists != now.exists) return {old.exists ? CHANGE_ABSENT : CHANGE_PRESENT};
  if (!old.hasRange || !now.hasRange) {
    return old.hasRange ? std::vector{CHANGE_BROKEN} : std::vector<ChangeKind>();
  }
  std::vector<ChangeKind> changes;
  const bool isLost = !isWithin(old.range, now.range);
  const bool isGained = !isWithin(now.range, old.range);
  if (isLost) {
    changes.push_back(isGained ? CHANGE_OTHER : CHANGE_NARROWER);
  } else if (isGained) {
    changes.push_back(CHANGE_WIDER);
  }
  const auto isTaken = [](const auto& outcome) { return outcome && !outcome->empty(); };
  const auto isRefused = [](const auto& outcome) { return outcome && outcome->empty(); };
  if (std::ranges::any_of(old.outcomes, isTaken) && std::ranges::none_of(now.outcomes, isTaken) &&
      std::ranges::any_of(now.outcomes, isRefused)) {
    changes.push_back(CHANGE_LOCKED);
  } else if (!isLost && firstOtherOutcome(old, now, values) < values.size()) {
    changes.push_back(CHANGE_OUTCOME);
  }
  // Where a range cuts one of them, or nothing can be set, that is what has changed.
  const bool areAllowed = holds(old.range, now.fallback) && holds(now.range, old.fallback);
  const bool isNew = old.fallback != now.fallback && areAllowed && !now.fallback.empty();
  if (isNew && changes.empty()) changes.push_back(CHANGE_DEFAULT);
  return changes;
}

LedDevice::LedDevice(const StartDevice& start, const PlayConstants& constants)
    : device_(start(constants)) {
  if (device_ == nullptr) return;
  std::optional<KnownDevice> known = device_->known();
  if (known) static_cast<void>(bringUpDevice(*device_, *std::move(known)));
}

void LedDevice::walk(const WalkStep& step) {
  const std::string method = "single_" + std::string(step.method);
  static_cast<void>(device_->call({method, 0, {step.name}, {step.value}}));
}

Sight LedDevice::look(const std::string& name, const Texts& values) {
  const uint32_t id = device_->call({"start"}).transaction;
  Sight sight;
  Answer range = device_->call({"get_range", id, {name}});
  sight.hasRange = range.error.empty();
  if (!sight.hasRange) {
    lookAtExistence(id, name, sight);
  } else {
    sight.exists = true;
    sight.range = std::move(range.ranges.front());
    static_cast<void>(device_->call({"reset_status", id, {name}}));
    sight.fallback = valueAfter(name, device_->call({"try", id}));
  }
  static_cast<void>(device_->call({"end", id}));
  if (sight.exists) {
    for (const std::string& value : values) sight.outcomes.push_back(outcomeOf(name, value, sight));
  }
  return sight;
}

// What has no range may exist all the same.
void LedDevice::lookAtExistence(uint32_t id, const std::string& name, Sight& sight) {
  const Answer answer = device_->call({"why", id, {name}});
  sight.exists = answer.isValid;
  for (const std::string& line : answer.notes) {
    if (!line.starts_with(BY_INDEX)) continue;
    sight.refusingIndex = line.substr(BY_INDEX.size());
    sight.refusingIndex.resize(
        std::min(sight.refusingIndex.find(": "), sight.refusingIndex.size()));
  }
}

std::optional<std::string> LedDevice::outcomeOf(const std::string& name, const std::string& value,
                                                const Sight& sight) {
  const std::string held = valueOf(name);
  if (value == held) return {};
  const uint32_t id = device_->call({"start"}).transaction;
  std::optional<std::string> outcome = "";
  if (device_->call({"set", id, {name}, {value}}).error.empty()) {
    outcome = valueAfter(name, device_->call({"try", id}));
    // What is allowed and does not come is passed over; anything else may be cut to what is held.
    if (*outcome == held) {
      const bool isAllowed = sight.hasRange && holds(sight.range, value);
      outcome = isAllowed ? std::optional<std::string>("") : std::nullopt;
    }
  }
  static_cast<void>(device_->call({"end", id}));
  return outcome;
}

std::string LedDevice::valueOf(const std::string& name) {
  const Answer held = device_->call({"single_get", 0, {name}});
  return held.texts.empty() ? std::string() : held.texts.front();
}

std::string LedDevice::valueAfter(const std::string& name, const Answer& tried) {
  for (const std::string& change : tried.changes) {
    if (change.starts_with(name + "=")) return change.substr(name.size() + 1);
  }
  return valueOf(name);
}

std::string LedDevice::reasonOf(const std::string& name, ChangeKind kind) {
  const uint32_t id = device_->call({"start"}).transaction;
  const Texts lines = device_->call({"why", id, {name}}).notes;
  static_cast<void>(device_->call({"end", id}));
  for (const std::string& line : lines) {
    const bool hasStatement = line.find("line ") != std::string::npos;
    const bool isAboutIt = std::ranges::any_of(wordsOf(kind), [&](std::string_view words) {
      return line.find(words) != std::string::npos;
    });
    if (hasStatement && isAboutIt) return spelledWord(name) + " " + line;
  }
  return {};
}

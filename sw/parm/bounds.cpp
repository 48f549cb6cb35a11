#include "sw/parm/bounds.h"

#include <algorithm>
#include <cassert>
#include <cstdint>
#include <functional>
#include <iterator>
#include <optional>

#include "base/number.h"

namespace {

// Whether `upper` begins behind `lower` with at least one number left out between them. In 64 bits,
// where the difference of any two ends fits.
bool isApart(const Span& lower, const Span& upper) {
  return static_cast<int64_t>(upper.first) - lower.second >= 2;
}

// Adds one item as it is in the situation. Returns 0 or a code of BoundsExpression::evaluate().
int addPresent(BoundsParm& out, const BoundsExpression::Item& item,
               const SituationView& situation) {
  if (item.lower.empty() || (item.upper && item.upper->empty())) return -1;
  const Value lower = item.lower.evaluate(situation);
  if (!lower.valid()) return -2;
  if (!item.upper) {
    // A quoted empty text adds no entry; any other empty text counts as 0.
    static_cast<void>(item.quoted ? out.strings().addText(lower.asText())
                                  : out.addValue(lower.asText()));
    return 0;
  }
  if (!lower.isNumber()) return -3;
  const Value upper = item.upper->evaluate(situation);
  if (!upper.isNumber()) return -4;
  return out.integers().addSpan(lower.number, upper.number) == 0 ? 0 : -5;
}

bool usesVariables(const BoundsExpression::Item& item) {
  return item.lower.usesVariables() || (item.upper && item.upper->usesVariables());
}

}  // namespace

int rangeCheck(overflow_t mode, int value, int min, int max) {
  assert(max >= min);
  if (mode != OVERFLOW_WRAP) return std::clamp(value, min, max);
  // In 64 bits: the whole range of numbers is a span of 2^32.
  const int64_t wide = value;
  const int64_t span = static_cast<int64_t>(max) - min + 1;
  if (value > max) return static_cast<int>(wide - span * ((wide - min) / span));
  if (value < min) return static_cast<int>(wide + span * ((max - wide) / span));
  return value;
}

int limitToSpans(int value, bool roundUp, overflow_t mode, const Spans& spans) {
  if (spans.empty()) return value;
  value = rangeCheck(mode, value, spans.front().first, spans.back().second);
  const auto reaching = std::lower_bound(spans.begin(), spans.end(), value,
                                         [](const Span& s, int v) { return s.second < v; });
  if (reaching->first <= value) return value;
  return roundUp ? reaching->first : std::prev(reaching)->second;
}

bool areOrdered(const Spans& spans) {
  const auto isUpsideDown = [](const Span& s) { return s.first > s.second; };
  if (std::any_of(spans.begin(), spans.end(), isUpsideDown)) return false;
  return std::adjacent_find(spans.begin(), spans.end(), std::not_fn(isApart)) == spans.end();
}

bool BoundsString::check(std::string& value, bool fix) const {
  if (texts().empty() || texts().contains(value)) return true;
  if (fix) value = correction();
  return false;
}

int BoundsString::addText(const std::string& text) {
  if (text.empty()) return 1;
  Entries& entries = entries_.change();
  if (entries.correction.empty()) entries.correction = text;
  entries.allowed.insert(text);
  return 0;
}

void BoundsString::clear() {
  if (count() > 0) entries_.change().allowed.clear();
}

bool BoundsInteger::check(std::string& value, bool fix) const {
  return check(value, wholeNumber(value), fix);
}

bool BoundsInteger::check(std::string& value, std::optional<int32_t> number, bool fix) const {
  const int limited = limitToSpans(number.value_or(0), true, overflow_, spans());
  if (number == limited) return true;
  if (fix) value = numberText(limited);
  return false;
}

int BoundsInteger::addSpan(int low, int high) {
  if (high < low) return 1;
  const Span added{low, high};
  if (!spans_.empty() && !isApart(spans_.back(), added)) inOrder_ = false;
  spans_.push_back(added);
  return 0;
}

// All spans that were added since the last call are sorted at once: so n spans cost the same in
// whichever order a text lists them.
const Spans& BoundsInteger::spans() const {
  if (inOrder_) return spans_;
  std::sort(spans_.begin(), spans_.end());
  auto last = spans_.begin();
  for (auto next = std::next(last); next != spans_.end(); ++next) {
    if (isApart(*last, *next)) {
      *++last = *next;
    } else {
      last->second = std::max(last->second, next->second);
    }
  }
  spans_.erase(std::next(last), spans_.end());
  inOrder_ = true;
  return spans_;
}

void BoundsInteger::clear() {
  spans_.clear();
  inOrder_ = true;
}

bool BoundsParm::check(std::string& value, bool fix) const {
  if (integers_.count() == 0) return strings_.check(value, fix);
  const bool hasTexts = strings_.count() > 0;
  const std::optional<int32_t> number = wholeNumber(value);
  if (value.empty() && !hasTexts) {
    // The empty value is refused, but it is corrected as the number 0 would be.
    integers_.check(value, number, fix);
    return false;
  }
  const bool isNumber = !value.empty() && number;
  return isNumber || !hasTexts ? integers_.check(value, number, fix) : strings_.check(value, fix);
}

bool BoundsParm::isConsistent() const {
  return strings_.isConsistent() && integers_.isConsistent();
}

void BoundsParm::clear() {
  strings_.clear();
  integers_.clear();
}

int BoundsParm::addValue(const std::string& text) {
  const std::optional<int32_t> number = wholeNumber(text);
  return number ? integers_.addSpan(*number, *number) : strings_.addText(text);
}

bool BoundsExpression::check(std::string& value, bool fix) const {
  BoundsParm present;
  return evaluate(present, SituationView()) != 0 || present.check(value, fix);
}

bool BoundsExpression::isConsistent() const {
  return std::all_of(items_.begin(), items_.end(), [](const Item& item) {
    BoundsParm unused;
    return usesVariables(item) || addPresent(unused, item, SituationView()) == 0;
  });
}

uint64_t BoundsExpression::work() const {
  uint64_t units = 0;
  for (const Item& item : items_) {
    units += WORK_PER_ITEM + item.lower.work() + (item.upper ? item.upper->work() : 0);
  }
  return units;
}

int BoundsExpression::evaluate(BoundsParm& out, std::span<const Item> items,
                               const SituationView& situation) {
  for (const Item& item : items) {
    if (const int failed = addPresent(out, item, situation); failed != 0) return failed;
  }
  return 0;
}

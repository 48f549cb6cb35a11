#include "database/index_query.h"

#include <algorithm>
#include <cstdint>
#include <optional>

#include "base/number.h"
#include "base/work.h"
#include "database/gather.h"
#include "sw/parm/present_bounds.h"

namespace {

// The numbers at which the verdict on an index's numbers may change: from each of them up to the
// next, all are accepted or none is.
class TurningPoints {
 public:
  TurningPoints(const IndexDef& index, const Situation& situation) {
    addSpans(index.baseBounds());
    const PresentBounds present(index.conditionalBounds(), situation, UNUSABLE_ACCEPTS);
    for (const BoundsParm* bounds : present.applying()) {
      addSpans(*bounds);
      for (const std::string& text : bounds->strings().texts()) addText(text);
    }
    for (const auto& [source, target] : index.translations()) addText(source);
    std::sort(points_.begin(), points_.end());
  }

  /// The last number of the run that begins at `number` and reaches no further than `end`.
  [[nodiscard]] int64_t runEnd(int64_t number, int64_t end) const {
    const auto next = std::upper_bound(points_.begin(), points_.end(), number);
    return next == points_.end() ? end : std::min(end, *next - 1);
  }

 private:
  void add(int64_t low, int64_t high) {
    points_.push_back(low);
    points_.push_back(high + 1);
  }
  void addSpans(const BoundsParm& bounds) {
    for (const Span& span : bounds.integers().spans()) add(span.first, span.second);
  }
  // A text that is a number means that one number.
  void addText(const std::string& text) {
    if (const std::optional<int32_t> number = wholeNumber(text)) add(*number, *number);
  }

  std::vector<int64_t> points_;  // ascending
};

// Adds a run that begins behind all that were accepted.
void appendRun(Spans& accepted, int64_t first, int64_t last) {
  const auto low = static_cast<int32_t>(first);
  const auto high = static_cast<int32_t>(last);
  if (!accepted.empty() && int64_t{accepted.back().second} + 1 == first) {
    accepted.back().second = high;
  } else {
    accepted.emplace_back(low, high);
  }
}

size_t bytesOf(const Spans& spans) { return spans.size() * sizeof(Span); }

// Of each run one number is asked for all, so the spans may be as long as they like. Ends with the
// first span that is too much.
Spans acceptedNumbers(const IndexDef& index, const Situation& situation) {
  const TurningPoints points(index, situation);
  BoundsCheck check(index, situation);
  Spans accepted;
  for (const Span& span : index.baseBounds().integers().spans()) {
    for (int64_t number = span.first; number <= span.second;) {
      Work::add(WORK_PER_ITEM + index.askingWork());
      if (bytesOf(accepted) > MAX_QUERY_BYTES) return accepted;
      const int64_t last = points.runEnd(number, span.second);
      if (index.checkValue(numberText(static_cast<int32_t>(number)), check)) {
        appendRun(accepted, number, last);
      }
      number = last + 1;
    }
  }
  return accepted;
}

}  // namespace

std::vector<std::string> validIndices(Database& database, const StagedValues& staged,
                                      const ParmDef& parm) {
  std::vector<std::string> names;
  for (const IndexDef* index : parm.indices()) {
    Work::spendOn(index->name());
    Work::add(index->situationWork());
    if (index->isAvailable(gather(*database.findIndexEntry(index->name()), staged))) {
      names.push_back(index->name());
    }
  }
  return names;
}

int acceptedValues(const IndexDef& index, const Situation& situation,
                   std::vector<std::string>& texts, Spans& spans) {
  spans = acceptedNumbers(index, situation);
  size_t bytes = bytesOf(spans);
  BoundsCheck check(index, situation);
  for (const std::string& text : index.baseBounds().strings().texts()) {
    Work::add(WORK_PER_ITEM + index.askingWork() + WORK_PER_VALUE_BYTE * text.size());
    if (index.checkValue(text, check)) {
      texts.push_back(text);
      bytes += text.size();
    }
    if (bytes > MAX_QUERY_BYTES) return INDEX_RANGE_TOO_LARGE;
  }
  return bytes > MAX_QUERY_BYTES ? INDEX_RANGE_TOO_LARGE : INDEX_RANGE_FOUND;
}

int indexRange(Database& database, const StagedValues& staged, const std::string& name,
               std::vector<std::string>& texts, Spans& spans) {
  const IndexEntry* entry = database.findIndexEntry(name);
  if (entry == nullptr) return INDEX_RANGE_NO_INDEX;
  const IndexDef& index = *entry->index;
  Work::spendOn(index.name());
  // What applies is worked out to find the ends of runs, for the numbers and for the texts.
  Work::add(3 * index.situationWork());
  const Situation situation = gather(*entry, staged);
  if (!index.isAvailable(situation)) return INDEX_RANGE_NOT_AVAILABLE;
  return acceptedValues(index, situation, texts, spans);
}

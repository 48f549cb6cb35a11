#include "sw/parm/statement_lines.h"

#include <cstddef>

void StatementLines::appendTo(std::vector<uint32_t>& list) const {
  list.insert(list.end(), {definition, fallback, base});
  for (const List* own : {&validity, &ranges, &translations, &readOnly, &defaults, &documented}) {
    list.insert(list.end(), own->begin(), own->end());
  }
}

LinesOfDefinition::LinesOfDefinition(const IndexDef& index, const ParmDef* parm,
                                     std::span<const uint32_t> joined)
    : definition(joined[0]), fallback(joined[1]), base(joined[2]) {
  size_t next = 3;
  const auto take = [&](size_t count) {
    next += count;
    return joined.subspan(next - count, count);
  };
  validity = take(index.validityConditions().size());
  ranges = take(index.conditionalBounds().size());
  translations = take(index.translations().size());
  if (parm == nullptr) return;
  readOnly = take(parm->readOnlyConditions().size());
  defaults = take(parm->defaults().size());
  documented = take(parm->documentedRanges().size());
}

LinesOfDefinition::LinesOfDefinition(const IndexDef& index, std::span<const uint32_t> joined)
    : LinesOfDefinition(index, nullptr, joined) {}

LinesOfDefinition::LinesOfDefinition(const ParmDef& parm, std::span<const uint32_t> joined)
    : LinesOfDefinition(parm, &parm, joined) {}

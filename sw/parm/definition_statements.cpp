#include "sw/parm/definition_statements.h"

#include "sw/parm/statement_text.h"

namespace {

using Statements = std::vector<DefinitionStatement>;

void addControls(Statements& out, std::string_view keyword, std::span<const Program> conditions,
                 std::span<const uint32_t> lines, const Variables& variables) {
  for (size_t i = 0; i < conditions.size(); ++i) {
    out.push_back({lines[i], controlText(keyword, conditions[i], variables)});
  }
}

void addRanges(Statements& out, std::string_view keyword, std::span<const ConditionalBounds> ranges,
               std::span<const uint32_t> lines, const Variables& variables) {
  for (size_t i = 0; i < ranges.size(); ++i) {
    out.push_back({lines[i], rangeText(keyword, ranges[i], variables)});
  }
}

}  // namespace

Statements definitionStatements(const IndexDef& index, const LinesOfDefinition& lines) {
  const Variables& variables = index.variables();
  Statements out;
  addControls(out, "ctrlValid", index.validityConditions(), lines.validity, variables);
  addRanges(out, "rangeValid", index.conditionalBounds(), lines.ranges, variables);
  if (index.baseBounds().count() > 0) out.push_back({lines.base, baseText(index.baseBounds())});
  size_t place = 0;
  for (const auto& [source, target] : index.translations()) {
    out.push_back({lines.translations[place++], translationText(source, target)});
  }
  return out;
}

Statements definitionStatements(const ParmDef& parm, const LinesOfDefinition& lines) {
  const Variables& variables = parm.variables();
  Statements out = definitionStatements(static_cast<const IndexDef&>(parm), lines);
  addRanges(out, "rangeDoc", parm.documentedRanges(), lines.documented, variables);
  const bool hasReadOnlyWord = parm.access() == WORD_RO || parm.access() == WORD_ROSTRICT;
  const size_t ofWord = hasReadOnlyWord ? 1 : 0;
  if (parm.readOnlyConditions().size() > ofWord) {
    addControls(out, "ctrlRO", parm.readOnlyConditions().subspan(ofWord),
                lines.readOnly.subspan(ofWord), variables);
  }
  for (size_t i = 0; i < parm.defaults().size(); ++i) {
    const auto& [condition, value] = parm.defaults()[i];
    out.push_back({lines.defaults[i], defaultText(condition, value, variables)});
  }
  if (lines.fallback != 0) out.push_back({lines.fallback, fallbackText(parm.fallbackDefault())});
  return out;
}

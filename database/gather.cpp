#include "database/gather.h"

#include <algorithm>

#include "srcs/vid_std_figures.h"

namespace {

// Binds what each source holds; `readWith` tells with which index values a parameter is read.
template <typename ReadWith>
Situation gatherFrom(const VariableSources& sources, size_t slots, const StagedValues& staged,
                     const ReadWith& readWith) {
  Situation situation(slots);
  for (uint32_t slot = 0; slot < sources.size(); ++slot) {
    const VariableSource& source = sources[slot];
    if (source.parm != nullptr) {
      situation.bind(slot, valueOf(source, readWith(source), staged));
    } else if (source.constant != nullptr) {
      situation.bind(slot, valueOf(source, {}, staged));
    }
  }
  return situation;
}

}  // namespace

IndexTuple sharedIndices(const ParmDef& evaluated, const IndexTuple& indices,
                         const ParmDef& referenced) {
  const std::vector<const IndexDef*>& own = evaluated.indices();
  if (referenced.indices() == own) return own.empty() ? IndexTuple{} : indices;
  IndexTuple shared;
  for (const IndexDef* index : referenced.indices()) {
    const auto place = static_cast<size_t>(std::find(own.begin(), own.end(), index) - own.begin());
    if (place < std::min(own.size(), indices.size())) shared.push_back(indices[place]);
  }
  return shared;
}

IndexTuple indicesOf(const VariableSource& source, const ParmDef& evaluated,
                     const IndexTuple& indices) {
  if (source.qualified || indices.empty()) return source.indices;
  return sharedIndices(evaluated, indices, source.parm->parm);
}

Operand operandIn(const VariableSource& source, const Operand& value) {
  if (source.figure == nullptr) return value;
  const std::optional<uint32_t> number = vidStdFigure(value.text, *source.figure);
  return number ? Operand{OPERAND_NUMBER, static_cast<int32_t>(*number), {}} : Operand{};
}

Operand valueOf(const VariableSource& source, const IndexTuple& indices,
                const StagedValues& staged) {
  if (source.parm != nullptr) return operandIn(source, staged.value(*source.parm, indices));
  return source.constant == nullptr ? Operand{} : operandIn(source, source.constant->operand());
}

Situation gather(const ParmEntry& entry, const IndexTuple& indices, const StagedValues& staged) {
  return gatherFrom(
      entry.sources, entry.parm.variables().size(), staged,
      [&](const VariableSource& source) { return indicesOf(source, entry.parm, indices); });
}

Situation gatherBound(const ParmEntry& entry, const IndexTuple& indices,
                      const StagedValues& staged) {
  Situation situation = gather(entry, indices, staged);
  entry.parm.bindIndices(situation, indices);
  return situation;
}

Situation gather(const IndexEntry& entry, const StagedValues& staged) {
  return gatherFrom(entry.sources, entry.index->variables().size(), staged,
                    [](const VariableSource& source) { return source.indices; });
}

Situation gather(const IndexEntry& entry, const ParmEntry& evaluated, const IndexTuple& indices,
                 const Situation& own, const StagedValues& staged) {
  Situation situation = gatherFrom(
      entry.sources, entry.index->variables().size(), staged,
      [&](const VariableSource& source) { return indicesOf(source, evaluated.parm, indices); });
  for (uint32_t slot = 0; slot < entry.sources.size(); ++slot) {
    const VariableSource& source = entry.sources[slot];
    if (source.parm != nullptr || source.figure != nullptr) continue;
    // An index, maybe one of the parameter's.
    const std::optional<uint32_t> bound = evaluated.parm.variables().find(source.name);
    if (bound && own[*bound].kind != OPERAND_INVALID) {
      situation.bind(slot, operandOf(own[*bound].text));
    }
  }
  return situation;
}

#include "database/gather.h"

#include <algorithm>

#include "srcs/vid_std_figures.h"

namespace {

// The index values under which `source` is looked up for an instance of `evaluated`.
IndexTuple sourceIndices(const VariableSource& source, const ParmDef& evaluated,
                         const IndexTuple& indices) {
  if (source.qualified || indices.empty()) return source.indices;
  return sharedIndices(evaluated, indices, source.parm->parm);
}

// What a name means whose value, or whose P's value, is `value`. A figure that the value does
// not have leaves the name undefined.
Operand figureOrValue(const vidFigure_t* figure, const Operand& value) {
  if (figure == nullptr) return value;
  const std::optional<uint32_t> number = vidStdFigure(value.text, *figure);
  return number ? Operand{OPERAND_NUMBER, static_cast<int32_t>(*number), {}} : Operand{};
}

// Binds what each source holds; `indicesOf` tells under which index values a parameter is read.
template <typename IndicesOf>
Situation gatherFrom(const VariableSources& sources, size_t slots, const StagedValues& staged,
                     const IndicesOf& indicesOf) {
  Situation situation(slots);
  for (uint32_t slot = 0; slot < sources.size(); ++slot) {
    const VariableSource& source = sources[slot];
    if (source.parm != nullptr) {
      const Operand value = staged.value(*source.parm, indicesOf(source));
      situation.bind(slot, figureOrValue(source.figure, value));
    } else if (source.constant != nullptr) {
      situation.bind(slot, figureOrValue(source.figure, source.constant->operand()));
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
    const auto position =
        static_cast<size_t>(std::find(own.begin(), own.end(), index) - own.begin());
    if (position < std::min(own.size(), indices.size())) {
      shared.push_back(indices[position]);
    }
  }
  return shared;
}

Situation gather(const ParmEntry& entry, const IndexTuple& indices, const StagedValues& staged) {
  return gatherFrom(
      entry.sources, entry.parm.variables().size(), staged,
      [&](const VariableSource& source) { return sourceIndices(source, entry.parm, indices); });
}

Situation gather(const IndexEntry& entry, const StagedValues& staged) {
  return gatherFrom(entry.sources, entry.index->variables().size(), staged,
                    [](const VariableSource& source) { return source.indices; });
}

Situation gather(const IndexEntry& entry, const ParmEntry& evaluated, const IndexTuple& indices,
                 const Situation& own, const StagedValues& staged) {
  Situation situation = gatherFrom(
      entry.sources, entry.index->variables().size(), staged,
      [&](const VariableSource& source) { return sourceIndices(source, evaluated.parm, indices); });
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

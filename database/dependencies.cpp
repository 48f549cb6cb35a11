#include "database/dependencies.h"

#include <unordered_set>
#include <utility>
#include <vector>

#include "database/gather.h"
#include "sw/parm/parm_name.h"

namespace {

// Walks from `start` over what each parameter refers to and hands on every name once. A parameter
// that is reached through others does not depend on itself.
template <typename Visitor>
void visitReferences(const ParmEntry& start, const Visitor& visit) {
  std::unordered_set<std::string_view> names;
  std::unordered_set<const ParmEntry*> reached = {&start};
  std::vector<const ParmEntry*> open = {&start};
  while (!open.empty()) {
    const ParmEntry* entry = open.back();
    open.pop_back();
    for (const VariableSource& source : entry->sources) {
      const bool isStart = entry != &start && source.name == start.parm->name();
      if (source.name == THIS_VALUE || isStart || !names.insert(source.name).second) {
        continue;
      }
      visit(source);
      if (source.parm != nullptr && reached.insert(source.parm).second) {
        open.push_back(source.parm);
      }
    }
  }
}

bool fits(const ParmDef& parm, const IndexTuple& indices) {
  if (indices.size() != parm.indices().size()) {
    return false;
  }
  for (size_t i = 0; i < indices.size(); ++i) {
    if (!parm.indices()[i]->checkBase(indices[i])) {
      return false;
    }
  }
  return true;
}

// The name of `source` as the instance `indices` of `parm` reads it.
std::string qualifiedName(const VariableSource& source, const ParmDef& parm,
                          const IndexTuple& indices) {
  if (source.parm == nullptr || source.qualified || indices.empty()) {
    return std::string(source.name);
  }
  return fullName(source.name, sharedIndices(parm, indices, *source.parm->parm));
}

}  // namespace

int dependencies(Database& database, std::string_view name, bool withIndices,
                 std::set<std::string>& out) {
  const ParmName parts = withIndices ? splitName(name) : ParmName{std::string(name), {}};
  const ParmEntry* entry = database.findParm(parts.base);
  if (entry == nullptr) {
    return DEPENDENCIES_NO_PARAMETER;
  }
  if (withIndices && !fits(*entry->parm, parts.indices)) {
    return DEPENDENCIES_INVALID_INDEX;
  }
  visitReferences(*entry, [&](const VariableSource& source) {
    out.insert(qualifiedName(source, *entry->parm, parts.indices));
  });
  return DEPENDENCIES_FOUND;
}

#include "database/reads.h"

#include "base/work.h"
#include "database/gather.h"
#include "sw/parm/parm_name.h"

namespace {

void add(const VariableSources& sources, const ParmEntry& parm, const IndexTuple& indices,
         std::set<std::string>& names) {
  for (const VariableSource& source : sources) {
    Work::add(WORK_PER_REFERENCE);
    if (source.parm == nullptr) continue;
    names.insert(fullName(source.parm->parm.name(), indicesOf(source, parm.parm, indices)));
  }
}

}  // namespace

std::set<std::string> instancesRead(const ParmEntry& parm, const IndexTuple& indices) {
  std::set<std::string> names;
  add(parm.sources, parm, indices, names);
  for (const IndexEntry* const index : parm.indices->own) add(index->sources, parm, indices, names);
  names.erase(fullName(parm.parm.name(), indices));
  return names;
}

#include "sw/parm/build/check_only_registry.h"

#include <utility>

const std::string* CheckOnlyRegistry::findConstant(std::string_view name) const {
  return constants_.findConstant(name);
}

int CheckOnlyRegistry::registerIndex(std::unique_ptr<IndexDef> index) {
  const std::string name = index->name();
  return indices_.try_emplace(name, std::move(index)).second ? 0 : 1;
}

const IndexDef* CheckOnlyRegistry::findIndex(std::string_view name) const {
  const auto found = indices_.find(name);
  return found == indices_.end() ? nullptr : found->second.get();
}

int CheckOnlyRegistry::registerParm(std::unique_ptr<ParmDef> parm) {
  parm.reset();
  return 0;
}

int CheckOnlyRegistry::finish(std::string& /*name*/) { return 0; }

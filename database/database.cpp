#include "database/database.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "database/levels.h"
#include "deflang/put_in_order.h"
#include "deflang/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

// The names of a definition text as the nodes of a graph: first the parameters, in name order, then
// whatever else they refer to.
class NameGraph {
 public:
  explicit NameGraph(const std::vector<ParmEntry*>& parms) : nodes_(parms.size()) {
    for (const ParmEntry* parm : parms) {
      for (const VariableSource& source : parm->sources) {
        if (source.name != THIS_VALUE) {
          nodes_[nodeOf(source)].push_back(parm->rank);
        }
      }
    }
    for (std::vector<uint32_t>& dependents : nodes_) {
      dependents.erase(std::unique(dependents.begin(), dependents.end()), dependents.end());
    }
  }
  [[nodiscard]] const DependentsGraph& dependents() const { return nodes_; }

 private:
  size_t nodeOf(const VariableSource& source) {
    if (source.parm != nullptr) {
      return source.parm->rank;
    }
    const auto [found, isNew] = others_.emplace(source.name, nodes_.size());
    if (isNew) {
      nodes_.emplace_back();
    }
    return found->second;
  }

  DependentsGraph nodes_;
  std::unordered_map<std::string_view, size_t> others_;
};

}  // namespace

int Database::defineConstant(const std::string& name, const std::string& value) {
  return constants_.emplace(name, ValueText(value)).second ? 0 : 1;
}

const std::string* Database::findConstant(std::string_view name) const {
  const auto found = constants_.find(name);
  return found == constants_.end() ? nullptr : &found->second.text();
}

int Database::registerIndex(std::unique_ptr<IndexDef> index) {
  const std::string& name = index->name();
  return indices_.try_emplace(name, IndexEntry{std::move(index), {}, {}}).second ? 0 : 1;
}

const IndexDef* Database::findIndex(std::string_view name) const {
  const auto found = indices_.find(name);
  return found == indices_.end() ? nullptr : found->second.index.get();
}

int Database::registerParm(std::unique_ptr<ParmDef> parm) {
  const size_t hash = TextHash{}(parm->name());
  if (findParm(parm->name(), hash) != nullptr) {
    return 1;
  }
  parmPositions_.makeRoom();
  parms_.add({std::move(*parm), {}, {}});
  parmPositions_.add(hash, static_cast<uint32_t>(parms_.size() - 1));
  return 0;
}

ParmEntry* Database::findParm(std::string_view base) { return findParm(base, TextHash{}(base)); }

ParmEntry* Database::findParm(std::string_view base, size_t hash) {
  const std::optional<uint32_t> found = parmPositions_.find(
      hash, [&](uint32_t position) { return parms_[position].parm.name() == base; });
  return found ? &parms_[*found] : nullptr;
}

ParmEntry* Database::findNamed(std::string_view name) {
  return hasTooLongPart(name) ? nullptr : findParm(baseName(name));
}

IndexEntry* Database::findIndexEntry(std::string_view name) {
  const auto found = indices_.find(name);
  return found == indices_.end() ? nullptr : &found->second;
}

std::vector<ParmEntry*> Database::parmsInNameOrder() {
  std::vector<ParmEntry*> parms;
  parms.reserve(parms_.size());
  for (size_t i = 0; i < parms_.size(); ++i) {
    parms.push_back(&parms_[i]);
  }
  const auto comesBefore = [](const ParmEntry* a, const ParmEntry* b) {
    return a->parm.name() < b->parm.name();
  };
  putInOrder(parms, comesBefore);
  return parms;
}

uint32_t Database::newWalk() {
  if (++walks_ == 0) {
    for (size_t i = 0; i < parms_.size(); ++i) {
      parms_[i].walk = 0;
    }
    ++walks_;
  }
  return walks_;
}

int Database::finish(std::string& name) {
  const std::vector<ParmEntry*> parms = parmsInNameOrder();
  bindSources(parms);
  if (firstUnknownName(name) != nullptr) {
    return 3;
  }
  return assignLevels(parms, name);
}

VariableSource Database::findSource(std::string_view variable) {
  VariableSource source;
  source.name = referencedName(variable);
  if (const std::optional<VidStdName> standard = splitVidStdName(variable)) {
    source.figure = standard->figure;
  }
  if (source.name == THIS_VALUE) {
    return source;
  }
  ParmName parts = splitName(source.name);
  source.parm = findParm(parts.base);
  source.qualified = source.name.find('[') != std::string_view::npos;
  source.indices = std::move(parts.indices);
  const auto constant = constants_.find(source.name);
  if (source.parm == nullptr && constant != constants_.end()) {
    source.constant = &constant->second;
  }
  return source;
}

const VariableSource& Database::sourceOf(std::string_view variable) {
  const std::optional<uint32_t> known = sourceNames_.find(variable);
  if (known) {
    return sources_[*known];
  }
  sourceNames_.add(variable);
  return sources_.add(findSource(variable));
}

void Database::bindSources(const std::vector<ParmEntry*>& parms) {
  uint32_t rank = 0;
  for (ParmEntry* entry : parms) {
    entry->rank = rank++;
    entry->sources.reserve(entry->parm.usedNames().size());
    for (const std::string& name : entry->parm.usedNames()) {
      entry->sources.push_back(sourceOf(name));
    }
  }
  for (auto& [indexName, entry] : indices_) {
    for (const std::string& name : entry.index->variables().names()) {
      entry.sources.push_back(sourceOf(name));
    }
  }
}

bool Database::isKnown(const VariableSource& source) const {
  return source.name == THIS_VALUE || source.parm != nullptr || source.constant != nullptr ||
         findIndex(source.name) != nullptr;
}

const std::string* Database::firstUnknownName(std::string& name) {
  const std::string* first = nullptr;
  for (size_t i = 0; i < parms_.size(); ++i) {
    for (const VariableSource& source : parms_[i].sources) {
      if (!isKnown(source) && (first == nullptr || source.name < *first)) {
        name = source.name;
        first = &name;
      }
    }
  }
  return first;
}

int Database::assignLevels(const std::vector<ParmEntry*>& parms, std::string& name) {
  const NameGraph graph(parms);
  std::vector<uint32_t> levels;
  uint32_t onCycle = 0;
  if (::assignLevels(graph.dependents(), {}, levels, onCycle) != 0) {
    name = parms[onCycle]->parm.name();
    return 1;
  }
  for (ParmEntry* entry : parms) {
    entry->level = levels[entry->rank];
    for (const uint32_t dependent : graph.dependents()[entry->rank]) {
      entry->dependents.push_back(parms[dependent]);
    }
  }
  return 0;
}

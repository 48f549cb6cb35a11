#include "database/database.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/put_in_order.h"
#include "database/levels.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

// The names of a definition text as the nodes of a graph: first the parameters, in name order, then
// whatever else they refer to. An index makes a bundle of its names and the parameters that it
// indexes.
class NameGraph {
 public:
  NameGraph(const std::vector<ParmEntry*>& parms, TextMap<IndexEntry>& indices)
      : nodes_(parms.size()) {
    for (const ParmEntry* parm : parms) {
      for (const VariableSource& source : parm->sources) {
        if (source.name != THIS_VALUE) nodes_[nodeOf(source)].push_back(parm->rank);
      }
    }
    for (std::vector<uint32_t>& dependents : nodes_) dropRepetitions(dependents);
    for (auto& [name, index] : indices) addBundle(index);
  }
  [[nodiscard]] const DependentsGraph& dependents() const { return nodes_; }
  [[nodiscard]] const std::vector<Bundle>& bundles() const { return bundles_; }
  // The index that has made a bundle.
  [[nodiscard]] IndexEntry& indexOf(size_t bundle) const { return *indices_[bundle]; }

 private:
  static void dropRepetitions(std::vector<uint32_t>& ascending) {
    ascending.erase(std::unique(ascending.begin(), ascending.end()), ascending.end());
  }

  void addBundle(IndexEntry& index) {
    Bundle bundle;
    for (const VariableSource& source : index.sources) {
      if (source.name != THIS_VALUE) bundle.names.push_back(static_cast<uint32_t>(nodeOf(source)));
    }
    if (bundle.names.empty() || index.dependents.empty()) return;
    std::sort(bundle.names.begin(), bundle.names.end());
    dropRepetitions(bundle.names);
    for (const ParmEntry* dependent : index.dependents) {
      bundle.dependents.push_back(dependent->rank);
    }
    bundles_.push_back(std::move(bundle));
    indices_.push_back(&index);
  }

  size_t nodeOf(const VariableSource& source) {
    if (source.parm != nullptr) return source.parm->rank;
    const auto [found, isNew] = others_.emplace(source.name, nodes_.size());
    if (isNew) nodes_.emplace_back();
    return found->second;
  }

  DependentsGraph nodes_;
  std::vector<Bundle> bundles_;
  std::vector<IndexEntry*> indices_;  // by bundle
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
  return indices_.try_emplace(name, IndexEntry{std::move(index), {}, {}, {}}).second ? 0 : 1;
}

const IndexDef* Database::findIndex(std::string_view name) const {
  const auto found = indices_.find(name);
  return found == indices_.end() ? nullptr : found->second.index.get();
}

int Database::registerParm(std::unique_ptr<ParmDef> parm) {
  const size_t hash = TextHash{}(parm->name());
  if (findParm(parm->name(), hash) != nullptr) return 1;
  parmPlaces_.makeRoom();
  parms_.add({std::move(*parm), {}, {}, {}});
  parmPlaces_.add(hash, static_cast<uint32_t>(parms_.size() - 1));
  return 0;
}

void Database::keepDescription(std::string_view name, std::string_view text) {
  descriptions_.emplace(name, text);
}

std::string_view Database::descriptionOf(std::string_view name) const {
  const auto found = descriptions_.find(name);
  return found == descriptions_.end() ? std::string_view() : std::string_view(found->second);
}

std::vector<IndexEntry*> Database::indicesInNameOrder() {
  std::vector<IndexEntry*> indices;
  for (auto& [name, entry] : indices_) indices.push_back(&entry);
  std::ranges::sort(indices, {}, [](const IndexEntry* entry) -> const std::string& {
    return entry->index->name();
  });
  return indices;
}

void Database::keepSources(const std::shared_ptr<const StatementSources>& sources) {
  texts_ = sources;
}

uint32_t Database::keepLines(const StatementLines& lines) {
  const auto begin = static_cast<uint32_t>(lines_.size());
  lines.appendTo(lines_);
  return begin;
}

void Database::keepIndexLines(std::string_view name, const StatementLines& lines) {
  findIndexEntry(name)->lines = keepLines(lines);
}

void Database::keepParmLines(std::string_view name, const StatementLines& lines) {
  ParmEntry& last = parms_[parms_.size() - 1];
  assert(last.parm.name() == name);
  last.lines = keepLines(lines);
}

std::string_view Database::linesFrom(uint32_t lines) const {
  return std::string_view(lines_).substr(lines);
}

StatementsOfDefinition Database::statementsOf(const ParmEntry& entry) const {
  const auto find = std::bind_front(&StatementSources::statement, texts_.get());
  return {entry.parm, linesFrom(entry.lines), find};
}

StatementsOfDefinition Database::statementsOf(const IndexEntry& entry) const {
  const auto find = std::bind_front(&StatementSources::statement, texts_.get());
  return {*entry.index, linesFrom(entry.lines), find};
}

uint32_t Database::lineOf(uint32_t lines) const {
  return texts_->lineOf(StatementsOfDefinition::definitionIn(linesFrom(lines)));
}

std::vector<SourceStatement> Database::sourceOf(uint32_t lines) const {
  return texts_->statementsOf(StatementsOfDefinition::definitionIn(linesFrom(lines)));
}

ParmEntry* Database::findParm(std::string_view base) { return findParm(base, TextHash{}(base)); }

ParmEntry* Database::findParm(std::string_view base, size_t hash) {
  const std::optional<uint32_t> found =
      parmPlaces_.find(hash, [&](uint32_t place) { return parms_[place].parm.name() == base; });
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
  for (size_t i = 0; i < parms_.size(); ++i) parms.push_back(&parms_[i]);
  const auto comesBefore = [](const ParmEntry* a, const ParmEntry* b) {
    return a->parm.name() < b->parm.name();
  };
  putInOrder(parms, comesBefore);
  return parms;
}

void Database::forgetValues() {
  for (size_t i = 0; i < parms_.size(); ++i) parms_[i].parm.forgetValues();
}

uint32_t Database::newWalk() {
  if (++walks_ == 0) {
    for (size_t i = 0; i < parms_.size(); ++i) parms_[i].walk = 0;
    for (auto& [name, index] : indices_) index.walk = 0;
    ++walks_;
  }
  return walks_;
}

int Database::finish(std::string& name) {
  const std::vector<ParmEntry*> parms = parmsInNameOrder();
  bindSources(parms);
  linkIndices(parms);
  if (std::optional<std::string> unknown = firstUnknownName()) {
    name = *std::move(unknown);
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
  if (source.name == THIS_VALUE) return source;
  ParmName parts = splitName(source.name);
  source.parm = findParm(parts.base);
  source.qualified = source.name.find('[') != std::string_view::npos;
  source.indices = std::move(parts.indices);
  const auto constant = constants_.find(source.name);
  if (source.parm == nullptr && constant != constants_.end()) source.constant = &constant->second;
  return source;
}

const VariableSource& Database::sourceOf(std::string_view variable) {
  const uint32_t number = sourceNames_.intern(variable);
  return number < sources_.size() ? sources_[number] : sources_.add(findSource(variable));
}

void Database::bindSources(const std::vector<ParmEntry*>& parms) {
  uint32_t rank = 0;
  for (ParmEntry* entry : parms) {
    entry->rank = rank++;
    entry->sources.reserve(entry->parm.usedNames());
    for (uint32_t slot = 0; slot < entry->parm.usedNames(); ++slot) {
      entry->sources.push_back(sourceOf(entry->parm.variables()[slot]));
    }
  }
  for (auto& [indexName, entry] : indices_) {
    for (uint32_t slot = 0; slot < entry.index->variables().size(); ++slot) {
      const VariableSource& source = sourceOf(entry.index->variables()[slot]);
      entry.sources.push_back(source);
      entry.isShared = entry.isShared && isFixed(source);
    }
  }
}

void Database::linkIndices(const std::vector<ParmEntry*>& parms) {
  for (ParmEntry* entry : parms) {
    for (const IndexDef* index : entry->parm.indices()) {
      IndexEntry& own = *findIndexEntry(index->name());
      entry->indices.change().own.push_back(&own);
      if (own.dependents.empty() || own.dependents.back() != entry) own.dependents.push_back(entry);
    }
  }
}

// Whether a name means the same in every instance.
bool Database::isFixed(const VariableSource& source) const {
  if (source.parm != nullptr) return source.qualified || source.parm->parm.indices().empty();
  return findIndex(source.name) == nullptr;
}

bool Database::isKnown(const VariableSource& source) const {
  return source.name == THIS_VALUE || source.parm != nullptr || source.constant != nullptr ||
         findIndex(source.name) != nullptr;
}

std::optional<std::string> Database::firstUnknownName() const {
  std::optional<std::string> first;
  const auto look = [&](const VariableSources& sources) {
    for (const VariableSource& source : sources) {
      if (!isKnown(source) && (!first || source.name < *first)) first = source.name;
    }
  };
  for (size_t i = 0; i < parms_.size(); ++i) look(parms_[i].sources);
  for (const auto& [indexName, index] : indices_) {
    if (!index.dependents.empty()) look(index.sources);
  }
  return first;
}

int Database::assignLevels(const std::vector<ParmEntry*>& parms, std::string& name) {
  const NameGraph graph(parms, indices_);
  std::vector<uint32_t> levels;
  uint32_t onCycle = 0;
  if (::assignLevels(graph.dependents(), graph.bundles(), levels, onCycle) != 0) {
    name = parms[onCycle]->parm.name();
    return 1;
  }
  for (ParmEntry* entry : parms) {
    entry->level = levels[entry->rank];
    for (const uint32_t dependent : graph.dependents()[entry->rank]) {
      entry->dependents.push_back(parms[dependent]);
    }
  }
  for (size_t bundle = 0; bundle < graph.bundles().size(); ++bundle) {
    for (const uint32_t node : graph.bundles()[bundle].names) {
      if (node < parms.size()) {
        parms[node]->indices.change().naming.push_back(&graph.indexOf(bundle));
        parms[node]->isNamedByIndices = true;
      }
    }
  }
  return 0;
}

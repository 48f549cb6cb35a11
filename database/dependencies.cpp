#include "database/dependencies.h"

#include <algorithm>
#include <forward_list>
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "base/work.h"
#include "database/gather.h"
#include "sw/parm/parm_name.h"

namespace {

// The instance by whose index values names are read.
struct Reader {
  ParmEntry* parm = nullptr;
  IndexTuple indices;
};

// The index values with which `reader` reads `source`, a parameter that it names.
IndexTuple indicesOf(const VariableSource& source, const Reader& reader) {
  return indicesOf(source, reader.parm->parm, reader.indices);
}

// The name of `source` as `reader` reads it.
std::string qualifiedName(const VariableSource& source, const Reader& reader) {
  std::string name = source.parm == nullptr || source.qualified
                         ? std::string(source.name)
                         : fullName(source.name, indicesOf(source, reader));
  Work::add(WORK_PER_VALUE_BYTE * name.size());
  return name;
}

// How many bytes the names take together.
class NameBytes {
 public:
  // False where they become too many.
  bool add(size_t bytes) {
    bytes_ += bytes;
    return bytes_ <= MAX_QUERY_BYTES;
  }

 private:
  size_t bytes_ = 0;
};

// A walk along the names that `start` leads to. A parameter that is reached through others does not
// depend on itself.
class ReferenceWalk {
 public:
  // `asWritten` asks for the names as the text has them; `start` has no index values then.
  ReferenceWalk(Reader start, bool asWritten) : asWritten_(asWritten), start_(start.parm) {
    go(*start_, readers_.emplace_front(std::move(start)));
  }

  // Calls `take(source, reader)` for every name, mostly once. False as soon as `take` says so.
  template <typename Take>
  bool run(const Take& take) {
    while (!open_.empty()) {
      const auto [entry, reader] = open_.back();
      open_.pop_back();
      if (!read(entry->sources, *entry, *reader, take)) return false;
      // The names of an index are the same whichever parameter leads to it.
      for (const IndexEntry* index : entry->indices->own) {
        const bool isNew = readIndices_.insert({index, reader, entry == start_}).second;
        if (isNew && !read(index->sources, *entry, *reader, take)) return false;
      }
    }
    return true;
  }

 private:
  // Takes the names that `sources`, of `entry` or of one of its indices, give.
  template <typename Take>
  bool read(const VariableSources& sources, const ParmEntry& entry, const Reader& reader,
            const Take& take) {
    Work::spendOn(entry.parm.name());
    for (const VariableSource& source : sources) {
      Work::add(WORK_PER_REFERENCE);
      const bool isStart = &entry != start_ && source.parm == start_ && !source.qualified;
      if (source.name == THIS_VALUE || isStart || !read_.insert({&source, &reader}).second) {
        continue;
      }
      if (!take(source, reader)) return false;
      if (source.parm != nullptr) go(*source.parm, readerBehind(source, reader));
    }
    return true;
  }

  // What an instance that the text names refers to is read by that instance's own index values.
  const Reader& readerBehind(const VariableSource& source, const Reader& reader) {
    if (asWritten_ || !source.qualified) return reader;
    const Reader*& named = named_[source.name];
    if (named == nullptr) named = &readers_.emplace_front(Reader{source.parm, source.indices});
    return *named;
  }

  void go(const ParmEntry& entry, const Reader& reader) {
    if (reached_.insert({&entry, &reader}).second) open_.emplace_back(&entry, &reader);
  }

  const bool asWritten_;
  const ParmEntry* const start_;
  std::forward_list<Reader> readers_;
  std::map<std::string_view, const Reader*> named_;
  // A name is put together once for each reader: it may be long, and many may refer to it.
  std::set<std::pair<const VariableSource*, const Reader*>> read_;
  std::set<std::pair<const ParmEntry*, const Reader*>> reached_;
  // Whether by the start itself, which may name itself.
  std::set<std::tuple<const IndexEntry*, const Reader*, bool>> readIndices_;
  std::vector<std::pair<const ParmEntry*, const Reader*>> open_;
};

// Finds the parameter that a walk starts from. Returns a DependenciesResult.
int findStart(Database& database, std::string_view name, bool withIndices, Reader& start) {
  start = withIndices ? Reader{database.findNamed(name), splitName(name).indices}
                      : Reader{database.findParm(name), {}};
  if (start.parm == nullptr) return DEPENDENCIES_NO_PARAMETER;
  const bool isInvalid = withIndices && !fitIndices(start.parm->parm.indices(), start.indices);
  return isInvalid ? DEPENDENCIES_INVALID_INDEX : DEPENDENCIES_FOUND;
}

// An order in which each instance has one place.
struct InstanceOrder {
  bool operator()(const Instance& a, const Instance& b) const {
    return a.parm != b.parm ? a.parm->rank < b.parm->rank : a.indices < b.indices;
  }
};

// How long the full name of an instance is.
size_t nameBytes(const Instance& instance) {
  size_t bytes = instance.parm->parm.name().size();
  for (const std::string& value : instance.indices) bytes += value.size() + 2;
  return bytes;
}

}  // namespace

int dependencies(Database& database, std::string_view name, bool withIndices,
                 std::set<std::string>& out) {
  Reader start;
  if (const int refused = findStart(database, name, withIndices, start); refused != 0) {
    return refused;
  }
  NameBytes bytes;
  const auto take = [&](const VariableSource& source, const Reader& reader) {
    const auto [place, isNew] = out.insert(qualifiedName(source, reader));
    return bytes.add(isNew ? place->size() : 0);
  };
  const bool fit = ReferenceWalk(std::move(start), !withIndices).run(take);
  return fit ? DEPENDENCIES_FOUND : DEPENDENCIES_TOO_LARGE;
}

int dependencyInstances(Database& database, std::string_view name, std::vector<Instance>& out) {
  Reader start;
  if (const int refused = findStart(database, name, true, start); refused != 0) return refused;
  const Instance target{start.parm, start.indices};
  std::set<Instance, InstanceOrder> instances = {target};
  std::set<std::string_view> others;  // the names of what is no parameter
  NameBytes bytes;
  const auto take = [&](const VariableSource& source, const Reader& reader) {
    if (source.parm == nullptr) {
      return bytes.add(others.insert(source.name).second ? source.name.size() : 0);
    }
    const Instance instance{source.parm, indicesOf(source, reader)};
    const size_t length = nameBytes(instance);
    Work::add(WORK_PER_VALUE_BYTE * length);
    return bytes.add(instances.insert(instance).second ? length : 0);
  };
  if (!ReferenceWalk(std::move(start), false).run(take)) return DEPENDENCIES_TOO_LARGE;
  out = {target};
  instances.erase(target);
  out.insert(out.end(), instances.begin(), instances.end());
  return DEPENDENCIES_FOUND;
}

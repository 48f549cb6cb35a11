#include "database/dependencies.h"

#include <deque>
#include <map>
#include <utility>
#include <vector>

#include "database/gather.h"
#include "sw/parm/parm_name.h"

namespace {

// The instance by whose index values names are read.
struct Reader {
  const ParmEntry* parm;
  IndexTuple indices;
};

// The name of `source` as `reader` reads it.
std::string qualifiedName(const VariableSource& source, const Reader& reader) {
  if (source.parm == nullptr || source.qualified || reader.indices.empty()) {
    return std::string(source.name);
  }
  return fullName(source.name, sharedIndices(reader.parm->parm, reader.indices, source.parm->parm));
}

// The names that `start` leads to. A parameter that is reached through others does not depend on
// itself.
class ReferenceWalk {
 public:
  // `asWritten` asks for the names as they stand in the text; `start` has no index values then.
  ReferenceWalk(Reader start, bool asWritten) : asWritten_(asWritten) {
    const Reader& reader = readers_.emplace_back(std::move(start));
    go(*reader.parm, reader);
  }

  // False where the names become too long.
  bool collect(std::set<std::string>& names) {
    while (!open_.empty()) {
      const auto [entry, reader] = open_.back();
      open_.pop_back();
      for (const VariableSource& source : entry->sources) {
        const bool isStart = entry != start() && source.name == start()->parm.name();
        if (source.name == THIS_VALUE || isStart || !read_.insert({&source, reader}).second) {
          continue;
        }
        if (!add(qualifiedName(source, *reader), names)) {
          return false;
        }
        if (source.parm != nullptr) {
          go(*source.parm, readerBehind(source, *reader));
        }
      }
    }
    return true;
  }

 private:
  [[nodiscard]] const ParmEntry* start() const { return readers_.front().parm; }

  // What an instance that the text names refers to is read by that instance's own index values.
  const Reader& readerBehind(const VariableSource& source, const Reader& reader) {
    if (asWritten_ || !source.qualified) {
      return reader;
    }
    const Reader*& named = named_[source.name];
    if (named == nullptr) {
      named = &readers_.emplace_back(Reader{source.parm, source.indices});
    }
    return *named;
  }

  bool add(std::string name, std::set<std::string>& names) {
    const auto [place, isNew] = names.insert(std::move(name));
    bytes_ += isNew ? place->size() : 0;
    return bytes_ <= MAX_DEPENDENCY_BYTES;
  }

  void go(const ParmEntry& entry, const Reader& reader) {
    if (reached_.insert({&entry, &reader}).second) {
      open_.emplace_back(&entry, &reader);
    }
  }

  const bool asWritten_;
  std::deque<Reader> readers_;  // the start's first; they stay where they are
  std::map<std::string_view, const Reader*> named_;
  // A name is put together once for each reader: it may be long, and many may refer to it.
  std::set<std::pair<const VariableSource*, const Reader*>> read_;
  size_t bytes_ = 0;  // of the names
  std::set<std::pair<const ParmEntry*, const Reader*>> reached_;
  std::vector<std::pair<const ParmEntry*, const Reader*>> open_;
};

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

}  // namespace

int dependencies(Database& database, std::string_view name, bool withIndices,
                 std::set<std::string>& out) {
  const ParmName parts = withIndices ? splitName(name) : ParmName{std::string(name), {}};
  const ParmEntry* entry = database.findParm(parts.base);
  if (entry == nullptr) {
    return DEPENDENCIES_NO_PARAMETER;
  }
  if (withIndices && !fits(entry->parm, parts.indices)) {
    return DEPENDENCIES_INVALID_INDEX;
  }
  const bool fit = ReferenceWalk({entry, parts.indices}, !withIndices).collect(out);
  return fit ? DEPENDENCIES_FOUND : DEPENDENCIES_TOO_LARGE;
}

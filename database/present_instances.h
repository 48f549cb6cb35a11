// Present instances: the instances of a parameter that exist in a situation.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "database/index_situations.h"

/// Lists instances in the situation of `staged`, which has to live as long and stay as it is.
class PresentInstances {
 public:
  /// Gets the full name of an instance; returns whether it wants more.
  using Visit = std::function<bool(const std::string& name)>;

  explicit PresentInstances(const StagedValues& staged) : situations_(staged) {}

  /// Visits the instances of `parm` that exist, in the order of its indices: numbers ascending,
  /// then texts ascending. Returns false where `visit` wanted no more. Counts the work, and raises
  /// WorkExceeded, also where an index takes more than MAX_QUERY_BYTES; std::bad_alloc where memory
  /// is exhausted. Writes nothing to the system log.
  bool visit(const ParmEntry& parm, const Visit& visit);

 private:
  using Values = std::vector<std::string>;

  const Values& valuesAt(const ParmEntry& parm, size_t place);
  bool visitFrom(const ParmEntry& parm, size_t place, IndexTuple& indices, const Visit& visit);

  IndexSituations situations_;
  std::map<const IndexEntry*, Values> values_;  // that the indices may take, as far as known
};

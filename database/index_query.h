// Index queries: which of a parameter's indices are available, and which values an index takes, as
// a transaction sees things.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "database/query_limit.h"
#include "database/staged_values.h"
#include "sw/parm/bounds.h"

/// The names of those indices of `parm` that are available just now, in index order; empty for a
/// parameter without indices, and where none of its indices is available. Raises WorkExceeded where
/// the conditions pass the budget of the request.
std::vector<std::string> validIndices(Database& database, const StagedValues& staged,
                                      const ParmDef& parm);

/// Results of indexRange.
enum IndexRangeResult : int {
  INDEX_RANGE_FOUND = 0,
  INDEX_RANGE_NO_INDEX = 1,
  INDEX_RANGE_NOT_AVAILABLE = 2,  ///< the index is not available just now
  INDEX_RANGE_TOO_LARGE = 3,      ///< what it takes has more than MAX_QUERY_BYTES
};

/// The values that `index` takes in `situation`, in which it is available: of the numbers and texts
/// of its base bounds those that its full check accepts. Returns INDEX_RANGE_FOUND or
/// INDEX_RANGE_TOO_LARGE; the caller counts the work of the situation.
int acceptedValues(const IndexDef& index, const Situation& situation,
                   std::vector<std::string>& texts, Spans& spans);

/// The values that the index `name` takes just now: of the numbers and texts of its base bounds
/// those that its full check accepts. `texts` gets the texts, ascending in byte order; `spans` the
/// numbers, ascending, each span as long as it can be. An index whose base bounds have a million
/// numbers costs no more than one with two, unless its conditions break them up. Both are of use
/// only with INDEX_RANGE_FOUND. Returns an IndexRangeResult; raises WorkExceeded.
int indexRange(Database& database, const StagedValues& staged, const std::string& name,
               std::vector<std::string>& texts, Spans& spans);

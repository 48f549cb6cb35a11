// Index queries: which of a parameter's indices exist, and which values an index takes, as a
// transaction sees things.
#pragma once

#include <string>
#include <vector>

#include "database/database.h"
#include "database/query_limit.h"
#include "database/staged_values.h"
#include "sw/parm/bounds.h"

/// The names of those indices of `parm` whose validity conditions hold, in index order.
std::vector<std::string> validIndices(Database& database, const StagedValues& staged,
                                      const ParmDef& parm);

/// Results of indexRange.
enum IndexRangeResult : int {
  INDEX_RANGE_FOUND = 0,
  INDEX_RANGE_NO_INDEX = 1,
  INDEX_RANGE_NOT_VALID = 2,  ///< the index does not exist just now
  INDEX_RANGE_TOO_LARGE = 3,  ///< what it takes has more than MAX_QUERY_BYTES
};

/// The values that an index takes just now: of the numbers and texts of its base bounds those that
/// its full check accepts. Returns an IndexRangeResult.
int indexRange(Database& database, const StagedValues& staged, const std::string& name,
               std::vector<std::string>& texts, Spans& spans);

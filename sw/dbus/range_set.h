// Range sets: the ranges of the names of one request, gathered within what a reply may take.
//
// For get_range_bulk, whose names may be many spellings of few instances.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/segmented_list.h"
#include "database/transaction.h"
#include "sw/parm/bounds.h"

/// Lives as long as one request. Each instance is evaluated once and its range kept once, however
/// often and in whatever spellings the request names it.
class RangeSet {
 public:
  /// One name of the request and its range.
  struct NamedRange {
    std::string_view name;     ///< as the request spells it, and the request's
    const BoundsParm* bounds;  ///< never null; the set's, valid as long as the set
  };

  /// For ranges as `transaction` sees them, which outlives the set.
  explicit RangeSet(Transaction& transaction) : transaction_(transaction) {}

  /// Finds the range of `name`, whose text outlives the set. A spelling that is there already is
  /// passed over. Counts the work of a request and of the range. Returns RANGE_FOUND (0), another
  /// result of queryRange(), or INTERNAL_ERROR as soon as the reply would take more than
  /// MAX_REPLY_MEMORY bytes; after another result than 0 the set is of no use. Raises
  /// std::bad_alloc where memory is exhausted, and WorkExceeded.
  int add(std::string_view name);
  /// The names with their ranges, ascending by name; valid until the next add().
  [[nodiscard]] const std::vector<NamedRange>& inNameOrder();

 private:
  struct Known {
    const BoundsParm* bounds = nullptr;  // null: not found yet
    bool isNamed = false;                // whether the request has this very spelling
  };

  int findBounds(std::string_view name, const BoundsParm*& bounds);

  Transaction& transaction_;
  std::vector<NamedRange> ranges_;
  std::unordered_map<std::string_view, Known> known_;  // by spelling, full names among them
  SegmentedList<std::string> fullNames_;  // of instances that the request spells in another way
  SegmentedList<BoundsParm> bounds_;
  size_t memory_ = 0;  // bytes that the reply and the tables take
};

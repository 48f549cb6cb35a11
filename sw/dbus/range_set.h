// Range sets: the ranges of the names of one request, gathered within what a reply may take.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/segmented_list.h"
#include "database/transaction.h"
#include "sw/parm/bounds.h"

class RangeSet {
 public:
  /// One name and its range, which stays the set's.
  struct NamedRange {
    std::string_view name;
    const BoundsParm* bounds;
  };

  explicit RangeSet(Transaction& transaction) : transaction_(transaction) {}

  /// Finds the range of `name`, which outlives the set. An instance is evaluated once, however its
  /// name is spelled; a name that is there already is passed over. Returns 0, the result of
  /// queryRange, or INTERNAL_ERROR as soon as the reply would take more than MAX_REPLY_MEMORY.
  int add(std::string_view name);
  /// The names with their ranges, ascending by name.
  [[nodiscard]] const std::vector<NamedRange>& inNameOrder();

 private:
  struct Known {
    const BoundsParm* bounds = nullptr;  // null while they were not found
    bool isNamed = false;                // whether the request has this very spelling
  };

  int findBounds(std::string_view name, const BoundsParm*& bounds);

  Transaction& transaction_;
  std::vector<NamedRange> ranges_;
  std::unordered_map<std::string_view, Known> known_;  // by spelling; full names are one
  SegmentedList<std::string> fullNames_;  // of the instances that were spelled in another way
  SegmentedList<BoundsParm> bounds_;
  size_t memory_ = 0;
};

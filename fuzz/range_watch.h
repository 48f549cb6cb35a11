// The range watch: whether a range query foretells what a commit brings about.
#pragma once

#include <string>

#include "database/database.h"
#include "database/staged_values.h"

/// Made before a commit of `staged`, asked after it.
class RangeWatch {
 public:
  /// Asks for the range of the instance `name`.
  RangeWatch(Database& database, StagedValues& staged, const std::string& name);

  /// Demands, after a commit without failure, that the range is what the query has answered.
  ///
  /// Some instances are exempt; the source names the rule that exempts each.
  void expectForetold() const;

 private:
  Database& database_;
  std::string name_;
  std::string range_;
  bool isBinding_;
};

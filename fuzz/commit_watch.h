// The commit watch: which instances a commit has to evaluate, and whether it leaves them settled.
#pragma once

#include <map>
#include <set>
#include <string>

#include "database/staged_values.h"
#include "fuzz/instance.h"

/// Made before a commit of `staged`, asked after it.
class CommitWatch {
 public:
  /// `all` are the instances to look at, those that are staged among them.
  CommitWatch(Database& database, StagedValues& staged, const Instances& all);

  /// Demands that of `all`, which are those of the constructor, only the instances that were staged
  /// and those that depend on them have changed.
  void expectOnlyPlannedChanged(const Instances& all) const;

  /// Demands, after a commit without failure, that every value that it evaluated is settled: its
  /// own parameter, asked again in the committed situation, accepts it and leaves it as it is; and
  /// that what was settled before still is.
  ///
  /// Some values are exempt; the source names the rule that exempts each.
  void expectSettled() const;

  /// Whether a client had staged the instance.
  [[nodiscard]] bool isStaged(const std::string& name) const { return isForced_.contains(name); }
  /// What one of the instances held before the commit.
  [[nodiscard]] const std::string& before(const std::string& name) const {
    return before_.at(name);
  }

 private:
  void addDependents(Database& database);
  [[nodiscard]] bool isExempt(const std::string& name, const Instance& instance) const;
  [[nodiscard]] bool wasRefusedToClient(const std::string& name, const Instance& instance) const;
  [[nodiscard]] bool hasMovingPartner(const Instance& instance) const;
  [[nodiscard]] bool isBeyondThePlan(const std::string& name, const Instance& instance) const;

  std::map<std::string, bool> isForced_;  // by full name
  std::set<const ParmEntry*> stagedParms_;
  Instances evaluated_;
  Instances enumerated_;
  Instances settledBefore_;                    // those that are not evaluated
  std::map<std::string, std::string> before_;  // committed texts by full name
};

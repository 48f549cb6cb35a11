// Setting: values put straight into the database, each as a commit would put it.
#pragma once

#include <optional>
#include <string>

#include "database/evaluation.h"

/// Sets one value after the other, without a commit: each has to be set after what it follows.
class Setter {
 public:
  /// Sets `value` as a commit would. Returns what became of it, and leaves in `value` what the
  /// instance holds. In a dry run, what it would hold: nothing changes.
  SetCode set(ParmEntry& parm, const IndexTuple& indices, std::string& value, bool dryRun = false);
  /// Whether an instance would keep what it holds.
  bool stays(ParmEntry& parm, const IndexTuple& indices);
  /// Takes the value of an instance away.
  static void unset(ParmEntry& parm, const IndexTuple& indices);
  /// What is staged: nothing. All values are in the database.
  [[nodiscard]] const StagedValues& staged() const { return staged_; }

 private:
  StagedValues staged_;
};

/// What setting `value` now would leave in an instance; nullopt where it would be refused. Changes
/// nothing.
std::optional<std::string> valueKept(ParmEntry& parm, const IndexTuple& indices,
                                     const std::string& value);

// Device coverage: what a device judges, noted beside it.
//
// A commit is gone through once more before it is made, on copies of what is staged, by the same
// plan, in the same order and with the same dry run as a trial. So each instance is looked at in
// the very situation in which the commit will judge it:
//
//   statement    chosen where
//   index        an instance of the parameter is judged
//   ctrlValid    its condition is asked
//   ctrlRO       its condition is asked: not of a forced write, nor of what follows others
//   rangeValid   its bounds have a say: they apply, and can be used
//   rangeDoc     it answers a query for the range
//   default      it gives the value of a reset
//   valueChange  it replaces a value
//
// A condition has been true or false where it was asked, or where the constants decide it, as soon
// as a device starts with them. Nothing that judges knows of it.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "coverage/text_coverage.h"
#include "database/transaction.h"
#include "sw/parm/statement_lines.h"

/// Notes in `coverage` what one device judges.
class DeviceCoverage {
 public:
  /// `database` was built from the text of `coverage`; both outlive it. Notes what the constants
  /// decide.
  DeviceCoverage(Database& database, TextCoverage& coverage);
  DeviceCoverage(const DeviceCoverage&) = delete;
  DeviceCoverage& operator=(const DeviceCoverage&) = delete;

  /// To be called before each commit of `transaction`, which stays as it is. What passes the budget
  /// of a request is noted up to there. Raises std::bad_alloc where memory is exhausted.
  void noteCommit(Transaction& transaction);
  /// To be called for each query for the range of the instance `name`.
  void noteRange(const Transaction& transaction, const std::string& name);
  /// To be called for each query for the values of the index `name`.
  void noteIndex(const Transaction& transaction, const std::string& name);

 private:
  using Statement = StatementCoverage*;  // null where no statement is behind it
  using Statements = std::vector<Statement>;

  // The statements behind a definition's own lists.
  struct Marks {
    DefinitionCoverage* definition = nullptr;
    Statement index = nullptr;
    Statements base, set, documentedSet;
    Statements validity, ranges, translations, readOnly, defaults, documented;
    Statement fallback = nullptr;
  };

  class Noting;

  [[nodiscard]] Marks marksOf(DefinitionCoverage& definition, const StatementLines& numbers);
  [[nodiscard]] Statements statementsOf(const StatementLines::List& numbers);
  [[nodiscard]] Statement statementOf(const StatementPlace& number);
  void noteDecided(const Marks& marks, const IndexDef& definition, const ParmDef* parm,
                   const std::vector<Statement>& own);
  template <typename Note>
  void note(const Note& doNote);

  Database& database_;
  TextCoverage& coverage_;
  std::unordered_map<const ParmEntry*, Marks> parms_;
  std::unordered_map<const IndexEntry*, Marks> indices_;
};

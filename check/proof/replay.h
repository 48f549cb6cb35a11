// Replay: values set as a client would set them, one commit for each, after a start from the
// defaults.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "check/proof/deadline.h"
#include "check/text/finding.h"
#include "database/transaction.h"

/// What is set together, in one commit after the other.
using Commits = std::vector<NamedValues>;

/// Commits what is staged. What is refused is no matter of the one who commits.
void commitAll(Transaction& transaction);

/// Resets `names` in one commit. Where one instance fails, or does not exist, a commit leaves out
/// others of its level: then each is reset alone, up to `deadline`. Returns false where they are
/// too many for a commit.
bool resetTogether(std::span<const std::string> names, Database& database,
                   const Deadline& deadline = {});

/// While it lives, a commit judges of all parameters only some: what depends on them besides is
/// left alone, as it is where nobody has given it a value.
class ConfinedCommits {
 public:
  /// What becomes of the values in the end.
  enum Values { FORGET_VALUES, KEEP_VALUES };

  /// The parameters that `names` are of. Between them they have to have all that they depend on.
  ConfinedCommits(const std::vector<std::string>& names, Database& database,
                  Values values = FORGET_VALUES);
  ~ConfinedCommits();
  ConfinedCommits(const ConfinedCommits&) = delete;
  ConfinedCommits& operator=(const ConfinedCommits&) = delete;

  /// Takes away the values of the parameters, resets `names` one after the other, and sets each of
  /// `moves`, which are names of theirs. Returns whether every move could be staged; what became of
  /// it is to be read.
  bool moveFromDefaults(const NamedValues& moves);
  /// Takes away the values of the parameters, and resets `names` as a start does: those of one
  /// level together.
  void start();
  /// Likewise all together, as a client may: of one level, names with an index among the others.
  void resetAtOnce();
  /// As moveFromDefaults(), with what is set together.
  bool commitFromDefaults(const Commits& commits);

 private:
  void confine(std::vector<ParmEntry*>& dependents, uint32_t walk);
  void forgetValues();

  Database& database_;
  const std::vector<std::string>& names_;
  Values values_;
  std::vector<ParmEntry*> parms_;
  // The lists of dependents that were made shorter, and what they were.
  std::vector<std::pair<std::vector<ParmEntry*>*, std::vector<ParmEntry*>>> confined_;
};

/// Sets the values of a witness by `commits`, or one by one where there are none, and takes them
/// away again. Returns whether every value is kept and stays.
bool replay(const NamedValues& witness, Database& database, const Commits& commits = {});

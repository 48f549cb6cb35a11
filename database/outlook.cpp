#include "database/outlook.h"

#include "database/commit_steps.h"
#include "database/trial.h"

Outlook::Outlook(Transaction& transaction)
    : staged_(transaction.staged()), first_(&staged_), tried_(&staged_), isIdle_(staged_.empty()) {
  if (isIdle_) return;
  if (staged_.hasResets()) {
    copyStaged(staged_, first_);
    resolveResets(first_);
  }
  result_ = tryCommit(transaction, tried_,
                      [](const StagedEntry& /*entry*/, std::optional<SetCode> /*code*/) {});
}

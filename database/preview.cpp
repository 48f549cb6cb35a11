#include "database/preview.h"

#include <map>
#include <optional>
#include <set>
#include <utility>

#include "base/number.h"
#include "database/commit_steps.h"
#include "database/explain.h"
#include "database/reads.h"
#include "database/trial.h"

namespace {

std::string shown(const Reason& reason) {
  return "line " + std::to_string(reason.line) + ": " + reason.statement;
}

std::string withReasons(std::string why, const std::vector<Reason>& reasons) {
  for (const Reason& reason : reasons) {
    why += (&reason == &reasons.front() ? ", " : "; ") + shown(reason);
  }
  return why;
}

// What the trial has done with one instance.
struct Tried {
  const ParmEntry* parm;
  IndexTuple indices;
  std::string before;
  std::string after;
};

class Previewing {
 public:
  explicit Previewing(Transaction& transaction)
      : transaction_(transaction), first_(&transaction.staged()), copies_(&transaction.staged()) {}

  int run(Preview& out) {
    for (const StagedEntry* entry : transaction_.staged().inNameOrder()) {
      staged_.emplace(fullName(*entry), std::nullopt);
    }
    copyStaged(transaction_.staged(), first_);
    resolveResets(first_);
    const int result = tryCommit(transaction_, copies_,
                                 [this](const StagedEntry& entry, std::optional<SetCode> code) {
                                   note(entry, code.value_or(PASSED_OVER));
                                 });
    if (result == COMMIT_TOO_LARGE) return result;
    for (const auto& [name, tried] : changes_) {
      out.changes.push_back({name, tried.before, tried.after, causesOf(name, tried)});
    }
    for (const auto& [name, code] : staged_) {
      if (!isAccepted(*code)) refused_.insert_or_assign(name, Refused{*code, IS_STAGED});
    }
    for (const auto& [name, refused] : refused_) {
      out.refusals.push_back({name, whyNot(name, refused)});
    }
    return result;
  }

 private:
  // What became of a value behind a refusal in its level; no code of the engine's.
  static constexpr auto PASSED_OVER = static_cast<SetCode>(100);

  // A follower that refuses its value makes the commit fail.
  enum Role { IS_STAGED, IS_FOLLOWER };
  struct Refused {
    SetCode code;
    Role role;
  };

  void note(const StagedEntry& entry, SetCode code) {
    std::string name = fullName(entry);
    // A value that was staged is judged with its own level, and maybe once more as a follower.
    if (const auto own = staged_.find(name); own != staged_.end() && !own->second) {
      own->second = code;
    } else if (code != PASSED_OVER && code != SET_RULE_FAILS && stepResult(code) != 0) {
      refused_.insert_or_assign(name, Refused{code, IS_FOLLOWER});
    }
    if (code == SET_STORED_UNREPORTED && entry.value.text() != committedText(entry)) {
      unreported_.insert(name);
    }
    if (code != SET_STORED) return;
    const std::string& after = entry.value.text();
    const std::string& before = committedText(entry);
    if (const auto known = changes_.find(name); known != changes_.end()) {
      known->second.after = after;
    } else if (isReported(entry.parm->parm, wasAnnounced(entry), after, before)) {
      changes_.emplace(std::move(name), Tried{entry.parm, entry.indices, before, after});
    }
  }

  [[nodiscard]] std::vector<std::string> causesOf(const std::string& name,
                                                  const Tried& tried) const {
    std::vector<std::string> causes;
    for (const std::string& read : instancesRead(*tried.parm, tried.indices)) {
      if (changes_.contains(read) || unreported_.contains(read)) causes.push_back(read);
    }
    const auto own = staged_.find(name);
    if (own != staged_.end() && isAccepted(*own->second)) causes.insert(causes.begin(), name);
    return causes;
  }

  [[nodiscard]] std::string whyNot(const std::string& name, const Refused& refused) const {
    const auto [code, role] = refused;
    if (code == PASSED_OVER) return "another value of its level is refused";
    Explanation explanation;
    Database& database = transaction_.database();
    const bool isFirst = role == IS_STAGED && !database.findNamed(name)->hasDependents();
    if (explain(database, isFirst ? first_ : copies_, name, explanation) != EXPLAIN_DONE) {
      return "there is no instance with so many index values";
    }
    if (!explanation.exists) return withReasons("does not exist", explanation.existence);
    if (code == SET_NOT_STORED) return withReasons("is read-only", explanation.readOnly);
    std::string why = "its value is refused";
    if (explanation.limit) why += ", " + shown(*explanation.limit);
    return why;
  }

  Transaction& transaction_;
  StagedValues first_;   // what the values without dependents are judged with
  StagedValues copies_;  // what the commit would leave
  std::map<std::string, std::optional<SetCode>> staged_;  // what became of each staged value
  std::map<std::string, Refused> refused_;                // by full name
  std::map<std::string, Tried> changes_;                  // by full name
  std::set<std::string> unreported_;                      // "rostrict" instances that change
};

}  // namespace

int preview(Transaction& transaction, Preview& out) { return Previewing(transaction).run(out); }

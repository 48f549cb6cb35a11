#include <algorithm>

#include "check/proof/questions.h"
#include "check/static/token_place.h"
#include "database/commit.h"
#include "database/index_values.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MANY_RELATED = 8;
// Of a parameter, and of all together.
constexpr uint64_t MANY_INSTANCES = 20'000;
constexpr uint64_t MANY_INSTANCES_IN_ALL = 200'000;
// Of the start and all that follows: about a second.
constexpr uint64_t START_WORK = 1'000'000'000;

// What an instance holds, by name.
using Held = std::map<std::string, std::string>;

class Start {
 public:
  Start(Proof& proof, const Explained& explained)
      : proof_(proof), explained_(explained), database_(proof.text().database()) {}

  void run() {
    std::optional<Finding> finding;
    const bool isDone = proof_.ask([&] { finding = ask(); }, START_WORK);
    database_.forgetValues();
    if (finding) {
      proof_.add(*std::move(finding));
    } else if ((!isDone || !isAsked_) && !proof_.hasFound("over-budget")) {
      proof_.addUndecided({"unsettled", {}, "some parameter does not come to rest"});
    }
  }

 private:
  std::optional<Finding> ask() {
    database_.forgetValues();
    resetAll();
    const Held started = held();
    commitAgain(started);
    const Held again = held();
    // A round that was cut short leaves what it has not come to.
    if (proof_.isOver()) isAsked_ = false;
    return proof_.isOver() ? std::nullopt : findingOf(started, again);
  }

  void resetAll() {
    uint64_t left = MANY_INSTANCES_IN_ALL;
    for (const Subject& subject : proof_.text().subjects()) {
      if (subject.parm == nullptr) continue;
      std::vector<std::string>& names = names_[&subject];
      const uint64_t count = countInstances(subject.parm->parm);
      if (count > std::min(left, MANY_INSTANCES)) {
        isAsked_ = false;
        continue;
      }
      left -= count;
      forEachInstance(database_, subject.parm->parm, [&](const IndexTuple& indices) {
        names.push_back(fullName(subject.name(), indices));
      });
    }
    // Plain names first, each level after what it follows: so no value is judged too early.
    std::map<std::pair<bool, uint32_t>, std::vector<std::string>> rounds;
    for (const auto& [subject, names] : names_) {
      auto& round = rounds[{!subject->parm->parm.indices().empty(), subject->parm->level}];
      round.insert(round.end(), names.begin(), names.end());
    }
    for (const auto& [order, names] : rounds) {
      if (proof_.isOver()) return;
      Transaction transaction(database_);
      for (const std::string& name : names) static_cast<void>(transaction.reset(name, true));
      commitRound(transaction);
    }
  }

  void commitRound(Transaction& transaction) {
    std::vector<Change> changes;
    if (commit(transaction, changes) == COMMIT_TOO_LARGE) isAsked_ = false;
  }

  // Sets everything to what it holds, in one commit of each level.
  void commitAgain(const Held& values) {
    std::map<uint32_t, std::vector<const Subject*>> levels;
    for (const auto& [subject, names] : names_) levels[subject->parm->level].push_back(subject);
    for (const auto& [level, subjects] : levels) {
      if (proof_.isOver()) return;
      Transaction transaction(database_);
      for (const Subject* subject : subjects) {
        for (const std::string& name : names_[subject]) {
          const std::string& value = values.at(name);
          if (!value.empty()) static_cast<void>(transaction.set(name, value, true));
        }
      }
      commitRound(transaction);
    }
  }

  Held held() {
    Held values;
    const Transaction reader(database_);
    for (const auto& [subject, names] : names_) {
      for (const std::string& name : names) {
        const std::string* const value = reader.find(name);
        values[name] = value == nullptr ? std::string() : *value;
      }
    }
    return values;
  }

  // The first one that does not rest, and beside it the others: they mostly move one another.
  std::optional<Finding> findingOf(const Held& started, const Held& again) {
    std::optional<Finding> finding;
    const std::set<const ParmEntry*> told = tellOfTexts(started, again);
    for (const Subject& subject : proof_.text().subjects()) {
      const std::string* const name = firstMoved(subject, started, again);
      if (name == nullptr || told.contains(subject.parm)) continue;
      const std::string moved = *name + (finding ? " goes on as well" : " does not come to rest") +
                                motionText(*name, started, again);
      if (!finding) {
        finding = Finding{"unsettled", placeOfName(subject), moved};
      } else if (finding->related.size() < MANY_RELATED) {
        finding->related.push_back({placeOfName(subject), moved});
      }
    }
    return finding;
  }

  // The parameters, each after what it follows.
  std::vector<const Subject*> inLevels() const {
    std::vector<const Subject*> subjects;
    for (const Subject& subject : proof_.text().subjects()) {
      if (subject.parm != nullptr) subjects.push_back(&subject);
    }
    std::stable_sort(subjects.begin(), subjects.end(), [](const Subject* a, const Subject* b) {
      return a->parm->level < b->parm->level;
    });
    return subjects;
  }

  // Says where a text that is never kept is told of what it does not let come to rest, and what
  // follows that.
  std::set<const ParmEntry*> tellOfTexts(const Held& started, const Held& again) {
    std::set<const ParmEntry*> told;
    for (const Subject* subject : inLevels()) {
      const std::string* const name = firstMoved(*subject, started, again);
      if (name == nullptr) continue;
      const CompiledItem* const item = explained_.explainedText(*subject);
      Finding* const finding = item == nullptr ? nullptr : findingAt(*item);
      if (finding != nullptr) {
        finding->level = LEVEL_ERROR;
        finding->related.push_back(
            {placeOfName(*subject),
             "so " + *name + " does not come to rest" + motionText(*name, started, again)});
      }
      const auto& sources = subject->parm->sources;
      const bool follows =
          std::any_of(sources.begin(), sources.end(),
                      [&](const VariableSource& source) { return told.contains(source.parm); });
      if (finding != nullptr || follows) told.insert(subject->parm);
    }
    return told;
  }

  Finding* findingAt(const CompiledItem& item) {
    const SourceText& source = proof_.text().checked().source;
    return proof_.found("quoted-number", valuePlace(source, item.at));
  }

  static std::string motionText(const std::string& name, const Held& started, const Held& again) {
    return ": after the start it is \"" + started.at(name) + "\", and \"" + again.at(name) +
           "\" after the same values are set again";
  }

  // The first instance that the second round has moved, or null.
  const std::string* firstMoved(const Subject& subject, const Held& started, const Held& again) {
    if (subject.parm == nullptr) return nullptr;
    const std::vector<std::string>& names = names_[&subject];
    const auto moved = std::find_if(names.begin(), names.end(), [&](const std::string& name) {
      return started.at(name) != again.at(name);
    });
    return moved == names.end() ? nullptr : &*moved;
  }

  Proof& proof_;
  const Explained& explained_;
  Database& database_;
  std::map<const Subject*, std::vector<std::string>> names_;
  bool isAsked_ = true;  // of every parameter, in both rounds
};

}  // namespace

void askStart(Proof& proof, const Explained& explained) { Start(proof, explained).run(); }

#include "check/proof/limited.h"
#include "check/proof/questions.h"
#include "database/commit.h"
#include "database/index_values.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MANY_RELATED = 8;
constexpr uint64_t MANY_INSTANCES = 20'000;
// Of the start and all that follows: about a second.
constexpr uint64_t START_WORK = 1'000'000'000;

std::vector<std::string> instanceNames(const Subject& subject, Database& database) {
  std::vector<std::string> names;
  if (countInstances(subject.parm->parm) > MANY_INSTANCES) return names;
  forEachInstance(database, subject.parm->parm, [&](const IndexTuple& indices) {
    names.push_back(fullName(subject.name(), indices));
  });
  return names;
}

// What an instance holds, by name.
using Held = std::map<std::string, std::string>;

class Start {
 public:
  explicit Start(Proof& proof) : proof_(proof), database_(proof.text().database()) {}

  void run() {
    database_.forgetValues();
    const bool isDone = doWithin(START_WORK, [&] {
      resetAll();
      const Held started = held();
      commitAgain(started);
      tell(started, held());
    });
    database_.forgetValues();
    if (!isDone) tellUndecided();
  }

 private:
  void resetAll() {
    for (const Subject& subject : proof_.text().subjects()) {
      if (subject.parm == nullptr) continue;
      names_[&subject] = instanceNames(subject, database_);
    }
    // Plain names first, each level after what it follows: so no value is judged too early.
    std::map<std::pair<bool, uint32_t>, std::vector<std::string>> rounds;
    for (const auto& [subject, names] : names_) {
      auto& round = rounds[{!subject->parm->parm.indices().empty(), subject->parm->level}];
      round.insert(round.end(), names.begin(), names.end());
    }
    for (const auto& [order, names] : rounds) {
      Transaction transaction(database_);
      for (const std::string& name : names) static_cast<void>(transaction.reset(name, true));
      std::vector<Change> changes;
      static_cast<void>(commit(transaction, changes));
    }
  }

  // Sets everything to what it holds, in one commit of each level.
  void commitAgain(const Held& values) {
    std::map<uint32_t, std::vector<const Subject*>> levels;
    for (const auto& [subject, names] : names_) levels[subject->parm->level].push_back(subject);
    for (const auto& [level, subjects] : levels) {
      Transaction transaction(database_);
      for (const Subject* subject : subjects) {
        for (const std::string& name : names_[subject]) {
          const std::string& value = values.at(name);
          if (!value.empty()) static_cast<void>(transaction.set(name, value, true));
        }
      }
      std::vector<Change> changes;
      static_cast<void>(commit(transaction, changes));
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

  void tellUndecided() {
    const auto& subjects = proof_.text().subjects();
    const auto first = std::find_if(subjects.begin(), subjects.end(),
                                    [](const Subject& subject) { return subject.parm != nullptr; });
    if (first == subjects.end()) return;
    proof_.addUndecided({"unsettled", placeOfName(*first),
                         "whether the device comes to rest after its start takes too long to find "
                         "out"});
  }

  // Tells the first one that does not rest, and beside it the others: they mostly move one another.
  void tell(const Held& started, const Held& again) {
    std::optional<Finding> finding;
    for (const Subject& subject : proof_.text().subjects()) {
      const std::string* const name = firstMoved(subject, started, again);
      if (name == nullptr) continue;
      const std::string moved = *name + (finding ? " goes on as well" : " does not come to rest") +
                                ": after the start it is \"" + started.at(*name) + "\", and \"" +
                                again.at(*name) + "\" after the same values are set again";
      if (!finding) {
        finding = Finding{"unsettled", placeOfName(subject), moved};
      } else if (finding->related.size() < MANY_RELATED) {
        finding->related.push_back({placeOfName(subject), moved});
      }
    }
    if (finding) proof_.add(*std::move(finding));
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

  TextPlace placeOfName(const Subject& subject) const {
    const Position at = proof_.text().checked().text.layout.nameOf(*subject.record);
    return {at.line, at.column, static_cast<uint32_t>(subject.name().size())};
  }

  Proof& proof_;
  Database& database_;
  std::map<const Subject*, std::vector<std::string>> names_;
};

}  // namespace

void askStart(Proof& proof) { Start(proof).run(); }

#include <algorithm>

#include "check/proof/questions.h"
#include "check/proof/replay.h"
#include "check/proof/resting.h"
#include "check/proof/start_order.h"
#include "check/static/token_place.h"
#include "database/index_values.h"
#include "sw/parm/parm_name.h"

namespace {

// Of a parameter, and of all together.
constexpr uint64_t MANY_INSTANCES = 20'000;
constexpr uint64_t MANY_INSTANCES_IN_ALL = 200'000;
// Of the start and all that follows: about a second.
constexpr uint64_t START_WORK = 1'000'000'000;

constexpr std::string_view AFTER_START = "after the start";

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
    const NamedValues started = heldValues(names_, database_);
    if (!commitAgain(started, database_, proof_.deadline())) isAsked_ = false;
    Motions motions = motionsBetween(started, heldValues(names_, database_));
    // A round that was cut short leaves what it has not come to.
    if (proof_.isOver()) {
      isAsked_ = false;
      return std::nullopt;
    }
    tellOfTexts(motions);
    return findRestless(proof_.text(), motions, AFTER_START);
  }

  void resetAll() {
    std::map<StartRound, std::vector<std::string>> rounds;
    uint64_t left = MANY_INSTANCES_IN_ALL;
    for (const Subject& subject : proof_.text().subjects()) {
      if (subject.parm == nullptr) continue;
      const uint64_t count = countInstances(subject.parm->parm);
      if (count > std::min(left, MANY_INSTANCES)) {
        isAsked_ = false;
        continue;
      }
      left -= count;
      auto& round = rounds[startRoundOf(*subject.parm)];
      forEachInstance(database_, subject.parm->parm, [&](const IndexTuple& indices) {
        round.push_back(fullName(subject.name(), indices));
      });
    }
    for (const auto& [order, names] : rounds) {
      names_.insert(names_.end(), names.begin(), names.end());
      if (!proof_.isOver() && !resetTogether(names, database_, proof_.deadline())) isAsked_ = false;
    }
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

  // Says where a text that is never kept is told of what it does not let come to rest, and takes
  // that out of `motions`, with what follows it.
  void tellOfTexts(Motions& motions) {
    std::set<const ParmEntry*> told;
    for (const Subject* subject : inLevels()) {
      const auto motion = motions.find(subject->name());
      if (motion == motions.end()) continue;
      const CompiledItem* const item = explained_.explainedText(*subject);
      Finding* const finding = item == nullptr ? nullptr : findingAt(*item);
      if (finding != nullptr) {
        finding->level = LEVEL_ERROR;
        finding->related.push_back(
            {placeOfName(*subject), "so " + restlessText(motion->second, AFTER_START)});
      }
      const bool follows = std::ranges::any_of(
          subject->parm->sources,
          [&](const VariableSource& source) { return told.contains(source.parm); });
      if (finding == nullptr && !follows) continue;
      told.insert(subject->parm);
      motions.erase(motion);
    }
  }

  Finding* findingAt(const CompiledItem& item) {
    const SourceText& source = proof_.text().checked().source;
    return proof_.found("quoted-number", valuePlace(source, item.at));
  }

  Proof& proof_;
  const Explained& explained_;
  Database& database_;
  std::vector<std::string> names_;  // of all instances
  bool isAsked_ = true;             // of every parameter, in both rounds
};

}  // namespace

void askStart(Proof& proof, const Explained& explained) { Start(proof, explained).run(); }

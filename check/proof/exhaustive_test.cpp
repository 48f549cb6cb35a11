// Random small texts, walked through completely: what the proofs say of all situations against the
// situations themselves.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <deque>
#include <random>
#include <tuple>

#include "base/system_log.h"
#include "check/proof/anywhere.h"
#include "check/proof/cone_solver.h"
#include "check/proof/healthy.h"
#include "check/proof/random_definitions.h"
#include "check/proof/solver.h"
#include "database/commit.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "database/index_values.h"
#include "database/transaction.h"
#include "sw/parm/parm_name.h"
#include "tests/support/random_count.h"
#include "vid_std.h"

namespace {

// Every value that a walk tries. Those of the random texts are among them, and a few beyond.
const std::vector<std::string> VALUES = {"",  "-1", "0", "1",   "2", "3",
                                         "4", "a",  "b", "0x1", "~", "1~"};
// Those for texts of more instances, and for changes one after the other.
const std::vector<std::string> FEW_VALUES = {"", "0", "1", "2", "3", "a"};
const std::vector<std::string> RING_VALUES = {"", "-1", "0", "1", "2", "4", "a"};

// A number that the environment may give.
unsigned wantedNumber(const char* name, unsigned otherwise) {
  const char* const wanted = std::getenv(name);
  return wanted == nullptr ? otherwise : static_cast<unsigned>(std::atoi(wanted));
}

// Fewer do not have every kind of goal.
constexpr uint32_t FEWEST_TEXTS = 40;

// How many texts are made, and the number that the first is made from.
unsigned textCount() {
  return wantedNumber("RANDOM_TEXTS", std::max(randomCount(150), FEWEST_TEXTS));
}
unsigned firstSeed() { return wantedNumber("RANDOM_FIRST", 0); }

// A text that the engine has built.
struct BuiltText {
  explicit BuiltText(std::string text) : source("random", std::move(text)) {
    readText(source, read, findings);
    variant = buildVariant(source, read, {}, findings);
  }

  SourceText source;
  ReadText read;
  Findings findings;
  ConstantChoices choices;
  Variant variant;
};

// An instance of a parameter.
struct WalkInstance {
  ParmEntry* parm;
  IndexTuple indices;
  bool operator==(const WalkInstance&) const = default;
  bool operator<(const WalkInstance& other) const {
    return std::tie(parm, indices) < std::tie(other.parm, other.indices);
  }
};

// Who evaluates the expressions of a goal: an instance that sees its first `seen` index values, or
// an index by itself.
struct Reading {
  ParmEntry* parm = nullptr;
  IndexTuple indices = {};
  size_t seen = 0;
};

// More of them take too long to walk through.
constexpr size_t MANY_INSTANCES = 5;
// So do more situations, and more that changes lead to: in a ring values can lead to ever new ones.
// What is met in some of them is met.
constexpr size_t MANY_SITUATIONS = 20'000;
constexpr size_t MANY_REACHED = 1'000;
// Of so many changes, one sets two values together.
constexpr size_t SET_TOGETHER = 2;
// What clients stage beside the values that definitions take: it is read before it is corrected.
const std::vector<std::string> WRONG_VALUES = {"9", "-7", "~"};
// So many commits of several values are made of each situation of a ring.
constexpr size_t COMMITS_OF_A_SITUATION = 8;

// The situations of a text: each instance with each value.
class Walk {
 public:
  explicit Walk(Database& database) : database_(database) {
    for (ParmEntry* const parm : database.parmsInNameOrder()) {
      for (const IndexTuple& indices : tuplesOf(*parm)) instances_.push_back({parm, indices});
    }
  }

  // Calls `visit` with every combination of the values of `of`, set on the engine unchecked.
  template <typename Visit>
  void run(const std::vector<std::vector<std::string>>& of, const Visit& visit, size_t place = 0) {
    if (place == instances_.size()) {
      visit();
      return;
    }
    const WalkInstance& instance = instances_[place];
    for (const std::string& value : of[place]) {
      instance.parm->parm.store(instance.indices, value);
      run(of, visit, place + 1);
    }
    instance.parm->parm.store(instance.indices, "");
  }

  // What setting `value` now would leave; nullopt where it is refused.
  static std::optional<std::string> kept(const WalkInstance& instance, std::string value) {
    if (!isAccepted(trySetting(instance, value))) return std::nullopt;
    return value;
  }

  // Whether every one of `cone` is set and keeps its value.
  static bool isHealthy(const std::set<WalkInstance>& cone) {
    return std::all_of(cone.begin(), cone.end(), keepsItsValue);
  }

  // Whether every one of `cone` is so, or is not there.
  static bool isAtRest(const std::set<WalkInstance>& cone) {
    return std::all_of(cone.begin(), cone.end(), [](const WalkInstance& instance) {
      return isAbsent(instance) || keepsItsValue(instance);
    });
  }

  [[nodiscard]] const std::vector<WalkInstance>& instances() const { return instances_; }
  [[nodiscard]] bool hasAll(const std::set<WalkInstance>& cone) const {
    return std::all_of(cone.begin(), cone.end(), [&](const WalkInstance& instance) {
      return std::find(instances_.begin(), instances_.end(), instance) != instances_.end();
    });
  }

  // What the changes that clients can make lead to, from the defaults on: the values of `of`. Of
  // too many the first.
  std::set<std::vector<std::string>> reachedFromDefaults(const std::vector<WalkInstance>& of,
                                                         const std::vector<std::string>& values,
                                                         Staging staging) {
    std::set<std::vector<std::string>> reached;
    std::deque<std::vector<std::string>> open = {startOf(of, false), startOf(of, true)};
    while (!open.empty() && reached.size() < MANY_REACHED) {
      const std::vector<std::string> state = open.front();
      open.pop_front();
      if (!reached.insert(state).second) continue;
      for (const WalkInstance& moved : of) {
        for (const std::string& value : values) {
          put(of, state);
          Transaction transaction(database_);
          const bool force = staging == STAGED_ALONE || random_() % 2 == 0;
          static_cast<void>(transaction.set(nameOf(moved), value, force));
          // Now and then with another one, which is read as it was set until it is judged.
          if (staging == STAGED_TOGETHER && random_() % SET_TOGETHER == 0) {
            const std::string& other = values[random_() % values.size()];
            static_cast<void>(transaction.set(nameOf(of[random_() % of.size()]), other, force));
          }
          commitAll(transaction);
          open.push_back(heldBy(of));
        }
      }
    }
    database_.forgetValues();
    return reached;
  }

  // Calls `visit` after each of some commits of several values, whatever these are; what was set
  // before is set again afterwards.
  template <typename Visit>
  void commitTogether(const std::vector<std::string>& values, const Visit& visit) {
    const std::vector<std::string> before = heldBy(instances_);
    for (size_t i = 0; i < COMMITS_OF_A_SITUATION; ++i) {
      Transaction transaction(database_);
      for (const WalkInstance& instance : instances_) stageAny(instance, values, transaction);
      commitAll(transaction);
      visit();
      put(instances_, before);
    }
  }

  static SetCode trySetting(const WalkInstance& instance, std::string& value) {
    StagedEntry entry;
    entry.parm = instance.parm;
    entry.indices = instance.indices;
    entry.value.set(value);
    entry.generated = true;
    const StagedValues staged;
    IndexSituations situations(staged);
    const SetCode code = evaluate(entry, situations, true);
    value = entry.value.text();
    return code;
  }

  static bool isAbsent(const WalkInstance& instance) {
    std::string value;
    const SetCode code = trySetting(instance, value);
    return code == SET_NOT_STORED || code == SET_INVALID_INDEX;
  }

  static bool keepsItsValue(const WalkInstance& instance) {
    const std::string held = instance.parm->parm.committedText(instance.indices);
    return !held.empty() && kept(instance, held) == held;
  }

  // Sets values unchecked, and takes all others away.
  void put(const std::vector<WalkInstance>& of, const std::vector<std::string>& values) {
    database_.forgetValues();
    for (size_t i = 0; i < of.size(); ++i) of[i].parm->parm.store(of[i].indices, values[i]);
  }

 private:
  std::vector<IndexTuple> tuplesOf(const ParmEntry& parm) {
    std::vector<IndexTuple> tuples = {{}};
    for (IndexEntry* const index : parm.indices->own) {
      // Without a range that always counts, whatever a client names is looked at.
      std::vector<std::string> values = indexValues(*index);
      if (values.empty()) values = {"1", "2", "3"};
      std::vector<IndexTuple> longer;
      for (const IndexTuple& tuple : tuples) {
        for (const std::string& value : values) {
          longer.push_back(tuple);
          longer.back().push_back(value);
        }
      }
      tuples = std::move(longer);
    }
    return tuples;
  }

  static std::string nameOf(const WalkInstance& instance) {
    return fullName(instance.parm->parm.name(), instance.indices);
  }

  static void commitAll(Transaction& transaction) {
    std::vector<Change> changes;
    static_cast<void>(commit(transaction, changes));
  }

  // Stages any of `values`, a wrong one, a reset or nothing, with a client's force or without.
  void stageAny(const WalkInstance& instance, const std::vector<std::string>& values,
                Transaction& transaction) {
    const std::vector<std::string>& offered = random_() % 2 == 0 ? values : WRONG_VALUES;
    const bool force = random_() % 2 == 0;
    switch (random_() % 6) {
      case 0:
        return;
      case 1:
        static_cast<void>(transaction.reset(nameOf(instance), force));
        return;
      default:
        static_cast<void>(
            transaction.set(nameOf(instance), offered[random_() % offered.size()], force));
    }
  }

  static std::vector<std::string> heldBy(const std::vector<WalkInstance>& of) {
    std::vector<std::string> values;
    values.reserve(of.size());
    for (const WalkInstance& instance : of) {
      values.push_back(instance.parm->parm.committedText(instance.indices));
    }
    return values;
  }

  // What a reset leaves, of all in one commit or one by one.
  std::vector<std::string> startOf(const std::vector<WalkInstance>& of, bool together) {
    database_.forgetValues();
    Transaction transaction(database_);
    for (const WalkInstance& instance : of) {
      static_cast<void>(transaction.reset(nameOf(instance), true));
      if (!together) commitAll(transaction);
    }
    commitAll(transaction);
    return heldBy(of);
  }

  Database& database_;
  std::vector<WalkInstance> instances_;
  std::minstd_rand random_;
};

IndexTuple indicesFor(const Reading& reading, const VariableSource& source) {
  return reading.parm == nullptr ? source.indices
                                 : indicesOf(source, reading.parm->parm, reading.indices);
}

// The value of an expression in what is set now.
Value evaluateNow(const CompiledExpression& expression, const Reading& reading) {
  Situation situation(expression.variables.size());
  const StagedValues staged;
  for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
    const VariableSource& source = expression.sources[slot];
    if (source.parm != nullptr) {
      situation.bind(slot, valueOf(source, indicesFor(reading, source), staged));
      continue;
    }
    for (size_t i = 0; i < reading.seen; ++i) {
      const bool isOwn = reading.parm->parm.indices()[i]->name() == source.name;
      if (isOwn) situation.bind(slot, operandOf(reading.indices[i]));
    }
  }
  return expression.program.evaluate(situation);
}

bool holdsNow(const Goal& goal, const Reading& reading) {
  const auto evaluate = [&](const CompiledExpression& e) { return evaluateNow(e, reading); };
  return std::all_of(goal.clauses.begin(), goal.clauses.end(), [&](const Clause& clause) {
    return std::any_of(clause.begin(), clause.end(),
                       [&](const Wish& wish) { return comesTrue(wish, evaluate); });
  });
}

// Whether the index values of a reading are accepted, up to the index that reads.
bool existsNow(const Goal& goal, const Reading& reading) {
  const StagedValues staged;
  IndexSituations situations(staged);
  if (reading.parm == nullptr) return true;
  Situation own = gather(*reading.parm, reading.indices, staged);
  for (size_t i = 0; i < reading.indices.size(); ++i) {
    if (reading.parm->indices->own[i] == goal.subject->index) return true;
    PresentIndex& index = situations.at(*reading.parm, reading.indices, i, own);
    if (!index.isAvailable() || !index.takes(reading.indices[i])) return false;
    reading.parm->parm.bindIndex(own, i, reading.indices[i]);
  }
  return true;
}

// Calls `look` with each name that the value of `parm` follows.
template <typename Look>
void forEachMover(const CompiledText& text, const ParmEntry& parm, const Look& look) {
  const Subject& subject = *text.find(parm.parm.name());
  for (const auto* statements : {&subject.rangeValid, &subject.ctrlValid}) {
    for (const CompiledStatement& statement : *statements) {
      forEachExpression(statement, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) look(source);
      });
    }
  }
}

// All that the goal follows, directly or through others: by what moves values, or by all that
// definitions read.
std::set<WalkInstance> coneOf(const Goal& goal, const Reading& reading, const CompiledText& text,
                              bool readsAll) {
  std::vector<WalkInstance> open;
  const auto look = [&](const VariableSource& source, const Reading& reader) {
    if (source.parm == nullptr) return;
    const IndexTuple indices = indicesFor(reader, source);
    if (indices.size() == source.parm->parm.indices().size()) {
      open.push_back({source.parm, indices});
    }
  };
  const auto lookAtIndices = [&](const Reading& reader) {
    if (reader.parm == nullptr) return;
    for (const IndexEntry* const index : reader.parm->indices->own) {
      for (const VariableSource& source : index->sources) look(source, reader);
    }
  };
  for (const Clause& clause : goal.clauses) {
    for (const Wish& wish : clause) {
      forEachExpression(wish, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) look(source, reading);
      });
    }
  }
  lookAtIndices(reading);
  std::set<WalkInstance> cone;
  while (!open.empty()) {
    const WalkInstance instance = open.back();
    open.pop_back();
    if (!cone.insert(instance).second) continue;
    const Reading own = {instance.parm, instance.indices, 0};
    if (readsAll) {
      for (const VariableSource& source : instance.parm->sources) look(source, own);
    } else {
      forEachMover(text, *instance.parm, [&](const VariableSource& source) { look(source, own); });
    }
    lookAtIndices(own);
  }
  return cone;
}

// Whether values refer to each other: only they are on one level.
bool hasRing(const std::set<WalkInstance>& cone, const CompiledText& text) {
  return std::any_of(cone.begin(), cone.end(), [&](const WalkInstance& instance) {
    const ParmEntry& parm = *instance.parm;
    bool refersBack = false;
    const auto look = [&](const VariableSource& source) {
      refersBack = refersBack || (source.parm != nullptr && source.parm->level >= parm.level);
    };
    forEachMover(text, parm, look);
    for (const IndexEntry* const index : parm.indices->own) {
      for (const VariableSource& source : index->sources) look(source);
    }
    return refersBack;
  });
}

// All goals that the questions could ask of the conditions and values of one definition.
std::vector<Goal> goalsOf(const Subject& subject) {
  std::vector<Goal> goals;
  const CompiledExpression* previous = nullptr;
  for (const auto* statements : {&subject.rangeValid, &subject.ctrlValid, &subject.defaults}) {
    const size_t first = goals.size();
    for (const CompiledStatement& statement : *statements) {
      if (statement.condition) {
        const CompiledExpression* const condition = &*statement.condition;
        goals.push_back({&subject, {{{condition, WANT_TRUE}}}});
        goals.push_back({&subject, {{{condition, WANT_UNTRUE}}}});
        if (previous != nullptr) {
          goals.push_back({&subject, {{{condition, WANT_TRUE}}, {{previous, WANT_UNTRUE}}}});
          goals.push_back({&subject, {{{condition, WANT_UNTRUE}}, {{previous, WANT_UNTRUE}}}});
        }
        previous = condition;
      }
      for (const CompiledItem& item : statement.items) {
        if (item.lower) goals.push_back({&subject, {{{&*item.lower, WANT_MISSING}}}});
        if (item.upper) goals.push_back({&subject, {{{&*item.lower, WANT_ABOVE, &*item.upper}}}});
      }
    }
    for (size_t i = first; i < goals.size(); ++i) {
      goals[i].seesIndices = statements != &subject.ctrlValid;
    }
    if (!subject.ctrlValid.empty()) previous = nullptr;
  }
  return goals;
}

// The solver takes its time: one goal of so many is put to it.
constexpr size_t GOALS_PER_SOLUTION = 5;

// How often the proofs had an answer.
struct Tally {
  size_t built = 0;
  size_t large = 0;  // texts that were left out: with too many instances
  size_t cut = 0;    // texts of which some walk was not complete
  size_t goals = 0;
  size_t possible = 0;
  size_t impossible = 0;
  size_t healthy = 0;
  size_t unhealthy = 0;
  size_t never = 0;  // not even where something is absent
  size_t solutions = 0;
  size_t solved = 0;
};

class Comparison {
 public:
  Comparison(const BuiltText& built, TextKind kind, Tally& tally)
      : checked_{built.source, built.read, built.choices, built.variant},
        text_(checked_),
        domains_(text_),
        walk_(text_.database()),
        kind_(kind),
        values_(kind == PLAIN_TEXT          ? VALUES
                : kind == TEXT_WITH_INDICES ? FEW_VALUES
                                            : RING_VALUES),
        tally_(tally) {}

  void run() {
    if (walk_.instances().size() > MANY_INSTANCES) {
      ++tally_.large;
      return;
    }
    findHeldValues();
    for (const Subject& subject : text_.subjects()) {
      for (const Goal& goal : goalsOf(subject)) {
        const std::vector<Reading> readings = readingsOf(goal);
        compareAnywhere(goal, readings);
        compareHealthy(goal, readings);
      }
    }
    tally_.cut += isCut_ ? 1 : 0;
  }

 private:
  // Every value that an instance comes to hold while the others hold what they come to hold.
  void findHeldValues() {
    held_.assign(walk_.instances().size(), {""});
    for (bool grows = true; grows;) {
      grows = false;
      const std::vector<std::vector<std::string>> before = held_;
      std::vector<std::set<std::string>> found(held_.size());
      walk_.run(held_, [&] {
        for (size_t i = 0; i < held_.size(); ++i) {
          for (const std::string& value : values_) {
            if (const auto kept = Walk::kept(walk_.instances()[i], value)) found[i].insert(*kept);
          }
        }
        if (kind_ == TEXT_WITH_RING) addHeldAfterCommits(found);
      });
      for (size_t i = 0; i < held_.size(); ++i) {
        found[i].insert(held_[i].begin(), held_[i].end());
        grows = grows || found[i].size() > held_[i].size();
        held_[i].assign(found[i].begin(), found[i].end());
      }
      size_t situations = 1;
      for (const std::vector<std::string>& values : held_) situations *= values.size();
      if (situations > MANY_SITUATIONS) {
        held_ = before;
        isCut_ = true;
        break;
      }
    }
    for (size_t i = 0; i < held_.size(); ++i) {
      const std::string& name = walk_.instances()[i].parm->parm.name();
      for (const std::string& value : held_[i]) {
        EXPECT_TRUE(domains_.of(text_.database().findSource(name)).values.contains(value))
            << name << " holds \"" << value << "\"";
      }
    }
  }

  // Adds what commits of several values leave: in a ring, one is judged by the other as it was
  // staged.
  void addHeldAfterCommits(std::vector<std::set<std::string>>& found) {
    walk_.commitTogether(values_, [&] {
      for (size_t i = 0; i < found.size(); ++i) {
        const auto& [parm, indices] = walk_.instances()[i];
        found[i].insert(parm->parm.committedText(indices));
      }
    });
  }

  [[nodiscard]] std::vector<Reading> readingsOf(const Goal& goal) const {
    const Subject& subject = *goal.subject;
    std::vector<Reading> readings;
    for (const auto& [parm, indices] : walk_.instances()) {
      if (parm == subject.parm) {
        readings.push_back({parm, indices, goal.seesIndices ? indices.size() : 0});
        continue;
      }
      const std::vector<IndexEntry*>& own = parm->indices->own;
      const auto place = std::find(own.begin(), own.end(), subject.index);
      if (subject.index == nullptr || subject.index->isShared || place == own.end()) continue;
      readings.push_back({parm, indices, static_cast<size_t>(place - own.begin())});
    }
    if (readings.empty()) readings.emplace_back();
    return readings;
  }

  void compareAnywhere(const Goal& goal, const std::vector<Reading>& readings) {
    bool isMet = false;
    walk_.run(held_, [&] {
      for (const Reading& reading : readings) isMet = isMet || holdsNow(goal, reading);
    });
    const AnywhereResult result = decideAnywhere(goal, domains_, THIS_VARIANT);
    ++tally_.goals;
    tally_.possible += result.verdict == VERDICT_POSSIBLE ? 1 : 0;
    tally_.impossible += result.verdict == VERDICT_IMPOSSIBLE ? 1 : 0;
    EXPECT_FALSE(isMet && result.verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    // The names of instances may have values there that exclude each other.
    if (kind_ == TEXT_WITH_INDICES) return;
    if (tally_.goals % GOALS_PER_SOLUTION == 0) compareSolver(goal, isMet);
    if (result.verdict != VERDICT_POSSIBLE) return;
    for (const auto& [name, value] : result.assignment) {
      text_.database().findParm(name)->parm.store({}, value.value_or(""));
      EXPECT_TRUE(domains_.of(text_.database().findSource(name)).values.contains(*value));
    }
    EXPECT_TRUE(holdsNow(goal, readings.front())) << describe(goal);
    text_.database().forgetValues();
  }

  // The solver by itself, also where the other ways have an answer.
  void compareSolver(const Goal& goal, bool isMet) {
    SolverQuestion question;
    for (const WalkInstance& instance : walk_.instances()) {
      const std::string& name = instance.parm->parm.name();
      question.declare(name, domains_.of(text_.database().findSource(name)));
    }
    for (const Clause& clause : goal.clauses) {
      question.require(clause,
                       [](const VariableSource& source) { return std::string(source.name); });
    }
    const Verdict verdict = question.solve().verdict;
    EXPECT_FALSE(isMet && verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    ++tally_.solutions;
    tally_.solved += verdict == VERDICT_UNDECIDED ? 0 : 1;
  }

  void compareHealthy(const Goal& goal, const std::vector<Reading>& readings) {
    bool isMet = false;
    for (const Reading& reading : readings) {
      const bool isMetFor = isMetAtRest(goal, reading, false);
      if (tally_.goals % GOALS_PER_SOLUTION == 0) compareConeSolver(goal, reading, isMetFor);
      isMet = isMet || isMetFor;
    }
    const HealthyResult result = findHealthy(goal, text_, domains_);
    tally_.healthy += result.verdict == VERDICT_POSSIBLE ? 1 : 0;
    tally_.unhealthy += result.verdict == VERDICT_IMPOSSIBLE ? 1 : 0;
    EXPECT_FALSE(isMet && result.verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    if (result.atRest() == VERDICT_IMPOSSIBLE) {
      ++tally_.never;
      for (const Reading& reading : readings) {
        EXPECT_FALSE(isMetAtRest(goal, reading, true)) << describe(goal);
      }
    }
    if (result.verdict == VERDICT_POSSIBLE) expectWitness(goal, readings, result.witness);
  }

  // Whether a device meets the goal on which everything is there and keeps its value; with
  // `hasAbsent`, what is not there may hold an old value, or nothing, and values may be set
  // together.
  bool isMetAtRest(const Goal& goal, const Reading& reading, bool hasAbsent) {
    std::set<WalkInstance> cone = coneOf(goal, reading, text_, false);
    const bool isRing = hasRing(cone, text_);
    // What they have at the start depends on their defaults.
    if (isRing) cone = coneOf(goal, reading, text_, true);
    if (!walk_.hasAll(cone)) return false;
    const auto isMetNow = [&] {
      return holdsNow(goal, reading) && existsNow(goal, reading) &&
             (hasAbsent ? Walk::isAtRest(cone) : Walk::isHealthy(cone));
    };
    bool isMet = false;
    if (isRing) {
      const std::vector<WalkInstance> of(cone.begin(), cone.end());
      // Values that were set together may hold each other: that is no fault by itself.
      const Staging staging = hasAbsent ? STAGED_TOGETHER : STAGED_ALONE;
      auto [reached, isNew] = reached_.try_emplace({cone, staging});
      if (isNew) reached->second = walk_.reachedFromDefaults(of, values_, staging);
      isCut_ = isCut_ || reached->second.size() >= MANY_REACHED;
      for (const std::vector<std::string>& state : reached->second) {
        walk_.put(of, state);
        isMet = isMet || isMetNow();
      }
      text_.database().forgetValues();
      return isMet;
    }
    std::vector<std::vector<std::string>> values;
    for (size_t i = 0; i < walk_.instances().size(); ++i) {
      if (!cone.contains(walk_.instances()[i])) {
        values.push_back({""});
      } else {
        values.push_back(hasAbsent ? held_[i] : values_);
      }
    }
    walk_.run(values, [&] { isMet = isMet || isMetNow(); });
    return isMet;
  }

  // The solver for the cone of one reader, also where the search has an answer.
  void compareConeSolver(const Goal& goal, const Reading& reading, bool isMet) {
    const std::function<bool(const IndexTuple&)> nothing;
    const HealthyQuestion question{goal, text_, domains_, nothing};
    const Reader reader(reading.parm, reading.indices, reading.seen);
    Attempt attempt(question, reader);
    const Verdict verdict = solveCone(attempt, {}).verdict;
    EXPECT_FALSE(isMet && verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    ++tally_.solutions;
    tally_.solved += verdict == VERDICT_UNDECIDED ? 0 : 1;
  }

  void expectWitness(const Goal& goal, const std::vector<Reading>& readings,
                     const NamedValues& witness) {
    Database& database = text_.database();
    for (const auto& [name, value] : witness) {
      for (const auto& [parm, indices] : walk_.instances()) {
        if (fullName(parm->parm.name(), indices) == name) parm->parm.store(indices, value);
      }
    }
    EXPECT_TRUE(std::any_of(readings.begin(), readings.end(), [&](const Reading& reading) {
      return holdsNow(goal, reading) && existsNow(goal, reading) &&
             Walk::isHealthy(coneOf(goal, reading, text_, false));
    })) << describe(goal);
    database.forgetValues();
  }

  static std::string describe(const Goal& goal) {
    std::string text = goal.subject->name();
    for (const Clause& clause : goal.clauses) {
      const Expression& expression = clause.front().expression->expression;
      const Position at = expression.empty() ? Position{} : expression.tokens.front().at;
      text += " " + std::to_string(at.line) + ":" + std::to_string(at.column) + " wants " +
              std::to_string(clause.front().result);
    }
    return text;
  }

  CheckedText checked_;
  CompiledText text_;
  Domains domains_;
  Walk walk_;
  TextKind kind_;
  const std::vector<std::string>& values_;
  Tally& tally_;
  std::vector<std::vector<std::string>> held_;  // by instance
  bool isCut_ = false;                          // whether some walk was not complete
  // What is reached from the defaults, by cone.
  std::map<std::pair<std::set<WalkInstance>, Staging>, std::set<std::vector<std::string>>> reached_;
};

// Walks through `count` texts of one kind.
Tally compareTexts(TextKind kind, unsigned count) {
  initVidStdTables();
  const LogRedirection noLog([](const std::string& /*line*/) {});
  Tally tally;
  const unsigned first = firstSeed();
  for (unsigned seed = first; seed < first + count && !testing::Test::HasFailure(); ++seed) {
    const std::string text = RandomDefinitions(seed).write(kind);
    SCOPED_TRACE("text " + std::to_string(seed) + ":\n" + text);
    const BuiltText built(text);
    tally.built += built.variant.isBuilt ? 1 : 0;
    if (built.variant.isBuilt) Comparison(built, kind, tally).run();
  }
  std::printf(
      "%zu texts, %zu left out, %zu cut short, %zu goals: anywhere %zu possible, %zu not; in "
      "health %zu possible, %zu not, %zu never; %zu of %zu solved\n",
      tally.built, tally.large, tally.cut, tally.goals, tally.possible, tally.impossible,
      tally.healthy, tally.unhealthy, tally.never, tally.solved, tally.solutions);
  return tally;
}

// A proof that always gives up would agree with everything.
void expectDecided(const Tally& tally, size_t percentInHealth) {
  EXPECT_GT(tally.goals, 0U);
  EXPECT_LT(tally.cut * 20, tally.built);
  EXPECT_GT(tally.possible + tally.impossible, tally.goals * 9 / 10);
  EXPECT_GT(tally.healthy + tally.unhealthy, tally.goals * percentInHealth / 100);
  EXPECT_GT(tally.never, 0U);
  EXPECT_GT(tally.solved, tally.solutions * 9 / 10);
}

TEST(ProofsAndSituations, Agree) { expectDecided(compareTexts(PLAIN_TEXT, textCount()), 90); }

TEST(ProofsAndSituations, AgreeWithIndices) {
  expectDecided(compareTexts(TEXT_WITH_INDICES, textCount()), 80);
}

// Each takes ten times as long.
TEST(ProofsAndSituations, AgreeWithRings) {
  expectDecided(compareTexts(TEXT_WITH_RING, textCount() / 5), 50);
}

}  // namespace

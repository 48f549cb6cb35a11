// Random small texts, walked through completely: what the proofs say of all situations against the
// situations themselves.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "check/proof/anywhere.h"
#include "check/proof/healthy.h"
#include "check/proof/solver.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_situations.h"
#include "sw/parm/parm_name.h"
#include "vid_std.h"

namespace {

// Every value that a walk tries. Those of the random texts are among them, and a few beyond.
const std::vector<std::string> VALUES = {"",  "-1", "0", "1",   "2", "3",
                                         "4", "a",  "b", "0x1", "~", "1~"};

// How many texts are walked through: more where the environment says so.
unsigned textCount() {
  const char* const wanted = std::getenv("RANDOM_TEXTS");
  return wanted == nullptr ? 150 : static_cast<unsigned>(std::atoi(wanted));
}

// Writes texts of a few parameters, of which each refers to those before it.
class TextWriter {
 public:
  explicit TextWriter(unsigned seed) : random_(seed) {}

  std::string write() {
    const unsigned count = 2 + below(2);
    std::string text;
    for (unsigned i = 0; i < count; ++i) text += definition(i);
    return text;
  }

 private:
  unsigned below(unsigned limit) { return static_cast<unsigned>(random_() % limit); }
  std::string oneOf(std::initializer_list<const char*> choices) {
    return *(choices.begin() + below(static_cast<unsigned>(choices.size())));
  }

  std::string literal() { return oneOf({"0", "1", "2", "3", "\"a\"", "\"b\"", "\"\"", "\"1\""}); }

  std::string operand(unsigned before) {
    return below(3) == 0 ? literal() : "p" + std::to_string(below(before));
  }

  std::string condition(unsigned before, unsigned depth = 0) {
    if (depth < 2 && below(3) == 0) {
      return "(" + condition(before, depth + 1) + oneOf({" && ", " || ", " && "}) +
             condition(before, depth + 1) + ")";
    }
    std::string name = "p" + std::to_string(below(before));
    switch (below(8)) {
      case 0:
        return name;
      case 1:
        return name + oneOf({" + ", " - ", " * ", " / ", " % ", " & "}) + operand(before) +
               oneOf({" == ", " > ", " < "}) + literal();
      case 2:
        return name + oneOf({" == ", " != ", " < ", " >= ", " $ "}) + operand(before);
      default:
        return name + oneOf({" == ", " != ", " < ", " > ", " <= ", " >= "}) + literal();
    }
  }

  std::string item(unsigned before) {
    switch (before == 0 ? below(4) : below(6)) {
      case 0:
        return oneOf({"0..1", "0..2", "1..3", "2..3"});
      case 1:
        return oneOf({"\"a\", \"b\"", "\"a\"", "\"b\", 1"});
      case 2:
        return oneOf({"0", "1", "2"});
      case 3:
        return oneOf({"0..1, \"a\"", "-1..0"});
      case 4:
        return "0..(p" + std::to_string(below(before)) + ")";
      default:
        return "(p" + std::to_string(below(before)) + oneOf({" + 1", "", " / p0"}) + ")";
    }
  }

  std::string definition(unsigned number) {
    std::string text = "p" + std::to_string(number) + " " + oneOf({"rw", "ro", "wo", "rw"}) + " {";
    if (below(5) > 0) text += " rangeValid { " + item(number) + " }";
    if (number > 0) {
      for (unsigned i = below(3); i > 0; --i) {
        text += " rangeValid (" + condition(number) + ") { " + item(number) + " }";
      }
      if (below(4) == 0) text += " ctrlValid (" + condition(number) + ")";
      for (unsigned i = below(3); i > 0; --i) {
        text += " default (" + condition(number) + ") { " + literal() + " }";
      }
    }
    if (below(6) == 0) text += " valueChange { \"a\" -> " + oneOf({"1", "\"b\"", "2"}) + " }";
    return text + " }\n";
  }

  std::mt19937 random_;
};

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

// The situations of a text: each parameter with each value.
class Walk {
 public:
  explicit Walk(Database& database) : database_(database), parms_(database.parmsInNameOrder()) {}

  // Calls `visit` with every combination of the values of `of`, set on the engine unchecked.
  template <typename Visit>
  void run(const std::vector<std::vector<std::string>>& of, const Visit& visit, size_t place = 0) {
    if (place == parms_.size()) {
      visit();
      return;
    }
    for (const std::string& value : of[place]) {
      parms_[place]->parm.store({}, value);
      run(of, visit, place + 1);
    }
    parms_[place]->parm.store({}, "");
  }

  // What setting `value` now would leave; nullopt where it is refused.
  std::optional<std::string> kept(ParmEntry& parm, const std::string& value) {
    StagedEntry entry;
    entry.parm = &parm;
    entry.value.set(value);
    entry.generated = true;
    const StagedValues staged;
    IndexSituations situations(staged);
    if (!isAccepted(evaluate(entry, situations, true))) return std::nullopt;
    return entry.value.text();
  }

  // Whether every parameter that `goal` depends on is set and keeps its value.
  bool isHealthy(const std::set<const ParmEntry*>& cone) {
    return std::all_of(cone.begin(), cone.end(), [&](const ParmEntry* entry) {
      ParmEntry& parm = *database_.findParm(entry->parm.name());
      const std::string held = parm.parm.committedText({});
      return !held.empty() && kept(parm, held) == held;
    });
  }

  [[nodiscard]] const std::vector<ParmEntry*>& parms() const { return parms_; }

 private:
  Database& database_;
  std::vector<ParmEntry*> parms_;
};

// The value of an expression in what is set now.
Value evaluateNow(const CompiledExpression& expression) {
  Situation situation(expression.variables.size());
  const StagedValues staged;
  for (uint32_t slot = 0; slot < expression.sources.size(); ++slot) {
    situation.bind(slot, valueOf(expression.sources[slot], {}, staged));
  }
  return expression.program.evaluate(situation);
}

bool holdsNow(const Goal& goal) {
  return std::all_of(goal.clauses.begin(), goal.clauses.end(), [](const Clause& clause) {
    return std::any_of(clause.begin(), clause.end(),
                       [](const Wish& wish) { return comesTrue(wish, evaluateNow); });
  });
}

std::set<const ParmEntry*> coneOf(const Goal& goal) {
  std::vector<const ParmEntry*> open;
  for (const Clause& clause : goal.clauses) {
    for (const Wish& wish : clause) {
      forEachExpression(wish, [&](const CompiledExpression& expression) {
        for (const VariableSource& source : expression.sources) open.push_back(source.parm);
      });
    }
  }
  std::set<const ParmEntry*> cone;
  while (!open.empty()) {
    const ParmEntry* const parm = open.back();
    open.pop_back();
    if (!cone.insert(parm).second) continue;
    for (const VariableSource& source : parm->sources) open.push_back(source.parm);
  }
  return cone;
}

// All goals that the questions could ask of the conditions and values of one definition.
std::vector<Goal> goalsOf(const Subject& subject) {
  std::vector<Goal> goals;
  const CompiledExpression* previous = nullptr;
  for (const auto* statements : {&subject.rangeValid, &subject.ctrlValid, &subject.defaults}) {
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
  }
  return goals;
}

// The solver takes its time: one goal of so many is put to it.
constexpr size_t GOALS_PER_SOLUTION = 5;

// How often the proofs had an answer.
struct Tally {
  size_t goals = 0;
  size_t possible = 0;
  size_t impossible = 0;
  size_t healthy = 0;
  size_t unhealthy = 0;
  size_t solutions = 0;
  size_t solved = 0;
};

class Comparison {
 public:
  Comparison(const BuiltText& built, Tally& tally)
      : checked_{built.source, built.read, built.choices, built.variant},
        text_(checked_),
        domains_(text_),
        walk_(text_.database()),
        tally_(tally) {}

  void run() {
    findHeldValues();
    for (const Subject& subject : text_.subjects()) {
      for (const Goal& goal : goalsOf(subject)) {
        compareAnywhere(goal);
        compareHealthy(goal);
      }
    }
  }

 private:
  // Every value that a parameter comes to hold while the others hold what they come to hold.
  void findHeldValues() {
    held_.assign(walk_.parms().size(), {""});
    for (bool grows = true; grows;) {
      grows = false;
      std::vector<std::set<std::string>> found(held_.size());
      walk_.run(held_, [&] {
        for (size_t i = 0; i < held_.size(); ++i) {
          for (const std::string& value : VALUES) {
            if (const auto kept = walk_.kept(*walk_.parms()[i], value)) found[i].insert(*kept);
          }
        }
      });
      for (size_t i = 0; i < held_.size(); ++i) {
        found[i].insert(held_[i].begin(), held_[i].end());
        grows = grows || found[i].size() > held_[i].size();
        held_[i].assign(found[i].begin(), found[i].end());
      }
    }
    for (size_t i = 0; i < held_.size(); ++i) {
      const std::string& name = walk_.parms()[i]->parm.name();
      for (const std::string& value : held_[i]) {
        EXPECT_TRUE(domains_.of(text_.database().findSource(name)).values.contains(value))
            << name << " holds \"" << value << "\"";
      }
    }
  }

  void compareAnywhere(const Goal& goal) {
    bool isMet = false;
    walk_.run(held_, [&] { isMet = isMet || holdsNow(goal); });
    const AnywhereResult result = decideAnywhere(goal, domains_, THIS_VARIANT);
    ++tally_.goals;
    tally_.possible += result.verdict == VERDICT_POSSIBLE ? 1 : 0;
    tally_.impossible += result.verdict == VERDICT_IMPOSSIBLE ? 1 : 0;
    EXPECT_FALSE(isMet && result.verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    if (tally_.goals % GOALS_PER_SOLUTION == 0) compareSolver(goal, isMet);
    if (result.verdict != VERDICT_POSSIBLE) return;
    for (const auto& [name, value] : result.assignment) {
      text_.database().findParm(name)->parm.store({}, value.value_or(""));
      EXPECT_TRUE(domains_.of(text_.database().findSource(name)).values.contains(*value));
    }
    EXPECT_TRUE(holdsNow(goal)) << describe(goal);
    text_.database().forgetValues();
  }

  // The solver by itself, also where the other ways have an answer.
  void compareSolver(const Goal& goal, bool isMet) {
    SolverQuestion question;
    for (const ParmEntry* parm : walk_.parms()) {
      const std::string& name = parm->parm.name();
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

  void compareHealthy(const Goal& goal) {
    const std::set<const ParmEntry*> cone = coneOf(goal);
    bool isMet = false;
    std::vector<std::vector<std::string>> values;
    for (const ParmEntry* parm : walk_.parms()) {
      values.push_back(cone.contains(parm) ? VALUES : std::vector<std::string>{""});
    }
    walk_.run(values, [&] { isMet = isMet || (holdsNow(goal) && walk_.isHealthy(cone)); });
    const HealthyResult result = findHealthy(goal, text_, domains_);
    tally_.healthy += result.verdict == VERDICT_POSSIBLE ? 1 : 0;
    tally_.unhealthy += result.verdict == VERDICT_IMPOSSIBLE ? 1 : 0;
    EXPECT_FALSE(isMet && result.verdict == VERDICT_IMPOSSIBLE) << describe(goal);
    if (result.verdict != VERDICT_POSSIBLE) return;
    for (const auto& [name, value] : result.witness) {
      text_.database().findParm(name)->parm.store({}, value);
    }
    EXPECT_TRUE(holdsNow(goal) && walk_.isHealthy(cone)) << describe(goal);
    text_.database().forgetValues();
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
  Tally& tally_;
  std::vector<std::vector<std::string>> held_;  // by rank
};

TEST(ProofsAndSituations, Agree) {
  initVidStdTables();
  Tally tally;
  for (unsigned seed = 0; seed < textCount() && !HasFailure(); ++seed) {
    const std::string text = TextWriter(seed).write();
    SCOPED_TRACE("text " + std::to_string(seed) + ":\n" + text);
    const BuiltText built(text);
    if (built.variant.isBuilt) Comparison(built, tally).run();
  }
  RecordProperty("goals", static_cast<int>(tally.goals));
  std::printf("%zu goals: anywhere %zu possible, %zu not; in health %zu possible, %zu not\n",
              tally.goals, tally.possible, tally.impossible, tally.healthy, tally.unhealthy);
  // A proof that always gives up would agree with everything.
  EXPECT_GT(tally.possible + tally.impossible, tally.goals * 9 / 10);
  EXPECT_GT(tally.healthy + tally.unhealthy, tally.goals * 9 / 10);
  EXPECT_GT(tally.solved, tally.solutions * 9 / 10);
}

}  // namespace

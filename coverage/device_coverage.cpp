#include "coverage/device_coverage.h"

#include <algorithm>
#include <iterator>
#include <set>

#include "base/system_log.h"
#include "base/work.h"
#include "coverage/statement_numbers.h"
#include "database/commit_steps.h"
#include "database/gather.h"
#include "database/range_query.h"

// What is noted in one commit or query. It only asks: of each condition what it is, of bounds
// whether they can be used.
class DeviceCoverage::Noting {
 public:
  explicit Noting(DeviceCoverage& device) : device_(device) {}

  void commit(Transaction& transaction) {
    StagedValues copies(&transaction.staged());
    copyStaged(transaction.staged(), copies);
    for (StagedEntry* entry : copies.inNameOrder()) {
      if (entry->reset) reset(*entry, copies);
    }
    const std::optional<Plan> plan = planCommit(device_.database_, copies);
    if (!plan) return;
    static_cast<void>(
        walkCommit(*plan, copies, [&](StagedEntry& entry, IndexSituations& situations) {
          judge(entry, situations);
          return stepResult(evaluate(entry, situations, true));
        }));
  }

  void range(const Transaction& transaction, const std::string& name) {
    static_cast<void>(visitQueried(device_.database_, transaction.staged(), name,
                                   [&](const ParmEntry& parm, const Situation& situation) {
                                     range(parm.parm, device_.parms_.at(&parm), situation);
                                   }));
  }

  void index(const Transaction& transaction, const std::string& name) {
    IndexEntry* const entry = device_.database_.findIndexEntry(name);
    if (entry == nullptr) return;
    const Situation situation = gather(*entry, transaction.staged());
    const Marks& marks = device_.indices_.at(entry);
    ++marks.definition->judged;
    if (areTrue(entry->index->validityConditions(), marks.validity, situation)) {
      bounds(*entry->index, marks, situation, true);
    }
  }

 private:
  // Whether a condition is true. It is noted of a statement with a condition that waits for the
  // situation; the others were noted when the device started.
  static bool isTrue(const Program& condition, Statement statement,
                     const SituationView& situation) {
    const bool isTrue = condition.isTrue(situation);
    if (statement != nullptr && condition.usesVariables()) {
      ++(isTrue ? statement->whenTrue : statement->whenFalse);
    }
    return isTrue;
  }
  static void choose(Statement statement) {
    if (statement != nullptr) ++statement->chosen;
  }
  static void choose(const Statements& statements) {
    for (const Statement statement : statements) choose(statement);
  }

  // Asks conditions as the definition does: up to the first that decides.
  static bool areTrue(std::span<const Program> conditions, const Statements& statements,
                      const SituationView& situation) {
    for (size_t i = 0; i < conditions.size(); ++i) {
      choose(statements[i]);
      if (!isTrue(conditions[i], statements[i], situation)) return false;
    }
    return true;
  }
  static bool isAnyTrue(std::span<const Program> conditions, const Statements& statements,
                        const SituationView& situation) {
    for (size_t i = 0; i < conditions.size(); ++i) {
      choose(statements[i]);
      if (isTrue(conditions[i], statements[i], situation)) return true;
    }
    return false;
  }

  // The set has no condition, and is more than one statement.
  static void choose(const ConditionalBounds& bounds, Statement statement, const Statements& set) {
    if (bounds.condition.usesVariables()) {
      choose(statement);
    } else {
      choose(set);
    }
  }

  // `asksBase`: whether the base bounds are asked also where a run-time range can be used.
  static void bounds(const IndexDef& definition, const Marks& marks, const SituationView& situation,
                     bool asksBase) {
    bool isComputed = false;
    for (size_t i = 0; i < marks.ranges.size(); ++i) {
      const ConditionalBounds& bounds = definition.conditionalBounds()[i];
      if (!isTrue(bounds.condition, marks.ranges[i], situation)) continue;
      BoundsParm present;
      if (bounds.computed != nullptr) {
        if (bounds.computed->evaluate(present, situation) != 0) continue;
        isComputed = true;
      }
      choose(bounds, marks.ranges[i], marks.set);
    }
    if (asksBase || !isComputed) choose(marks.base);
  }

  static void translate(const IndexDef& definition, const Marks& marks, std::string value) {
    for (int i = 0; i < 2; ++i) {
      const auto found = definition.translations().find(value);
      if (found == definition.translations().end()) return;
      choose(marks.translations[static_cast<size_t>(
          std::distance(definition.translations().begin(), found))]);
      value = found->second;
    }
  }

  static void range(const ParmDef& parm, const Marks& marks, const SituationView& situation) {
    for (size_t i = 0; i < marks.documented.size(); ++i) {
      const ConditionalBounds& bounds = parm.documentedRanges()[i];
      if (isTrue(bounds.condition, marks.documented[i], situation)) {
        return choose(bounds, marks.documented[i], marks.documentedSet);
      }
    }
    for (size_t i = 0; i < marks.ranges.size(); ++i) {
      const ConditionalBounds& bounds = parm.conditionalBounds()[i];
      if (isTrue(bounds.condition, marks.ranges[i], situation)) {
        return choose(bounds, marks.ranges[i], marks.set);
      }
    }
    choose(marks.base);
  }

  // Which default a reset takes.
  static void defaultOf(const ParmDef& parm, const Marks& marks, const Situation& situation) {
    for (size_t i = 0; i < marks.defaults.size(); ++i) {
      const auto& [condition, value] = parm.defaults()[i];
      if (isTrue(condition, marks.defaults[i], situation) && value.evaluate(situation).valid()) {
        return choose(marks.defaults[i]);
      }
    }
    choose(marks.fallback);
  }

  void reset(StagedEntry& entry, const StagedValues& copies) {
    defaultOf(entry.parm->parm, device_.parms_.at(entry.parm),
              gatherBound(*entry.parm, entry.indices, copies));
    resolveReset(entry, copies);
  }

  // The steps of setValue().
  void judge(const StagedEntry& entry, IndexSituations& situations) {
    const ParmDef& parm = entry.parm->parm;
    const Marks& marks = device_.parms_.at(entry.parm);
    ++marks.definition->judged;
    Situation situation = gather(*entry.parm, entry.indices, situations.staged());
    if (!areTrue(parm.validityConditions(), marks.validity, situation)) return;
    if (!bindIndices(entry, situations, marks, situation)) return;
    if (!entry.force && parm.mode() != MODE_WRITE_ONLY &&
        isAnyTrue(parm.readOnlyConditions(), marks.readOnly, situation)) {
      return;
    }
    translate(parm, marks, entry.value.text());
    bounds(parm, marks, situation, false);
  }

  bool bindIndices(const StagedEntry& entry, IndexSituations& situations, const Marks& marks,
                   Situation& situation) {
    const ParmDef& parm = entry.parm->parm;
    if (entry.indices.size() != parm.indices().size()) return false;
    choose(marks.index);
    for (size_t place = 0; place < entry.indices.size(); ++place) {
      PresentIndex& present = situations.at(*entry.parm, entry.indices, place, situation);
      if (!takes(*entry.parm->indices->own[place], present, entry.indices[place])) return false;
      parm.bindIndex(situation, place, entry.indices[place]);
    }
    return true;
  }

  bool takes(const IndexEntry& entry, PresentIndex& present, const std::string& value) {
    const IndexDef& index = *entry.index;
    const Marks& marks = device_.indices_.at(&entry);
    ++marks.definition->judged;
    if (!areTrue(index.validityConditions(), marks.validity, present.situation())) return false;
    translate(index, marks, value);
    bounds(index, marks, present.situation(), true);
    return present.takes(value);
  }

  DeviceCoverage& device_;
};

DeviceCoverage::DeviceCoverage(Database& database, TextCoverage& coverage)
    : database_(database), coverage_(coverage) {
  const StatementNumbers numbers = statementNumbers(coverage, database);
  std::vector<Statements> own(coverage.definitions().size());
  for (StatementCoverage& statement : coverage.statements()) {
    own[statement.definition].push_back(&statement);
  }
  for (size_t i = 0; i < own.size(); ++i) {
    DefinitionCoverage& definition = coverage.definitions()[i];
    const auto lines = numbers.find(definition.name);
    if (lines == numbers.end()) continue;
    Marks marks = marksOf(definition, lines->second);
    if (const ParmEntry* const parm = database.findParm(definition.name)) {
      if (!own[i].empty() && own[i].front()->keyword == "index") marks.index = own[i].front();
      noteDecided(marks, parm->parm, &parm->parm, own[i]);
      parms_.emplace(parm, std::move(marks));
    } else if (const IndexEntry* const index = database.findIndexEntry(definition.name)) {
      noteDecided(marks, *index->index, nullptr, own[i]);
      indices_.emplace(index, std::move(marks));
    }
  }
}

DeviceCoverage::Statement DeviceCoverage::statementOf(const StatementPlace& number) {
  return number.line == 0 ? nullptr : &coverage_.statements()[number.line - 1];
}

DeviceCoverage::Statements DeviceCoverage::statementsOf(const StatementLines::List& numbers) {
  Statements statements;
  for (const StatementPlace& number : numbers) statements.push_back(statementOf(number));
  return statements;
}

DeviceCoverage::Marks DeviceCoverage::marksOf(DefinitionCoverage& definition,
                                              const StatementLines& numbers) {
  return {.definition = &definition,
          .base = statementsOf(numbers.inBase),
          .set = statementsOf(numbers.inSet),
          .documentedSet = statementsOf(numbers.inDocumentedSet),
          .validity = statementsOf(numbers.validity),
          .ranges = statementsOf(numbers.ranges),
          .translations = statementsOf(numbers.translations),
          .readOnly = statementsOf(numbers.readOnly),
          .defaults = statementsOf(numbers.defaults),
          .documented = statementsOf(numbers.documented),
          .fallback = statementOf(numbers.fallback)};
}

// Notes the conditions that the constants decide. A ctrlValid that is false and all others that are
// true are in the lists of the definition, with a constant as their condition.
void DeviceCoverage::noteDecided(const Marks& marks, const IndexDef& definition,
                                 const ParmDef* parm, const std::vector<Statement>& own) {
  std::set<Statement> waiting;
  std::set<Statement> kept;
  const auto add = [&](const Statements& statements, const auto& list, const auto& conditionOf) {
    for (size_t i = 0; i < statements.size(); ++i) {
      (conditionOf(list[i]).usesVariables() ? waiting : kept).insert(statements[i]);
    }
  };
  const auto itself = [](const Program& program) -> const Program& { return program; };
  const auto its = [](const auto& element) -> const Program& { return element.condition; };
  add(marks.validity, definition.validityConditions(), itself);
  add(marks.ranges, definition.conditionalBounds(), its);
  for (const Statements* set : {&marks.base, &marks.set}) kept.insert(set->begin(), set->end());
  if (parm != nullptr) {
    add(marks.readOnly, parm->readOnlyConditions(), itself);
    add(marks.defaults, parm->defaults(), its);
    add(marks.documented, parm->documentedRanges(), its);
    kept.insert(marks.documentedSet.begin(), marks.documentedSet.end());
    kept.insert(marks.fallback);
  }
  for (const Statement statement : own) {
    const bool isOfIndex = statement->keyword == "rangeValid" || statement->keyword == "ctrlValid";
    if (!statement->hasCondition || waiting.contains(statement)) continue;
    if (parm == nullptr && !isOfIndex) continue;  // an index has no use for it
    const bool isControl = statement->keyword.starts_with("ctrl");
    const bool isTrue = kept.contains(statement) != (statement->keyword == "ctrlValid");
    ++(isTrue ? statement->whenTrue : statement->whenFalse);
    if (isControl) ++statement->chosen;
  }
}

// Nothing of it is a matter of the system log, and what passes the budget ends there.
template <typename Note>
void DeviceCoverage::note(const Note& doNote) {
  const LogRedirection silence([](const std::string& /*line*/) {});
  Work::begin();
  try {
    Noting noting(*this);
    doNote(noting);
  } catch (const WorkExceeded&) {
    // The request itself will be refused.
  }
}

void DeviceCoverage::noteCommit(Transaction& transaction) {
  note([&](Noting& noting) { noting.commit(transaction); });
}

void DeviceCoverage::noteRange(const Transaction& transaction, const std::string& name) {
  note([&](Noting& noting) { noting.range(transaction, name); });
}

void DeviceCoverage::noteIndex(const Transaction& transaction, const std::string& name) {
  note([&](Noting& noting) { noting.index(transaction, name); });
}

#include "check/proof/proof.h"

#include <algorithm>

#include "check/proof/cone.h"
#include "check/static/token_place.h"

namespace {

// A number for each place that follows no pattern: in many texts every second definition is alike.
uint32_t scattered(uint32_t place) {
  constexpr uint32_t GOLDEN_RATIO = 0x9E3779B9;
  return (place * GOLDEN_RATIO) >> 16;
}

}  // namespace

Proof::Proof(const CheckedText& checked, const ProofLimits& limits, Findings& findings,
             Findings& undecided)
    : text_(checked), domains_(text_), limits_(limits), findings_(findings), undecided_(undecided) {
  uint32_t place = 0;
  for (const Subject& subject : text_.subjects()) {
    if (scattered(place++) % limits.parts == limits.part) addSubject(subject);
    // Of a ring the domains depend on where it is entered: always at its first name.
    const VariableSource source = text_.database().findSource(subject.name());
    static_cast<void>(domains_.of(source));
    const bool isInRing =
        subject.parm != nullptr && refersBack(subject.parm->sources, *subject.parm);
    if (isInRing) static_cast<void>(domains_.worthTrying(source));
  }
}

// Asks of it, or takes what an earlier variant has found.
void Proof::addSubject(const Subject& subject) {
  const ProofResult* const known =
      limits_.memory == nullptr
          ? nullptr
          : limits_.memory->find(subject.name(), text_.checked().variant.constants);
  if (known == nullptr) {
    subjects_.emplace_back(subject);
    return;
  }
  for (const Finding& finding : known->findings) findings_.add(finding);
  for (const Finding& finding : known->undecided) undecided_.add(finding);
}

void Proof::keepResults() {
  if (limits_.memory == nullptr) return;
  for (const Subject& subject : subjects_) {
    const Places& places = places_[&subject];
    ProofResult result;
    for (const size_t place : places.findings) result.findings.push_back(findings_.all()[place]);
    for (const size_t place : places.undecided) result.undecided.push_back(undecided_.all()[place]);
    limits_.memory->keep(subject.name(), text_.checked().variant.constants, std::move(result));
  }
}

void Proof::add(Finding finding) {
  if (asked_ != nullptr) places_[asked_].findings.push_back(findings_.all().size());
  findings_.add(std::move(finding));
}

void Proof::addUndecided(Finding finding) {
  if (asked_ != nullptr) places_[asked_].undecided.push_back(undecided_.all().size());
  undecided_.add(std::move(finding));
}

bool Proof::ask(const std::function<void()>& question, uint64_t units) {
  isCutShort_ = isOver();
  if (isCutShort_) return false;
  isCutShort_ = !doWithin(units, question);
  if (isCutShort_) text_.database().forgetValues();
  return !isCutShort_;
}

Verdict Proof::decide(const Goal& goal, ConstantScope scope, Effort effort) {
  Verdict verdict = VERDICT_UNDECIDED;
  static_cast<void>(ask(
      [&] { verdict = decideAnywhere(goal, domains_, scope, effort, &budgetOf(goal)).verdict; }));
  return verdict;
}

SolverBudget& Proof::budgetOf(const Goal& goal) {
  return budgets_.try_emplace(goal.subject, text_.subjects().size()).first->second;
}

namespace {

// Adds to a witness the index values that the goal asks about, which no parameter holds.
void addIndexValues(const Goal& goal, HealthyResult& result) {
  if (result.verdict != VERDICT_POSSIBLE || goal.subject->parm == nullptr) return;
  const std::vector<const IndexDef*>& indices = goal.subject->parm->parm.indices();
  for (size_t i = 0; i < indices.size() && i < result.indices.size(); ++i) {
    bool isAsked = false;
    for (const Clause& clause : goal.clauses) {
      for (const Wish& wish : clause) {
        forEachExpression(wish, [&](const CompiledExpression& expression) {
          for (const VariableSource& source : expression.sources) {
            isAsked = isAsked || (source.parm == nullptr && source.name == indices[i]->name());
          }
        });
      }
    }
    if (isAsked) result.witness.emplace_back(indices[i]->name(), result.indices[i]);
  }
}

}  // namespace

HealthyResult Proof::findHealthy(const Goal& goal,
                                 const std::function<bool(const IndexTuple&)>& isMet) {
  HealthyResult result;
  static_cast<void>(ask([&] {
    result = ::findHealthy(goal, text_, domains_, isMet, limits_.deadline, &budgetOf(goal));
  }));
  isCutShort_ = isCutShort_ || (result.verdict == VERDICT_UNDECIDED && isOver());
  addIndexValues(goal, result);
  return result;
}

bool Proof::readsWhatIsLeftOut(const CompiledExpression& expression) const {
  return std::ranges::any_of(expression.sources, [this](const VariableSource& source) {
    if (source.parm == nullptr || source.parm->parm.mode() != MODE_NEVER) return false;
    const Subject& subject = *text_.find(source.parm->parm.name());
    return std::ranges::any_of(subject.ctrlValid, [](const CompiledStatement& control) {
      return control.condition && control.condition->sources.empty();
    });
  });
}

bool Proof::isNeverThere(const Subject& subject) {
  if (subject.ctrlValid.empty()) return false;
  Goal isThere{&subject, {}, false};
  requirePresence(isThere);
  return isImpossible(isThere) || findHealthy(isThere).atRest() == VERDICT_IMPOSSIBLE;
}

bool Proof::readsWhatIsNeverThere(const CompiledExpression& expression, const ParmEntry* own) {
  return std::ranges::any_of(expression.sources, [&](const VariableSource& source) {
    if (source.parm == nullptr) return false;
    const bool refersBack = own != nullptr && source.parm->level >= own->level;
    return !refersBack && isNeverThere(*text_.find(source.parm->parm.name()));
  });
}

bool Proof::addIfHealthy(const Goal& goal, Finding finding) {
  if (isImpossible(goal, THIS_VARIANT, EFFORT_QUICK)) return false;
  HealthyResult result = findHealthy(goal);
  if (result.verdict == VERDICT_IMPOSSIBLE || result.isAstray) return false;
  if (result.verdict == VERDICT_UNDECIDED) {
    addUndecided(std::move(finding));
    return false;
  }
  finding.witness = std::move(result.witness);
  add(std::move(finding));
  return true;
}

bool Proof::hasFound(std::string_view code) const {
  return hasFound(code, [](const Finding& /*finding*/) { return true; });
}

bool Proof::hasFound(std::string_view code, const std::function<bool(const Finding&)>& is) const {
  return std::any_of(findings_.all().begin(), findings_.all().end(),
                     [&](const Finding& finding) { return finding.code == code && is(finding); });
}

bool Proof::isTold(std::string_view code, const NamedValues& witness) const {
  return std::any_of(findings_.all().begin(), findings_.all().end(), [&](const Finding& finding) {
    return finding.code == code &&
           std::any_of(witness.begin(), witness.end(), [&](const auto& pair) {
             return finding.text.find('"' + pair.second + '"') != std::string::npos;
           });
  });
}

TextPlace placeOf(const SourceText& source, const Expression& expression) {
  const Token& first = expression.tokens.front();
  uint32_t end = first.at.column;
  for (const Token& token : expression.tokens) {
    if (token.at.line != first.at.line) break;
    end = token.at.column + tokenPlace(source, token).length;
  }
  return {first.at.line, first.at.column, end - first.at.column};
}

TextPlace placeOf(const StatementLayout& statement) {
  return {statement.extent.from.line, statement.extent.from.column,
          static_cast<uint32_t>(statement.keyword.size())};
}

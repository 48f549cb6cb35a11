#include "sw/parm/build/build_defaults.h"

#include <algorithm>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "sw/parm/build/classify.h"

namespace {

bool isBefore(const Token& a, const Token& b) {
  if (a.kind != b.kind) return a.kind < b.kind;
  if (a.number != b.number) return a.number < b.number;
  return a.text < b.text;
}

// Orders expressions by their tokens, so that two of equal tokens count as equal wherever in the
// text they are.
struct TokenOrder {
  bool operator()(const Expression* a, const Expression* b) const {
    return std::lexicographical_compare(a->tokens.begin(), a->tokens.end(), b->tokens.begin(),
                                        b->tokens.end(), isBefore);
  }
};

class DefaultBuilder {
 public:
  explicit DefaultBuilder(DefinitionDraft& draft) : draft_(draft) {}

  void build() {
    for (const Statement& statement : draft_.record().defaults) add(statement);
    if (last_) addDefault(Program::constant(1), *std::move(last_), lastPlace_);
  }

 private:
  using Statement = Listed<DefaultStatement>;

  void add(const Statement& statement) {
    Condition condition = classifyCondition(statement.condition, draft_);
    switch (condition.kind) {
      case CONDITION_RUN_TIME:
        addConditional(statement, std::move(condition));
        break;
      case CONDITION_ALWAYS:
        addAlways(statement, condition);
        break;
      case CONDITION_NEVER:
        if (!condition.namesConstant) draft_.warn(DIAG_CONDITION_ZERO, placeOf(statement));
        break;
      case CONDITION_LEFT_OUT:
        break;
    }
  }

  void addConditional(const Statement& statement, Condition condition) {
    if (!condition.namesConstant && !conditions_.insert(&statement.condition).second) {
      draft_.error(DIAG_DUPLICATE_CONDITIONS, placeOf(statement));
    }
    Program program = draft_.keep(statement.condition, std::move(condition.compiled));
    if (std::optional<Program> value = valueOf(statement)) {
      addDefault(std::move(program), *std::move(value), statement.place);
    }
  }

  void addAlways(const Statement& statement, const Condition& condition) {
    if (condition.namesConstant) {
      if (std::optional<Program> value = valueOf(statement)) {
        addDefault(Program::constant(1), *std::move(value), statement.place);
      }
      return;
    }
    if (std::exchange(fallbackSeen_, true)) {
      draft_.error(DIAG_CONDITIONS_NON_ZERO, placeOf(statement));
    }
    addFallback(statement);
  }

  void addDefault(Program condition, Program value, StatementPlace place) {
    draft_.parm.defaults.push_back({std::move(condition), std::move(value)});
    draft_.lines.defaults.push_back(place);
  }

  void addFallback(const Statement& statement) {
    std::optional<Program> value = valueOf(statement);
    if (!value) return;
    if (value->usesVariables()) {
      last_ = std::move(value);
      lastPlace_ = statement.place;
    } else {
      draft_.lines.fallback = statement.place;
      draft_.parm.fallbackDefault = value->evaluate(SituationView()).asText();
    }
  }

  // The program of a default's value. Returns nullopt, after a report, where it never has a value.
  std::optional<Program> valueOf(const DefaultStatement& statement) {
    if (statement.text) return Program::constant(std::string(*statement.text));
    if (statement.value.empty()) {
      draft_.error(DIAG_INVALID_EXPRESSION, statement.at);
      return std::nullopt;
    }
    Classification value = classifyValue(statement.value, draft_);
    switch (value.decision) {
      case DECIDED:
        return Program::constant(std::move(value.value));
      case RUN_TIME:
        return draft_.keep(statement.value, std::move(value.compiled));
      default:
        return std::nullopt;
    }
  }

  // Where a report about the condition of a statement points: at its first token, or at the value
  // of a statement without a condition.
  static Position placeOf(const DefaultStatement& statement) {
    return statement.condition.empty() ? statement.at : tokenPosition(statement.condition, 1);
  }

  DefinitionDraft& draft_;
  std::set<const Expression*, TokenOrder> conditions_;  // run-time ones
  bool fallbackSeen_ = false;
  std::optional<Program> last_;  // the run-time value of the statement without a condition
  StatementPlace lastPlace_;
};

}  // namespace

void buildDefaults(DefinitionDraft& draft) { DefaultBuilder(draft).build(); }

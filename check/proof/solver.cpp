#include "check/proof/solver.h"

#include <z3++.h>

#include <algorithm>
#include <array>
#include <set>

#include "base/number.h"
#include "deflang/expression/operators.h"
#include "srcs/vid_std_figures.h"

namespace {

constexpr unsigned NUMBER_BITS = 32;
constexpr unsigned TEXT_BITS = 12;
constexpr size_t MANY_TEXTS = 4000;
// How often a formula may ask for one of the texts.
constexpr size_t MANY_TEXT_CASES = 200'000;
// Of the expressions of a question. Formulas of some more take minutes to be freed again.
constexpr size_t MANY_EXPRESSION_STEPS = 10'000;
// Whether one text contains another is left open where they are more.
constexpr size_t MANY_CONTAINED_TEXTS = 100;
// About a tenth of a second.
constexpr unsigned SOLVER_STEPS = 400'000;
// What is easy needs no more.
constexpr unsigned FEW_STEPS = 10'000;
// What all definitions of a text may spend in vain, and each of them.
constexpr int64_t TEXT_STEPS = 40'000'000;
constexpr int64_t LEAST_STEPS = 100'000;
constexpr int64_t MOST_STEPS = 2'000'000;

// A value as a formula. A variable may be undefined; a result never is: it fails the expression.
struct Symbolic {
  z3::expr isUndefined;
  z3::expr isText;
  z3::expr number;  // of a number
  z3::expr text;    // of a text: its place among those that occur, in byte order
};

// An expression as a formula.
struct SymbolicResult {
  Symbolic value;
  z3::expr isMissing;
};

// What has been solved: the verdict, the steps that it took, or that were not enough, and the
// values in the order of the keys.
struct Answer {
  Verdict verdict = VERDICT_UNDECIDED;
  unsigned steps = 0;
  std::vector<std::optional<std::string>> values = {};
};

// By canonical text.
using Answers = std::map<std::string, Answer>;

Answers& answers() {
  static Answers all;
  return all;
}

// A text in quotes, its length before it, so that no two lists of texts look alike.
std::string quoted(std::string_view text) {
  return std::to_string(text.size()) + '"' + std::string(text) + '"';
}

}  // namespace

// The formulas of one question.
class Formulas {
 public:
  explicit Formulas(const SolverQuestion& question)
      : question_(question), solver_(context_, "QF_FD") {
    collectTexts();
  }

  AnywhereResult solve(unsigned limit) {
    if (texts_.size() > MANY_TEXTS) return {};
    for (const std::string& key : question_.order_) declare(key, question_.domains_.at(key));
    for (const auto& required : question_.clauses_) {
      z3::expr_vector wishes(context_);
      for (const Wish& wish : required.clause) wishes.push_back(formulaOf(wish, required.keyOf));
      solver_.add(z3::mk_or(wishes));
    }
    for (const auto& required : question_.ranges_) {
      solver_.add(isWithin(variables_.at(required.key), *required.ranges, required.keyOf));
    }
    if (isTooLarge_) return {};
    z3::params limits(context_);
    limits.set("rlimit", limit);
    solver_.set(limits);
    switch (solver_.check()) {
      case z3::unsat:
        return {VERDICT_IMPOSSIBLE, {}};
      case z3::sat:
        return {VERDICT_POSSIBLE, assignmentOf(solver_.get_model())};
      default:
        return {};
    }
  }

  // What solve() has taken.
  unsigned steps() {
    const z3::stats all = solver_.statistics();
    for (unsigned i = 0; i < all.size(); ++i) {
      if (all.key(i) == "rlimit count") return all.uint_value(i);
    }
    return 0;
  }

 private:
  z3::expr truth(bool value) { return context_.bool_val(value); }
  z3::expr numberOf(int32_t value) { return context_.bv_val(value, NUMBER_BITS); }
  z3::expr freshTruth() { return context_.bool_const(freshName().c_str()); }
  z3::expr freshNumber() { return context_.bv_const(freshName().c_str(), NUMBER_BITS); }
  std::string freshName() { return "!" + std::to_string(fresh_++); }

  // --- Texts -----------------------------------------------------------------------------------

  void collectTexts() {
    for (const auto& [key, domain] : question_.domains_) {
      texts_.insert(domain.values.texts().begin(), domain.values.texts().end());
    }
    const auto collect = [&](const CompiledExpression& expression) {
      texts_.insert(expression.program.texts().begin(), expression.program.texts().end());
    };
    for (const auto& required : question_.clauses_) {
      for (const Wish& wish : required.clause) forEachExpression(wish, collect);
    }
    for (const auto& required : question_.ranges_) {
      for (const CompiledStatement& statement : *required.ranges) {
        forEachExpression(statement, collect);
        for (const CompiledItem& item : statement.items) {
          if (item.text) texts_.insert(*item.text);
        }
      }
    }
    ordered_.assign(texts_.begin(), texts_.end());
  }

  [[nodiscard]] unsigned placeOf(const std::string& text) const {
    return static_cast<unsigned>(std::ranges::lower_bound(ordered_, text) - ordered_.begin());
  }
  z3::expr textAt(unsigned place) { return context_.bv_val(place, TEXT_BITS); }
  z3::expr textOf(const std::string& text) { return textAt(placeOf(text)); }
  // The one text that stands for all that do not occur.
  z3::expr otherText() { return textAt(static_cast<unsigned>(ordered_.size())); }

  // What `value(text)` gives for the text of `symbolic`; `other` for the text that does not occur.
  template <typename Value>
  z3::expr byText(const z3::expr& text, z3::expr other, const Value& value) {
    if (!takeCases(ordered_.size())) return other;
    z3::expr result = std::move(other);
    for (unsigned place = 0; place < ordered_.size(); ++place) {
      result = z3::ite(text == textAt(place), value(ordered_[place]), result);
    }
    return result;
  }

  bool takeCases(size_t count) {
    isTooLarge_ = isTooLarge_ || count > casesLeft_;
    if (!isTooLarge_) casesLeft_ -= count;
    return !isTooLarge_;
  }

  // --- Variables -------------------------------------------------------------------------------

  // Its name is no part of the formulas, so that like questions have the same answer.
  void declare(const std::string& key, const NameDomain& domain) {
    const std::string name = std::to_string(variables_.size());
    const Symbolic variable = {context_.bool_const(("u" + name).c_str()),
                               context_.bool_const(("t" + name).c_str()),
                               context_.bv_const(("n" + name).c_str(), NUMBER_BITS),
                               context_.bv_const(("x" + name).c_str(), TEXT_BITS)};
    variables_.emplace(key, variable);
    z3::expr_vector choices(context_);
    if (!takeCases(domain.values.spans().size() + domain.values.texts().size())) return;
    if (domain.mayBeUndefined) choices.push_back(variable.isUndefined);
    if (domain.values.isAll()) {
      choices.push_back(!variable.isUndefined && !variable.isText);
      choices.push_back(!variable.isUndefined && variable.isText &&
                        z3::ule(variable.text, otherText()));
    }
    for (const auto& [low, high] : domain.values.spans()) {
      choices.push_back(!variable.isUndefined && !variable.isText &&
                        variable.number >= numberOf(low) && variable.number <= numberOf(high));
    }
    for (const std::string& text : domain.values.texts()) {
      // An unset value is the number 0.
      choices.push_back(!variable.isUndefined &&
                        (text.empty() ? !variable.isText && variable.number == 0
                                      : variable.isText && variable.text == textOf(text)));
    }
    solver_.add(z3::mk_or(choices));
  }

  Symbolic operandOf(const VariableSource& source, const KeyOf& keyOf) {
    const std::string key = keyOf(source);
    const Symbolic& variable = variables_.at(key);
    if (source.figure == nullptr) return variable;
    // A text that does not occur may begin with any name of the catalogue.
    const Domain& domain = question_.domains_.at(key).values;
    z3::expr isFound = domain.isAll() ? freshTruth() : truth(false);
    z3::expr number = freshNumber();
    const bool isFew = takeCases(domain.texts().size());
    for (const std::string& text : domain.texts()) {
      if (!isFew) break;
      const std::optional<uint32_t> figure = vidStdFigure(text, *source.figure);
      const z3::expr isText = variable.text == textOf(text);
      isFound = z3::ite(isText, truth(figure.has_value()), isFound);
      if (figure) number = z3::ite(isText, numberOf(static_cast<int32_t>(*figure)), number);
    }
    return {variable.isUndefined || !variable.isText || !isFound, truth(false), number, textAt(0)};
  }

  // --- Expressions -----------------------------------------------------------------------------

  SymbolicResult evaluate(const CompiledExpression& expression, const KeyOf& keyOf) {
    std::vector<Symbolic> stack;
    z3::expr fails = truth(expression.program.empty());
    if (!takeSteps(expression.program.steps().size())) return noResult(fails);
    for (const Program::Step& step : expression.program.steps()) {
      const auto place = static_cast<size_t>(step.value);
      if (step.kind == TOKEN_NUMBER) {
        stack.push_back({truth(false), truth(false), numberOf(step.value), textAt(0)});
      } else if (step.kind == TOKEN_STRING) {
        stack.push_back(
            {truth(false), truth(true), numberOf(0), textOf(expression.program.texts()[place])});
      } else if (step.kind == TOKEN_VARIABLE) {
        stack.push_back(operandOf(expression.sources[place], keyOf));
      } else {
        const Symbolic right = stack.back();
        stack.pop_back();
        SymbolicResult result = apply(step.kind, stack.back(), right);
        fails = fails || result.isMissing;
        stack.back() = result.value;
      }
    }
    if (stack.empty()) return noResult(fails);
    return {stack.front(), fails || stack.front().isUndefined};
  }

  SymbolicResult noResult(const z3::expr& fails) {
    return {{truth(true), truth(false), numberOf(0), textAt(0)}, fails};
  }

  bool takeSteps(size_t count) {
    isTooLarge_ = isTooLarge_ || count > stepsLeft_;
    if (!isTooLarge_) stepsLeft_ -= count;
    return !isTooLarge_;
  }

  // The number that an operator reads: of a text, the one at its start.
  z3::expr readNumber(const Symbolic& value) {
    const auto leading = [&](const std::string& text) { return numberOf(leadingNumber(text)); };
    return z3::ite(value.isText, byText(value.text, freshNumber(), leading), value.number);
  }

  SymbolicResult apply(int32_t code, const Symbolic& a, const Symbolic& b) {
    const z3::expr bothNumbers = !a.isText && !b.isText;
    const z3::expr bothDefined = !a.isUndefined && !b.isUndefined;
    SymbolicResult ofBoth = applyToBoth(code, a, b, bothNumbers);
    const z3::expr oneDefined = a.isUndefined != b.isUndefined;
    const z3::expr defined = z3::ite(a.isUndefined, readNumber(b), readNumber(a));
    const z3::expr isAbsorbed = oneDefined && absorbs(code, defined);
    return {{truth(false), bothDefined && ofBoth.value.isText,
             z3::ite(isAbsorbed, defined, ofBoth.value.number), ofBoth.value.text},
            !(isAbsorbed || (bothDefined && !ofBoth.isMissing))};
  }

  // Whether the one operand that is defined decides, as the engine's absorb() says.
  z3::expr absorbs(int32_t code, const z3::expr& defined) {
    z3::expr result = truth(false);
    for (const int32_t sample : {0, -1}) {
      if (absorb(code, sample)) result = result || defined == numberOf(sample);
    }
    // Of the other numbers, all decide or none does.
    return absorb(code, 1) ? defined != 0 : result;
  }

  SymbolicResult applyToBoth(int32_t code, const Symbolic& a, const Symbolic& b,
                             const z3::expr& bothNumbers) {
    if (code == OP_ADD) {
      const z3::expr joined = context_.bv_const(freshName().c_str(), TEXT_BITS);
      solver_.add(z3::ule(joined, otherText()));
      return {{truth(false), !bothNumbers, a.number + b.number, joined},
              !bothNumbers && freshTruth()};
    }
    if (code == OP_CONTAINS) return {ofTruth(contains(a, b)), truth(false)};
    if (comparesTexts(code)) return {ofTruth(compare(code, a, b, bothNumbers)), truth(false)};
    return ofNumbers(code, readNumber(a), readNumber(b));
  }

  Symbolic ofTruth(const z3::expr& value) {
    return {truth(false), truth(false), z3::ite(value, numberOf(1), numberOf(0)), textAt(0)};
  }

  // What is open about it is the same for the same pair.
  z3::expr contains(const Symbolic& a, const Symbolic& b) {
    const OperandPair pair = pairOf(a, b);
    const auto found = contained_.find(pair);
    if (found != contained_.end()) return found->second;
    const auto holds = [&](const std::string& text) {
      return byText(b.text, freshTruth(), [&](const std::string& part) {
        return truth(text.find(part) != std::string::npos);
      });
    };
    const bool isFew = ordered_.size() <= MANY_CONTAINED_TEXTS;
    z3::expr contained =
        isFew ? z3::ite(a.isText && b.isText, byText(a.text, freshTruth(), holds), freshTruth())
              : freshTruth();
    contained_.emplace(pair, contained);
    return contained;
  }

  // -1, 0 or 1 as a 2-bit number: how two operands compare as texts, where one at least is a text.
  z3::expr textOrder(const Symbolic& a, const Symbolic& b) {
    const z3::expr less = context_.bv_val(-1, 2);
    const z3::expr equal = context_.bv_val(0, 2);
    const z3::expr greater = context_.bv_val(1, 2);
    const auto known = [&](const Symbolic& value) { return z3::ult(value.text, otherText()); };
    const z3::expr open = openOrder(a, b);
    const z3::expr byPlace =
        z3::ite(z3::ult(a.text, b.text), less, z3::ite(a.text == b.text, equal, greater));
    // A text that does not occur differs from all that do.
    const z3::expr oneOther = z3::ite(open == equal, less, open);
    const z3::expr ofTexts =
        z3::ite(known(a) && known(b), byPlace, z3::ite(known(a) != known(b), oneOther, open));
    const z3::expr same = z3::ite(a.isText, spells(a, b), spells(b, a));
    const z3::expr mixed = z3::ite(same, equal, oneOther);
    return z3::ite(a.isText && b.isText, ofTexts, mixed);
  }

  // An order that nothing is known of; the same pair always has the same.
  z3::expr openOrder(const Symbolic& a, const Symbolic& b) {
    const OperandPair pair = pairOf(a, b);
    const auto found = orders_.find(pair);
    if (found != orders_.end()) return found->second;
    const bool isSame = pair.first == pair.second;
    z3::expr open = isSame ? context_.bv_val(0, 2) : context_.bv_const(freshName().c_str(), 2);
    if (!isSame) solver_.add(open != context_.bv_val(2, 2));
    orders_.emplace(pair, open);
    return open;
  }

  // Which operands two formulas are, by what they consist of.
  using OperandKey = std::array<unsigned, 3>;
  using OperandPair = std::pair<OperandKey, OperandKey>;

  OperandKey keyOfOperand(const Symbolic& operand) {
    for (const z3::expr& part : {operand.isText, operand.text, operand.number}) {
      kept_.push_back(part);
    }
    return {operand.isText.id(), operand.text.id(), operand.number.id()};
  }
  OperandPair pairOf(const Symbolic& a, const Symbolic& b) {
    return {keyOfOperand(a), keyOfOperand(b)};
  }

  // Whether the text of `text` is the decimal one of the number of `number`.
  z3::expr spells(const Symbolic& text, const Symbolic& number) {
    return byText(text.text, freshTruth(), [&](const std::string& known) {
      const std::optional<int32_t> whole = wholeNumber(known);
      const bool isDecimal = whole && numberText(*whole) == known;
      return isDecimal ? number.number == numberOf(*whole) : truth(false);
    });
  }

  z3::expr compare(int32_t code, const Symbolic& a, const Symbolic& b,
                   const z3::expr& bothNumbers) {
    const z3::expr order = textOrder(a, b);
    const z3::expr zero = context_.bv_val(0, 2);
    return z3::ite(bothNumbers, compared(code, a.number, b.number), compared(code, order, zero));
  }

  static z3::expr compared(int32_t code, const z3::expr& a, const z3::expr& b) {
    switch (code) {
      case OP_EQUAL:
        return a == b;
      case OP_NOT_EQUAL:
        return a != b;
      case OP_LESS:
        return a < b;
      case OP_GREATER:
        return a > b;
      case OP_LESS_EQUAL:
        return a <= b;
      default:
        return a >= b;
    }
  }

  SymbolicResult ofNumbers(int32_t code, const z3::expr& a, const z3::expr& b) {
    const auto number = [&](const z3::expr& value) {
      return SymbolicResult{{truth(false), truth(false), value, textAt(0)}, truth(false)};
    };
    const auto ofBool = [&](const z3::expr& value) {
      return SymbolicResult{ofTruth(value), truth(false)};
    };
    const z3::expr isOut = z3::uge(b, context_.bv_val(NUMBER_BITS, NUMBER_BITS));
    switch (code) {
      case OP_LOGICAL_OR:
        return ofBool(a != 0 || b != 0);
      case OP_LOGICAL_AND:
        return ofBool(a != 0 && b != 0);
      case OP_BIT_OR:
        return number(a | b);
      case OP_BIT_XOR:
        return number(a ^ b);
      case OP_BIT_AND:
        return number(a & b);
      case OP_SHIFT_LEFT:
        return number(z3::ite(isOut, numberOf(0), z3::shl(a, b)));
      case OP_SHIFT_RIGHT:
        return number(z3::ashr(a, z3::ite(isOut, numberOf(NUMBER_BITS - 1), b)));
      case OP_SUBTRACT:
        return number(a - b);
      case OP_MULTIPLY:
        return number(a * b);
      case OP_DIVIDE:
        return {number(a / b).value, b == 0};
      case OP_REMAINDER:
        return {number(z3::srem(a, b)).value, b == 0};
      default:
        return {number(freshNumber()).value, freshTruth()};
    }
  }

  // --- Wishes ----------------------------------------------------------------------------------

  z3::expr isTrue(const SymbolicResult& result) {
    const z3::expr isText = result.value.isText;
    const z3::expr holdsText = byText(result.value.text, truth(true), [&](const std::string& text) {
      return truth(!text.empty());
    });
    return !result.isMissing && z3::ite(isText, holdsText, result.value.number != 0);
  }

  z3::expr formulaOf(const Wish& wish, const KeyOf& keyOf) {
    const SymbolicResult result = evaluate(*wish.expression, keyOf);
    switch (wish.result) {
      case WANT_TRUE:
        return isTrue(result);
      case WANT_UNTRUE:
        return !isTrue(result);
      case WANT_MISSING:
        return result.isMissing;
      case WANT_TEXT:
        return !result.isMissing && result.value.isText;
      default: {
        const SymbolicResult other = evaluate(*wish.other, keyOf);
        return !result.isMissing && !other.isMissing && !result.value.isText &&
               !other.value.isText &&
               comesTrue(wish.result, result.value.number, other.value.number);
      }
    }
  }

  static z3::expr comesTrue(WantedResult wanted, const z3::expr& a, const z3::expr& b) {
    switch (wanted) {
      case WANT_SUM_OVERFLOW:
        return !z3::bvadd_no_overflow(a, b, true) || !z3::bvadd_no_underflow(a, b);
      case WANT_DIFFERENCE_OVERFLOW:
        return !z3::bvsub_no_overflow(a, b) || !z3::bvsub_no_underflow(a, b, true);
      case WANT_PRODUCT_OVERFLOW:
        return !z3::bvmul_no_overflow(a, b, true) || !z3::bvmul_no_underflow(a, b);
      default:
        return a > b;
    }
  }

  // Where no range applies, or one that applies has no values, any value may be there.
  z3::expr isWithin(const Symbolic& value, const std::vector<CompiledStatement>& ranges,
                    const KeyOf& keyOf) {
    z3::expr within = truth(false);
    z3::expr applies = truth(false);
    z3::expr fails = truth(false);
    for (const CompiledStatement& range : ranges) {
      const z3::expr counts =
          range.condition ? isTrue(evaluate(*range.condition, keyOf)) : truth(true);
      applies = applies || counts;
      if (range.items.empty()) fails = fails || counts;
      for (const CompiledItem& item : range.items) {
        const auto [holds, isUnusable] = isIn(value, item, keyOf);
        within = within || (counts && holds);
        fails = fails || (counts && isUnusable);
      }
    }
    return within || fails || !applies;
  }

  std::pair<z3::expr, z3::expr> isIn(const Symbolic& value, const CompiledItem& item,
                                     const KeyOf& keyOf) {
    if (item.text) {
      const std::optional<int32_t> number = wholeNumber(*item.text);
      const z3::expr asText = value.isText && value.text == textOf(*item.text);
      return {number ? asText || (!value.isText && value.number == numberOf(*number)) : asText,
              truth(false)};
    }
    const SymbolicResult lower = evaluate(*item.lower, keyOf);
    if (!item.upper) {
      // A text that could be a number counts as that number, which is left open here.
      const z3::expr asText = lower.value.isText && freshTruth();
      return {asText ||
                  (!lower.value.isText && !value.isText && value.number == lower.value.number) ||
                  (lower.value.isText && value.isText && value.text == lower.value.text),
              lower.isMissing};
    }
    const SymbolicResult upper = evaluate(*item.upper, keyOf);
    const z3::expr isUnusable = lower.isMissing || upper.isMissing || lower.value.isText ||
                                upper.value.isText || lower.value.number > upper.value.number;
    return {
        !value.isText && value.number >= lower.value.number && value.number <= upper.value.number,
        isUnusable};
  }

  // --- The answer ------------------------------------------------------------------------------

  Assignment assignmentOf(const z3::model& model) {
    Assignment assignment;
    const auto isSet = [&](const z3::expr& e) { return model.eval(e, true).is_true(); };
    for (const auto& [key, variable] : variables_) {
      if (isSet(variable.isUndefined)) {
        assignment.emplace(key, std::nullopt);
      } else if (isSet(variable.isText)) {
        const auto place = static_cast<size_t>(model.eval(variable.text, true).get_numeral_uint());
        assignment.emplace(key, place < ordered_.size() ? ordered_[place] : "~");
      } else {
        const auto bits = model.eval(variable.number, true).get_numeral_uint64();
        const std::string text = numberText(static_cast<int32_t>(static_cast<uint32_t>(bits)));
        // What is unset reads as 0, whether 0 can be held or not.
        const bool isUnset = bits == 0 && !question_.domains_.at(key).values.contains(text);
        assignment.emplace(key, isUnset ? std::string() : text);
      }
    }
    return assignment;
  }

  const SolverQuestion& question_;
  z3::context context_;
  z3::solver solver_;
  std::set<std::string> texts_;
  std::vector<std::string> ordered_;
  std::map<std::string, Symbolic> variables_;
  std::map<OperandPair, z3::expr> orders_;
  std::map<OperandPair, z3::expr> contained_;
  std::vector<z3::expr> kept_;  // keeps the identities that these are by
  size_t fresh_ = 0;
  size_t casesLeft_ = MANY_TEXT_CASES;
  size_t stepsLeft_ = MANY_EXPRESSION_STEPS;
  bool isTooLarge_ = false;
};

namespace {

// The solver has its own memory, and an exception of its own for its end.
AnywhereResult solveFormulas(const SolverQuestion& question, unsigned limit, unsigned& steps) {
  try {
    Formulas formulas(question);
    AnywhereResult result = formulas.solve(limit);
    steps = formulas.steps();
    return result;
  } catch (const z3::exception&) {
    return {};
  }
}

}  // namespace

std::string SolverQuestion::canonicalText() const {
  std::map<std::string, size_t> places;
  std::string text;
  for (const std::string& key : order_) {
    const NameDomain& domain = domains_.at(key);
    places.emplace(key, places.size());
    text += domain.mayBeUndefined ? "?" : "!";
    if (domain.values.isAll()) text += "*";
    for (const auto& [low, high] : domain.values.spans()) {
      text += std::to_string(low) + ".." + std::to_string(high) + ",";
    }
    for (const std::string& value : domain.values.texts()) text += quoted(value);
    text += "\n";
  }
  const auto add = [&](const CompiledExpression& expression, const KeyOf& keyOf) {
    for (const Token& token : expression.expression.tokens) {
      text += " " + std::to_string(token.kind);
      if (token.kind == TOKEN_NUMBER) text += ":" + std::to_string(token.number);
      if (token.kind == TOKEN_STRING) text += quoted(token.text);
      if (token.kind != TOKEN_VARIABLE) continue;
      const VariableSource& source = expression.sources[*expression.variables.find(token.text)];
      text += "#" + std::to_string(places.at(keyOf(source)));
      if (source.figure != nullptr) text += "::" + std::string(source.figure->name);
    }
    text += ";";
  };
  for (const RequiredClause& required : clauses_) {
    for (const Wish& wish : required.clause) {
      text += std::to_string(wish.result);
      forEachExpression(wish, [&](const CompiledExpression& e) { add(e, required.keyOf); });
    }
    text += "\n";
  }
  for (const RequiredRange& required : ranges_) {
    text += "#" + std::to_string(places.at(required.key));
    for (const CompiledStatement& statement : *required.ranges) {
      text += "\n(";
      if (statement.condition) add(*statement.condition, required.keyOf);
      text += ")";
      for (const CompiledItem& item : statement.items) {
        text += item.text ? quoted(*item.text) : "=";
        forEachExpression(item, [&](const CompiledExpression& e) { add(e, required.keyOf); });
      }
    }
    text += "\n";
  }
  return text;
}

void SolverQuestion::forgetAnswers() { answers().clear(); }

AnywhereResult SolverQuestion::solve(SolverBudget* budget) const {
  const unsigned limit = budget == nullptr ? SOLVER_STEPS : budget->limit();
  if (limit == 0) return {};
  Answer& answer = answers()[canonicalText()];
  if (answer.verdict == VERDICT_UNDECIDED && answer.steps < limit) {
    AnywhereResult solved = solveFormulas(*this, limit, answer.steps);
    answer.verdict = solved.verdict;
    if (answer.verdict == VERDICT_UNDECIDED) answer.steps = limit;
    for (const std::string& key : order_) {
      if (answer.verdict == VERDICT_POSSIBLE) answer.values.push_back(solved.assignment.at(key));
    }
  }
  // Whether it was solved before makes no difference.
  if (answer.verdict == VERDICT_UNDECIDED || answer.steps > limit) {
    if (budget != nullptr) budget->take(limit);
    return {};
  }
  AnywhereResult result{answer.verdict, {}};
  for (size_t i = 0; i < answer.values.size(); ++i) {
    result.assignment.emplace(order_[i], answer.values[i]);
  }
  return result;
}

SolverBudget::SolverBudget(size_t definitions)
    : all_(std::clamp(TEXT_STEPS / static_cast<int64_t>(std::max<size_t>(definitions, 1)),
                      LEAST_STEPS, MOST_STEPS)),
      left_(all_) {}

unsigned SolverBudget::limit() const {
  if (left_ > 0) return SOLVER_STEPS;
  return left_ > -all_ ? FEW_STEPS : 0;
}

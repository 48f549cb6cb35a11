#include "check/proof/abstract_value.h"

#include <algorithm>
#include <bit>
#include <limits>

#include "base/number.h"
#include "base/work.h"
#include "deflang/expression/operators.h"

namespace {

constexpr int32_t LOWEST = std::numeric_limits<int32_t>::min();
constexpr int32_t HIGHEST = std::numeric_limits<int32_t>::max();
constexpr size_t MANY_TEXTS = 200;

AbstractValue numberIn(int32_t low, int32_t high) {
  AbstractValue value;
  value.addNumbers(low, high);
  return value;
}

AbstractValue missing() {
  AbstractValue value;
  value.mayBeMissing = true;
  return value;
}

struct Interval {
  int64_t low;
  int64_t high;
};

// The numbers that an operator reads: of a text, the one at its start.
Interval numbersOf(const AbstractValue& value) {
  if (!value.texts) return {LOWEST, HIGHEST};
  Interval interval = {HIGHEST, LOWEST};
  if (value.mayBeNumber) interval = {value.low, value.high};
  for (const std::string& text : *value.texts) {
    interval.low = std::min<int64_t>(interval.low, leadingNumber(text));
    interval.high = std::max<int64_t>(interval.high, leadingNumber(text));
  }
  return interval;
}

AbstractValue wrapped(int64_t low, int64_t high) {
  if (low < LOWEST || high > HIGHEST) return numberIn(LOWEST, HIGHEST);
  return numberIn(static_cast<int32_t>(low), static_cast<int32_t>(high));
}

AbstractValue corners(const Interval& a, const Interval& b, int64_t (*apply)(int64_t, int64_t)) {
  const auto [low, high] = std::minmax(
      {apply(a.low, b.low), apply(a.low, b.high), apply(a.high, b.low), apply(a.high, b.high)});
  return wrapped(low, high);
}

AbstractValue truth(bool mayBeTrue, bool mayBeFalse) {
  return numberIn(mayBeFalse ? 0 : 1, mayBeTrue ? 1 : 0);
}

// All numbers of as many bits as `number` has, which is not negative.
int64_t withAllBits(int64_t number) {
  return static_cast<int64_t>(std::bit_ceil(static_cast<uint64_t>(number) + 1)) - 1;
}

bool isShiftCount(const Interval& a) { return a.low >= 0 && a.high < 32; }

bool isZeroPossible(const Interval& a) { return a.low <= 0 && a.high >= 0; }
bool isOtherPossible(const Interval& a) { return a.low != 0 || a.high != 0; }

// The result for two numbers; where either is one number and so is the other, the engine's.
AbstractValue ofNumbers(int32_t code, const Interval& a, const Interval& b) {
  if (a.low == a.high && b.low == b.high) {
    const std::optional<int32_t> result =
        calculate(code, static_cast<int32_t>(a.low), static_cast<int32_t>(b.low));
    return result ? numberIn(*result, *result) : missing();
  }
  switch (code) {
    case OP_LOGICAL_OR:
      return truth(isOtherPossible(a) || isOtherPossible(b),
                   isZeroPossible(a) && isZeroPossible(b));
    case OP_LOGICAL_AND:
      return truth(isOtherPossible(a) && isOtherPossible(b),
                   isZeroPossible(a) || isZeroPossible(b));
    case OP_EQUAL:
      return truth(a.low <= b.high && b.low <= a.high, true);
    case OP_NOT_EQUAL:
      return truth(true, a.low <= b.high && b.low <= a.high);
    case OP_LESS:
      return truth(a.low < b.high, a.high >= b.low);
    case OP_GREATER:
      return truth(a.high > b.low, a.low <= b.high);
    case OP_LESS_EQUAL:
      return truth(a.low <= b.high, a.high > b.low);
    case OP_GREATER_EQUAL:
      return truth(a.high >= b.low, a.low < b.high);
    case OP_ADD:
      return wrapped(a.low + b.low, a.high + b.high);
    case OP_SUBTRACT:
      return wrapped(a.low - b.high, a.high - b.low);
    case OP_MULTIPLY:
      return corners(a, b, [](int64_t x, int64_t y) { return x * y; });
    case OP_BIT_AND:
      // A mask takes the sign away.
      if (a.low >= 0 && b.low >= 0) return wrapped(0, std::min(a.high, b.high));
      if (a.low >= 0 || b.low >= 0) return wrapped(0, a.low >= 0 ? a.high : b.high);
      break;
    case OP_BIT_OR:
    case OP_BIT_XOR:
      if (a.low < 0 || b.low < 0) break;
      return wrapped(code == OP_BIT_OR ? std::max(a.low, b.low) : 0,
                     withAllBits(std::max(a.high, b.high)));
    case OP_SHIFT_LEFT:
      if (!isShiftCount(b)) break;
      return corners(a, b, [](int64_t x, int64_t y) { return x * (int64_t{1} << y); });
    case OP_SHIFT_RIGHT:
      // Whatever the count is, it leads towards the sign.
      if (!isShiftCount(b)) return wrapped(a.low < 0 ? a.low : 0, a.high < 0 ? -1 : a.high);
      return corners(a, b, [](int64_t x, int64_t y) { return x >> y; });
    case OP_DIVIDE:
      if (b.low > 0) return corners(a, b, [](int64_t x, int64_t y) { return x / y; });
      break;
    case OP_REMAINDER:
      if (a.low >= 0 && b.low > 0) return wrapped(0, std::min(a.high, b.high - 1));
      break;
    default:
      break;
  }
  AbstractValue any = numberIn(LOWEST, HIGHEST);
  any.mayBeMissing = (code == OP_DIVIDE || code == OP_REMAINDER) && isZeroPossible(b);
  return any;
}

bool spellsNumber(const std::string& text) { return wholeNumber(text).has_value(); }

// Whether two values of which at least one is a text may be the same text.
bool mayBeSameText(const AbstractValue& a, const AbstractValue& b) {
  if (!a.texts || !b.texts) return true;
  const auto hasNumberText = [](const AbstractValue& value) {
    return std::any_of(value.texts->begin(), value.texts->end(), spellsNumber);
  };
  if ((a.mayBeNumber && hasNumberText(b)) || (b.mayBeNumber && hasNumberText(a))) return true;
  return std::any_of(a.texts->begin(), a.texts->end(),
                     [&](const std::string& text) { return b.texts->contains(text); });
}

// A comparison in which one operand at least is a text.
AbstractValue ofTexts(int32_t code, const AbstractValue& a, const AbstractValue& b) {
  const bool bothOne = a.texts && b.texts && a.texts->size() == 1 && b.texts->size() == 1 &&
                       !a.mayBeNumber && !b.mayBeNumber;
  if (bothOne) {
    const std::optional<int32_t> result = compareTexts(code, *a.texts->begin(), *b.texts->begin());
    return result ? numberIn(*result, *result) : missing();
  }
  if (code == OP_EQUAL) return truth(mayBeSameText(a, b), true);
  if (code == OP_NOT_EQUAL) return truth(true, mayBeSameText(a, b));
  return truth(true, true);
}

void join(AbstractValue& into, const AbstractValue& other) {
  into.mayBeMissing = into.mayBeMissing || other.mayBeMissing;
  if (other.mayBeNumber) into.addNumbers(other.low, other.high);
  if (!into.texts) return;
  if (!other.texts) {
    into.texts.reset();
    return;
  }
  into.texts->insert(other.texts->begin(), other.texts->end());
}

// What comes where one operand is missing and the other one is `defined`: the operand itself where
// it decides.
AbstractValue absorbed(int32_t code, const AbstractValue& defined) {
  AbstractValue value = missing();
  if (!defined.mayBeNumber && !defined.mayBeText()) return value;
  const Interval numbers = numbersOf(defined);
  const bool mayBeZero = isZeroPossible(numbers);
  if ((code == OP_LOGICAL_AND || code == OP_BIT_AND) && mayBeZero) value.addNumbers(0, 0);
  if (code == OP_BIT_OR && numbers.low <= -1 && numbers.high >= -1) value.addNumbers(-1, -1);
  if (code == OP_LOGICAL_OR && isOtherPossible(numbers)) {
    value.addNumbers(static_cast<int32_t>(numbers.low), static_cast<int32_t>(numbers.high));
  }
  return value;
}

AbstractValue apply(int32_t code, const AbstractValue& a, const AbstractValue& b) {
  AbstractValue result;
  const bool someNumbers = a.mayBeNumber && b.mayBeNumber;
  const bool someText =
      (a.mayBeText() && (b.mayBeText() || b.mayBeNumber)) || (b.mayBeText() && a.mayBeNumber);
  if (someNumbers && code != OP_CONTAINS) {
    join(result, ofNumbers(code, {a.low, a.high}, {b.low, b.high}));
  }
  if ((someText || (someNumbers && code == OP_CONTAINS))) {
    if (code == OP_ADD) {
      result.texts.reset();
      result.mayBeMissing = true;  // a text that is too long
    } else if (comparesTexts(code)) {
      join(result, ofTexts(code, a, b));
    } else {
      join(result, ofNumbers(code, numbersOf(a), numbersOf(b)));
    }
  }
  if (a.mayBeMissing) join(result, absorbed(code, b));
  if (b.mayBeMissing) join(result, absorbed(code, a));
  return result;
}

}  // namespace

bool AbstractValue::mayBeTrue() const {
  if (mayBeNumber && (low != 0 || high != 0)) return true;
  return !texts || std::any_of(texts->begin(), texts->end(),
                               [](const std::string& text) { return !text.empty(); });
}

bool AbstractValue::mayBeUntrue() const {
  return mayBeMissing || (mayBeNumber && low <= 0 && high >= 0) || !texts || texts->contains("");
}

void AbstractValue::addNumbers(int32_t from, int32_t to) {
  low = mayBeNumber ? std::min(low, from) : from;
  high = mayBeNumber ? std::max(high, to) : to;
  mayBeNumber = true;
}

AbstractValue abstractOf(const Domain& domain) {
  AbstractValue value;
  if (domain.isAll()) {
    value.addNumbers(LOWEST, HIGHEST);
    value.texts.reset();
    return value;
  }
  if (!domain.spans().empty()) {
    value.addNumbers(domain.spans().front().first, domain.spans().back().second);
  }
  if (domain.texts().size() > MANY_TEXTS) value.texts.reset();
  for (const std::string& text : domain.texts()) {
    if (text.empty()) {
      value.addNumbers(0, 0);
    } else if (value.texts) {
      value.texts->insert(text);
    }
  }
  // A spelling of a number is its own text where it is compared with one.
  return value;
}

AbstractValue evaluateAbstractly(
    const CompiledExpression& expression,
    const std::function<AbstractValue(const VariableSource&)>& valueOf) {
  Work::add(WORK_PER_PROGRAM + WORK_PER_NAME * expression.program.steps().size());
  std::vector<AbstractValue> stack;
  for (const Program::Step& step : expression.program.steps()) {
    switch (step.kind) {
      case TOKEN_NUMBER:
        stack.push_back(numberIn(step.value, step.value));
        break;
      case TOKEN_STRING:
        stack.emplace_back().texts->insert(
            expression.program.texts()[static_cast<size_t>(step.value)]);
        break;
      case TOKEN_VARIABLE:
        stack.push_back(valueOf(expression.sources[static_cast<size_t>(step.value)]));
        break;
      default: {
        const AbstractValue right = std::move(stack.back());
        stack.pop_back();
        stack.back() = apply(step.kind, stack.back(), right);
      }
    }
  }
  return stack.empty() ? missing() : std::move(stack.front());
}

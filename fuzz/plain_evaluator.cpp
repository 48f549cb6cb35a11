#include "fuzz/plain_evaluator.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int MAX_NESTING = 300;
constexpr int WHOLE_GROUP = 11;  // binds less tightly than any operator

// The operators' codes by precedence, the tightest first.
const std::vector<int32_t> LEVELS[] = {
    {18}, {17, 16, 15}, {14, 13}, {12, 11}, {10, 9, 8, 7}, {6, 5}, {4}, {3}, {2}, {1}, {0}};

int levelOf(int32_t code) {
  for (int level = 0; level < WHOLE_GROUP; ++level) {
    const std::vector<int32_t>& codes = LEVELS[level];
    if (std::find(codes.begin(), codes.end(), code) != codes.end()) return level;
  }
  return WHOLE_GROUP;
}

bool isNumber(const PlainValue& value) { return value && value->index() == 0; }

int32_t numberOf(const PlainValue& value) {
  if (isNumber(value)) return std::get<int32_t>(*value);
  return static_cast<int32_t>(strtol(std::get<std::string>(*value).c_str(), nullptr, 0));
}

std::string textOf(const PlainValue& value) {
  return isNumber(value) ? std::to_string(std::get<int32_t>(*value))
                         : std::get<std::string>(*value);
}

int32_t wrapped(int64_t number) { return static_cast<int32_t>(static_cast<uint64_t>(number)); }

int compare(const PlainValue& left, const PlainValue& right) {
  if (!isNumber(left) || !isNumber(right)) return textOf(left).compare(textOf(right));
  const int32_t a = numberOf(left);
  const int32_t b = numberOf(right);
  return a < b ? -1 : static_cast<int>(a > b);
}

PlainValue divide(int64_t left, int64_t right, bool remainder) {
  if (right == 0) return std::nullopt;
  return wrapped(remainder ? left % right : left / right);
}

// Bit by bit: each step doubles the number, or halves it towards the lesser one.
int32_t shift(int32_t number, int32_t count, bool left) {
  const int32_t steps = count < 0 ? 32 : std::min(count, 32);
  for (int32_t i = 0; i < steps; ++i) {
    const int64_t wide = number;
    number = wrapped(left ? wide * 2 : (wide - (number % 2 == 0 ? 0 : 1)) / 2);
  }
  return steps == 32 && !left ? (number < 0 ? -1 : 0) : number;
}

PlainValue add(const PlainValue& left, const PlainValue& right) {
  if (!isNumber(left) || !isNumber(right)) return textOf(left) + textOf(right);
  return wrapped(static_cast<int64_t>(numberOf(left)) + numberOf(right));
}

// Both operands have values.
PlainValue apply(int32_t code, const PlainValue& left, const PlainValue& right) {
  if (code == 13) return add(left, right);
  if (code == 18) return textOf(left).find(textOf(right)) == std::string::npos ? 0 : 1;
  if (code >= 5 && code <= 10) {
    const int order = compare(left, right);
    const bool results[] = {order == 0, order != 0, order<0, order> 0, order <= 0, order >= 0};
    return results[code - 5] ? 1 : 0;
  }
  const int64_t a = numberOf(left);
  const int64_t b = numberOf(right);
  switch (code) {
    case 0:
      return a != 0 || b != 0 ? 1 : 0;
    case 1:
      return a != 0 && b != 0 ? 1 : 0;
    case 2:
      return wrapped(a | b);
    case 3:
      return wrapped(a ^ b);
    case 4:
      return wrapped(a & b);
    case 11:
    case 12:
      return shift(numberOf(left), numberOf(right), code == 11);
    case 14:
      return wrapped(a - b);
    case 15:
      return wrapped(a * b);
    default:
      return divide(a, b, code == 17);
  }
}

// One operand has no value; the other may decide.
PlainValue applyToOne(int32_t code, const PlainValue& defined) {
  if (!defined) return std::nullopt;
  const int32_t number = numberOf(defined);
  if ((code == 1 || code == 4) && number == 0) return 0;
  if (code == 2 && number == -1) return -1;
  if (code == 0 && number != 0) return number;
  return std::nullopt;
}

class Reading {
 public:
  Reading(std::span<const Token> tokens, const PlainVariables& variables)
      : tokens_(tokens), variables_(variables) {}

  PlainResult run() {
    if (tokens_.empty()) return {-1, {}};
    const bool complete =
        readTighter(WHOLE_GROUP, 0) && next_ == tokens_.size() && values_.size() == 1;
    if (!complete) return {static_cast<int>(std::min(next_ + 1, tokens_.size())), {}};
    return {0, failed_ ? std::nullopt : values_.front()};
  }

 private:
  // Reads on to the next operator that does not bind more tightly than `level`, the end of the
  // group or a fault, where it returns false. Operators take the last two values since `base`.
  bool readTighter(int level, size_t base) {
    while (next_ < tokens_.size() && tokens_[next_].kind != TOKEN_CLOSE) {
      const Token& token = tokens_[next_];
      if (token.kind == TOKEN_OPEN) {
        if (!readGroup()) return false;
      } else if (token.kind >= TOKEN_NUMBER) {
        values_.push_back(operand(token));
        ++next_;
      } else {
        const int own = levelOf(token.kind);
        if (own >= level) return true;
        ++next_;
        if (!readTighter(own, base) || !combine(token.kind, base)) return false;
      }
    }
    return true;
  }

  bool readGroup() {
    ++next_;
    const size_t base = values_.size();
    if (!readTighter(WHOLE_GROUP, base) || next_ == tokens_.size()) return false;
    if (values_.size() != base + 1) return false;
    ++next_;
    return true;
  }

  bool combine(int32_t code, size_t base) {
    if (values_.size() < base + 2) return false;
    const PlainValue right = values_.back();
    values_.pop_back();
    const PlainValue left = values_.back();
    values_.back() =
        left && right ? apply(code, left, right) : applyToOne(code, left ? left : right);
    failed_ = failed_ || !values_.back();
    return true;
  }

  [[nodiscard]] PlainValue operand(const Token& token) const {
    if (token.kind == TOKEN_NUMBER) return token.number;
    if (token.kind == TOKEN_STRING) return std::string(token.text);
    const auto found = variables_.find(token.text);
    if (found == variables_.end()) return std::nullopt;
    const std::string& text = found->second;
    char* end = nullptr;
    const long number = strtol(text.c_str(), &end, 0);
    if (end == text.c_str() + text.size()) return static_cast<int32_t>(number);
    return text;
  }

  std::span<const Token> tokens_;
  const PlainVariables& variables_;
  size_t next_ = 0;
  std::vector<PlainValue> values_;
  bool failed_ = false;  // an operator had no result
};

}  // namespace

bool nestsTooDeep(std::span<const Token> tokens) {
  int depth = 0;
  for (const Token& token : tokens) {
    depth += token.kind == TOKEN_OPEN ? 1 : 0;
    depth -= token.kind == TOKEN_CLOSE ? 1 : 0;
    if (depth > MAX_NESTING) return true;
  }
  return false;
}

PlainResult evaluatePlainly(std::span<const Token> tokens, const PlainVariables& variables) {
  return Reading(tokens, variables).run();
}

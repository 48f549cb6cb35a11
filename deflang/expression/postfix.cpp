#include "deflang/expression/postfix.h"

#include <utility>

#include "deflang/expression/operators.h"

namespace {

constexpr int LOOSEST_LEVEL = 10;

// Operators wait on a stack until their right operand is complete: until an operator comes that
// binds no more tightly, or their group ends. A group is what is between two parentheses, or the
// whole expression.
class Conversion {
 public:
  explicit Conversion(std::vector<const Token*>& order) : order_(order) {}

  // Takes in the next token. Returns false when the expression fails at that token.
  bool take(const Token& token) {
    switch (token.kind) {
      case TOKEN_NUMBER:
      case TOKEN_STRING:
      case TOKEN_VARIABLE:
        order_.push_back(&token);
        ++operands_;
        return true;
      case TOKEN_OPEN:
        waiting_.push_back({&token, std::exchange(operands_, 0)});
        return true;
      case TOKEN_CLOSE:
        return closeGroup();
      default:
        return takeOperator(token);
    }
  }

  // Takes the end of the expression. Returns false when the expression fails there.
  bool finish() { return unwind(LOOSEST_LEVEL) && waiting_.empty() && operands_ == 1; }

 private:
  struct Waiting {
    const Token* token;    // an operator or "("
    size_t outerOperands;  // of a "(": how many operands its outer group has before it
  };

  bool closeGroup() {
    if (!unwind(LOOSEST_LEVEL) || waiting_.empty() || operands_ != 1) return false;
    operands_ = waiting_.back().outerOperands + 1;
    waiting_.pop_back();
    return true;
  }

  bool takeOperator(const Token& token) {
    const int level = precedence(token.kind);
    if (level < 0 || !unwind(level)) return false;
    waiting_.push_back({&token, 0});
    return true;
  }

  // Puts out the waiting operators of the innermost group that bind at least as tightly as `level`.
  // Returns false when one of them lacks an operand.
  bool unwind(int level) {
    while (!waiting_.empty()) {
      const Token& last = *waiting_.back().token;
      if (last.kind == TOKEN_OPEN || precedence(last.kind) > level) break;
      if (operands_ < 2) return false;
      --operands_;
      order_.push_back(&last);
      waiting_.pop_back();
    }
    return true;
  }

  std::vector<const Token*>& order_;
  std::vector<Waiting> waiting_;
  size_t operands_ = 0;  // how many the innermost group has; an operator makes one of two
};

}  // namespace

int postfixOrder(const Expression& expression, std::vector<const Token*>& order) {
  order.clear();
  const std::span<const Token> tokens = expression.tokens;
  if (tokens.empty()) return -1;
  order.reserve(tokens.size());
  Conversion conversion(order);
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (!conversion.take(tokens[i])) return static_cast<int>(i + 1);
  }
  return conversion.finish() ? 0 : static_cast<int>(tokens.size());
}

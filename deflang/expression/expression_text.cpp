#include "deflang/expression/expression_text.h"

#include <utility>
#include <vector>

#include "base/number.h"
#include "deflang/expression/operators.h"

namespace {

// The text of a part, and how tightly its outermost operator binds: an operand most of all.
struct Part {
  std::string text;
  int32_t precedence = -1;
};

// An operand as it stands beside an operator; `loosest` is the level that needs no parentheses.
std::string operandText(Part part, int32_t loosest) {
  return part.precedence > loosest ? "(" + part.text + ")" : std::move(part.text);
}

}  // namespace

std::string quotedText(const std::string& text) { return '"' + text + '"'; }

std::string expressionText(const Program& program, const Variables& variables) {
  std::vector<Part> parts;
  for (const Program::Step& step : program.steps()) {
    switch (step.kind) {
      case TOKEN_NUMBER:
        parts.push_back({numberText(step.value)});
        break;
      case TOKEN_STRING:
        parts.push_back({quotedText(program.texts()[static_cast<size_t>(step.value)])});
        break;
      case TOKEN_VARIABLE:
        parts.push_back({std::string(variables[static_cast<uint32_t>(step.value)])});
        break;
      default: {
        const int32_t level = precedence(step.kind);
        // Operators of one level bind from left to right.
        const std::string right = operandText(std::move(parts.back()), level - 1);
        parts.pop_back();
        std::string text = operandText(std::move(parts.back()), level);
        text.append(" ").append(operatorText(step.kind)).append(" ").append(right);
        parts.back() = {std::move(text), level};
      }
    }
  }
  return parts.empty() ? std::string() : std::move(parts.back().text);
}

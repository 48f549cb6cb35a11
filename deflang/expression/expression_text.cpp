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

Part inParentheses(Part part, bool needed) {
  return needed ? Part{"(" + part.text + ")"} : std::move(part);
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
        Part right = std::move(parts.back());
        parts.pop_back();
        // Operators of one level bind from left to right.
        right = inParentheses(std::move(right), right.precedence >= level);
        Part left = inParentheses(std::move(parts.back()), parts.back().precedence > level);
        left.text.append(" ").append(operatorText(step.kind)).append(" ").append(right.text);
        parts.back() = {std::move(left.text), level};
      }
    }
  }
  return parts.empty() ? std::string() : std::move(parts.back().text);
}

// Programs: expressions made ready for evaluation, in postfix order with their variables as slots.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "deflang/token.h"
#include "deflang/variables.h"

/// The result of an evaluation.
struct Value {
  operandKind_t kind = OPERAND_INVALID;
  int32_t number = 0;  ///< of a number
  std::string text;    ///< of a string

  [[nodiscard]] bool valid() const { return kind != OPERAND_INVALID; }
  [[nodiscard]] bool isNumber() const { return kind == OPERAND_NUMBER; }
  /// A number other than 0, or a text that is not empty.
  [[nodiscard]] bool isTrue() const;
  /// The value as a parameter holds it: the number in decimal, or the text.
  [[nodiscard]] std::string asText() const;
};

class Program {
 public:
  /// Checks `expression` and makes `out` its program, giving its variables slots in `variables`.
  /// Returns 0 when it is well formed, -1 when it is empty, otherwise the position (from 1) of the
  /// first token at which it fails; `out` is then empty.
  static int compile(const Expression& expression, Variables& variables, Program& out);
  /// The program of the constant `number`.
  static Program constant(int32_t number);
  /// The program of the constant `text`.
  static Program constant(std::string text);

  /// The value in a situation; invalid for the empty program, for an undefined variable that no
  /// operator absorbs, and as soon as an operator has no result.
  [[nodiscard]] Value evaluate(const SituationView& situation) const;
  /// Whether the value in a situation is valid and true.
  [[nodiscard]] bool isTrue(const SituationView& situation) const;
  [[nodiscard]] bool empty() const { return steps_.empty(); }
  [[nodiscard]] bool usesVariables() const;

 private:
  // One step: an operator's code, or an operand's kind with its number, or the place of its text
  // in texts_, or its slot.
  struct Step {
    int32_t kind;
    int32_t value;
  };
  class Evaluation;
  // What the step of `token` holds; a string's text is kept, a variable gets its slot.
  int32_t stepValue(const Token& token, Variables& variables);
  std::vector<Step> steps_;
  std::vector<std::string> texts_;
  uint32_t depth_ = 0;  // operands held at once, at the most
};

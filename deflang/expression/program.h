// Programs: expressions made ready for evaluation, in postfix order with their variables as slots.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/work.h"
#include "deflang/expression/token.h"
#include "deflang/expression/variables.h"

/// The result of an evaluation.
struct Value {
  OperandKind kind = OPERAND_INVALID;
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
  /// Gives the variables, whose slots are those of `from`, their slots in `into`.
  void rebase(const Variables& from, Variables& into);
  /// The program of the constant `number`.
  static Program constant(int32_t number);
  /// The program of the constant `text`.
  static Program constant(std::string text);
  /// The program of the constant `value`, which is a number or a text.
  static Program constant(Value value);

  /// The value in a situation; invalid for the empty program, for an undefined variable that no
  /// operator absorbs, and as soon as an operator has no result. A text that is too long for a
  /// value is none.
  [[nodiscard]] Value evaluate(const SituationView& situation) const;
  /// Whether the value in a situation is valid and true.
  [[nodiscard]] bool isTrue(const SituationView& situation) const;
  [[nodiscard]] bool empty() const { return single_.kind == NO_STEP && code_ == nullptr; }
  [[nodiscard]] bool usesVariables() const;
  /// What an evaluation costs, in units of work. What it does to texts comes on top, and is counted
  /// where it is done.
  [[nodiscard]] uint64_t work() const { return WORK_PER_PROGRAM + steps().size() * WORK_PER_STEP; }

 private:
  static constexpr int32_t NO_STEP = -1;
  // One step: an operator's code, or an operand's kind with its number, or the place of its text
  // among the texts, or its slot.
  struct Step {
    int32_t kind = NO_STEP;
    int32_t value = 0;
  };
  struct Code {
    std::vector<Step> steps;
    std::vector<std::string> texts;
    uint32_t depth = 0;  // operands held at once, at the most
  };
  class Evaluation;

  // The step of `token`; a string's text is kept in `texts`, a variable gets its slot.
  static Step stepOf(const Token& token, std::vector<std::string>& texts, Variables& variables);
  [[nodiscard]] size_t depth() const { return code_ != nullptr ? code_->depth : 1; }
  [[nodiscard]] std::span<const Step> steps() const {
    if (code_ != nullptr) return code_->steps;
    return {&single_, empty() ? 0U : 1U};
  }

  // Most programs are one number or one variable, and need nothing else.
  Step single_;
  std::unique_ptr<Code> code_;
};

/// A program with variables of its own.
struct Compiled {
  Program program;
  Variables variables;
};

// Programs: expressions made ready for evaluation, in postfix order with their variables as slots.
//
//   (gain + 3 * limit)   becomes   slot 0, 3, slot 1, *, +
//
//   Variables variables;
//   Program program;
//   if (Program::compile(expression, variables, program) != 0) return;   // malformed
//   Situation situation(variables.size());
//   situation.bind(0, operandOf("7"));                                   // gain
//   situation.bind(1, operandOf("2"));                                   // limit
//   program.evaluate(situation);                                         // the number 13
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "base/work.h"
#include "deflang/expression/token.h"
#include "deflang/expression/variables.h"

/// The result of an evaluation. It owns its text.
struct Value {
  OperandKind kind = OPERAND_INVALID;  ///< OPERAND_INVALID: there is no result
  int32_t number = 0;                  ///< of a number
  std::string text;                    ///< of a string

  /// Whether there is a result: a number or a text.
  [[nodiscard]] bool valid() const { return kind != OPERAND_INVALID; }
  /// Whether the result is a number.
  [[nodiscard]] bool isNumber() const { return kind == OPERAND_NUMBER; }
  /// Whether it is a number other than 0, or a text that is not empty. False without a result.
  [[nodiscard]] bool isTrue() const;
  /// The value as a parameter holds it: the number in decimal, or the text. Empty without a result.
  [[nodiscard]] std::string asText() const;
};

/// One expression, for ever: it is made when the text is read, and evaluated in each situation. It
/// refers neither to the expression nor to the variables that it was made from, and can be moved
/// but not copied. A program that was never made is empty.
///
/// Evaluating changes nothing in the program. Numbers are evaluated without an allocation, unless
/// the expression holds more than 16 operands at once.
class Program {
  static constexpr int32_t NO_STEP = -1;

 public:
  /// Checks `expression` and makes `out` its program. Its variables get slots in `variables`: names
  /// that are there keep theirs, new ones get the next.
  /// Returns 0 when it is well formed, -1 when it is empty, otherwise the number (from 1) of the
  /// token at which the fault shows; `out` is then empty and `variables` as before. Where memory
  /// runs out (std::bad_alloc), `out` is empty and some names may be in `variables`. Takes expected
  /// time linear in the tokens and their texts; the depth has no limit.
  static int compile(const Expression& expression, Variables& variables, Program& out);
  /// Moves a program from one set of variables to another: each variable, whose slot was that of
  /// its name in `from`, gets the slot of its name in `into`, which the name is added to where it
  /// is new. Where memory runs out (std::bad_alloc), the program is of no use any more.
  void rebase(const Variables& from, Variables& into);
  /// The program of the constant `number`. Allocates nothing.
  static Program constant(int32_t number);
  /// The program of the constant `text`, also where it could be a number.
  static Program constant(std::string text);
  /// The program of the constant `value`, which is a number or a text.
  static Program constant(Value value);

  /// The value in a situation, which has a slot for each variable that the program was made with.
  /// There is none, so the result is not valid(), in four cases:
  ///
  ///   the program is empty
  ///   a variable is undefined   and the operator does not absorb it: u + 1, but 0 && u is 0
  ///   an operator has no result: 1 / 0, and so (1 / 0) && 0 too
  ///   a text is too long        for a value; see MAX_VALUE_BYTES
  ///
  /// The work on texts is counted here, the rest, which is work(), by the caller. May raise
  /// WorkExceeded or std::bad_alloc.
  [[nodiscard]] Value evaluate(const SituationView& situation) const;
  /// As evaluate(situation).isTrue(), without a copy of the text.
  [[nodiscard]] bool isTrue(const SituationView& situation) const;
  /// Whether there is no program: nothing was compiled, or that failed.
  [[nodiscard]] bool empty() const { return single_.kind == NO_STEP && code_ == nullptr; }
  /// Whether a variable is among the operands. If not, every situation gives one value.
  [[nodiscard]] bool usesVariables() const;
  /// One step: an operator, or an operand.
  struct Step {
    int32_t kind = NO_STEP;  ///< an operator's code, or a TokenKind
    int32_t value = 0;       ///< a number, the place of a string in texts(), or a variable's slot
  };
  /// The steps in postfix order, none where the program is empty: for whoever asks what the program
  /// may give in many situations at once. Valid as long as the program.
  [[nodiscard]] std::span<const Step> steps() const {
    if (code_ != nullptr) return code_->steps;
    return {&single_, empty() ? 0U : 1U};
  }
  /// The texts of the steps that are strings. Valid as long as the program.
  [[nodiscard]] std::span<const std::string> texts() const {
    if (code_ != nullptr) return code_->texts;
    return {};
  }
  /// What an evaluation costs, in units of work: WORK_PER_PROGRAM, and WORK_PER_STEP for each
  /// operand and operator. The work on texts comes on top; evaluate() and isTrue() count it.
  [[nodiscard]] uint64_t work() const { return WORK_PER_PROGRAM + steps().size() * WORK_PER_STEP; }

 private:
  struct Code {
    std::vector<Step> steps;
    std::vector<std::string> texts;
    uint32_t depth = 0;  // operands held at once, at the most
  };
  class Evaluation;

  // The step of `token`; a string's text is kept in `texts`, a variable gets its slot.
  static Step stepOf(const Token& token, std::vector<std::string>& texts, Variables& variables);
  [[nodiscard]] size_t depth() const { return code_ != nullptr ? code_->depth : 1; }

  // Most programs are one number or one variable: that is this step, and `code_` is null. The step
  // of any other program is NO_STEP.
  Step single_;
  std::unique_ptr<Code> code_;
};

/// A program with variables of its own, as the builder makes it before it knows whether the
/// definition keeps the program; Program::rebase() then gives it the definition's variables.
struct Compiled {
  Program program;
  Variables variables;
};

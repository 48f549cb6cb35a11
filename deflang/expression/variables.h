// Variables: the names that a definition's expressions use, and what they hold at one moment.
//
// Each definition numbers its names once, when it is built; an expression asks for a value by that
// number, its slot. A situation is one value for each slot. For `gain + limit * gain`:
//
//   Variables variables;             // gets gain as slot 0 and limit as slot 1
//   Situation situation(2);          // both are undefined
//   situation.bind(0, operandOf("7"));
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "base/interner.h"
#include "base/small_vector.h"

/// What an operand is. The numbers are those of TokenKind.
enum OperandKind : int32_t {
  OPERAND_INVALID = -1,  ///< an undefined variable, or an operator's result that does not exist
  OPERAND_NUMBER = 19,
  OPERAND_STRING = 20,
};

/// A value during evaluation. It owns no text: whoever binds an operand keeps the text as long as
/// the operand is used.
struct Operand {
  OperandKind kind = OPERAND_INVALID;
  int32_t number = 0;     ///< of a number, else 0
  std::string_view text;  ///< the text that the operand came from; null for a number without one
};

/// What a value text is as an operand: a number when all of it is one (see wholeNumber()),
/// otherwise a string. "0x10" is the number 16, "auto" a string, and "" the number 0. Never
/// OPERAND_INVALID. Keeps a view of `text`. May raise std::bad_alloc.
Operand operandOf(std::string_view text);

/// The value text of a bound operand: the text that it came from ("0x10"), or its number in decimal
/// where it came from none. `operand` is not OPERAND_INVALID.
std::string operandText(const Operand& operand);

/// The distinct names of one definition, numbered from 0 in the order of their first use. The
/// number of a name is its slot.
using Variables = Interner;

/// The values of a definition's variables at one moment, by slot. A new one holds no value: each of
/// its operands is OPERAND_INVALID. Its texts are views: whoever binds an operand keeps the text as
/// long as the situation is used. A copy views the same texts. A slot that is none is a fault of
/// the program and stops it.
// NOLINTNEXTLINE(bugprone-exception-escape): moving operands, which are plain data, raises nothing.
class Situation {
 public:
  /// For `slots` variables, the size of the definition's Variables. Up to four take no allocation;
  /// for more, std::bad_alloc may be raised.
  explicit Situation(size_t slots) : operands_(slots) {}
  /// Gives the variable of `slot`, which is less than size(), its value. An OPERAND_INVALID makes
  /// it undefined again.
  void bind(uint32_t slot, const Operand& value) { operands_[slot] = value; }
  /// The value of the variable of `slot`, which is less than size(). Valid as long as the object,
  /// and shows each new value.
  [[nodiscard]] const Operand& operator[](uint32_t slot) const { return operands_[slot]; }
  /// How many slots there are, bound or not.
  [[nodiscard]] size_t size() const { return operands_.size(); }

 private:
  SmallVector<Operand, 4> operands_;  // few definitions use more names
};

/// A situation as expressions see it, also where there is none: what the builder computes has no
/// situation. It refers to the situation, which has to outlive it.
class SituationView {
 public:
  /// A situation in which every variable is undefined, whatever its slot.
  SituationView() = default;
  /// The view of `situation`. Implicit, so that a situation serves wherever a view is wanted.
  // NOLINTNEXTLINE(google-explicit-constructor): a situation is its own view.
  SituationView(const Situation& situation) : situation_(&situation) {}
  /// The value of the variable of `slot`, OPERAND_INVALID where it is undefined.
  [[nodiscard]] const Operand& operator[](uint32_t slot) const {
    static constexpr Operand UNBOUND;
    return situation_ == nullptr ? UNBOUND : (*situation_)[slot];
  }

 private:
  const Situation* situation_ = nullptr;
};

/// The bound variables of several definitions together, for the system log: a refusal shows what a
/// parameter and its indices have seen. Names and texts are views, of what is added: both have to
/// live and stay unchanged as long.
class BoundVariables {
 public:
  /// Adds each variable that `situation` binds. Of a name that is there already the first value
  /// stays. `situation` has a slot for every name of `variables`. May raise std::bad_alloc.
  void add(const Variables& variables, const Situation& situation);
  /// Writes the variables to the system log, in name order. May raise std::bad_alloc.
  ///
  ///   Var list begin
  ///      "limit"="0x10"
  ///   Var list end
  void dump() const;

 private:
  std::map<std::string_view, Operand> values_;  // by name
};

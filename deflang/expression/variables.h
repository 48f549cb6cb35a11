// Variables: the names that a definition's expressions use, and what they hold at one moment.
//
// Each definition numbers its names once, when it is built; an expression asks for a value by that
// number, its slot. A situation is one value for each slot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "base/interner.h"
#include "base/small_vector.h"

/// What an operand is. The numbers are those of the tokens.
enum OperandKind : int32_t {
  OPERAND_INVALID = -1,  ///< an undefined variable, or an operator's result that does not exist
  OPERAND_NUMBER = 19,
  OPERAND_STRING = 20,
};

/// A value during evaluation. The text of a string is whoever's who bound it; a number that came
/// from a text keeps a view of that text, which only printing uses.
struct Operand {
  OperandKind kind = OPERAND_INVALID;
  int32_t number = 0;
  std::string_view text;
};

/// What a value text is as an operand: a number when all of it is one, otherwise a string. Keeps a
/// view of `text`.
Operand operandOf(std::string_view text);

/// The value text of a bound operand: the text that it came from, or its number in decimal.
std::string operandText(const Operand& operand);

/// The distinct names of one definition, numbered in the order of their first use. The number of a
/// name is its slot.
using Variables = Interner;

/// The values of a definition's variables at one moment, by slot. A fresh one holds none: each of
/// its operands is invalid. Its texts are views; who binds them keeps them as long.
class Situation {
 public:
  /// For `slots` variables, the size of the definition's Variables.
  explicit Situation(size_t slots) : operands_(slots) {}
  /// Gives the variable of `slot`, which is less than size(), its value.
  void bind(uint32_t slot, const Operand& value) { operands_[slot] = value; }
  [[nodiscard]] const Operand& operator[](uint32_t slot) const { return operands_[slot]; }
  [[nodiscard]] size_t size() const { return operands_.size(); }

 private:
  SmallVector<Operand, 4> operands_;  // few definitions use more names
};

/// A situation as expressions see it, also where there is none.
class SituationView {
 public:
  /// A situation in which nothing is bound.
  SituationView() = default;
  // NOLINTNEXTLINE(google-explicit-constructor): a situation is its own view.
  SituationView(const Situation& situation) : situation_(&situation) {}
  [[nodiscard]] const Operand& operator[](uint32_t slot) const {
    static constexpr Operand UNBOUND;
    return situation_ == nullptr ? UNBOUND : (*situation_)[slot];
  }

 private:
  const Situation* situation_ = nullptr;
};

/// The bound variables of one definition, or of several that see things together.
class BoundVariables {
 public:
  /// Adds those that `situation` binds and that are not there yet; it has a slot for every name.
  void add(const Variables& variables, const Situation& situation);
  /// Writes them to the system log: "Var list begin", a line `   "name"="value"` for each in name
  /// order, "Var list end".
  void dump() const;

 private:
  std::map<std::string_view, Operand> values_;  // by name
};

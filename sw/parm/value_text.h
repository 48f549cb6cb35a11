// Value texts: a value as it was given, with what it is as an operand worked out once.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "deflang/expression/variables.h"

/// A committed value, a staged value or a command-line constant. Expressions read a value far more
/// often than it changes, so its text is converted when it is set:
///
///   text     operand()
///   "0x10"   the number 16
///   "auto"   the string "auto"
///   ""       the number 0
///
/// Only the kind and the number are kept beside the text, and no view of it: so a copy or a move
/// needs no care.
class ValueText {
 public:
  /// The empty text, which is the number 0.
  ValueText() { set({}); }
  /// The value `text`, of any length.
  explicit ValueText(std::string text) { set(std::move(text)); }
  /// Replaces the value by `text`. Takes time linear in the text. Where memory runs out
  /// (std::bad_alloc), the value is as before.
  void set(std::string text) {
    const Operand operand = operandOf(text);
    text_ = std::move(text);
    kind_ = operand.kind;
    number_ = operand.number;
  }
  /// Replaces the value by `text`, which is the text of `other` too; this is not checked. Takes the
  /// kind and the number from `other` instead of working them out, so the time does not depend on
  /// the length and nothing can fail.
  void set(std::string text, const ValueText& other) noexcept {
    text_ = std::move(text);
    kind_ = other.kind_;
    number_ = other.number_;
  }
  /// The text as it was given. The reference is valid as long as the object, and shows each new
  /// value.
  [[nodiscard]] const std::string& text() const { return text_; }
  /// The value as an operand; never OPERAND_INVALID. It contains a view of the text, valid until
  /// the value is set, moved or destroyed.
  [[nodiscard]] Operand operand() const { return {kind_, number_, text_}; }

 private:
  std::string text_;
  OperandKind kind_ = OPERAND_INVALID;
  int32_t number_ = 0;
};

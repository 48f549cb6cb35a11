// Value texts: a value as it was given, with what it is as an operand worked out once.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "deflang/expression/variables.h"

class ValueText {
 public:
  ValueText() { set({}); }
  explicit ValueText(std::string text) { set(std::move(text)); }
  /// Where memory is exhausted, the value is as before.
  void set(std::string text) {
    const Operand operand = operandOf(text);
    text_ = std::move(text);
    kind_ = operand.kind;
    number_ = operand.number;
  }
  /// The same for a text that `other` holds already: what it is need not be worked out again, and
  /// nothing can fail.
  void set(std::string text, const ValueText& other) noexcept {
    text_ = std::move(text);
    kind_ = other.kind_;
    number_ = other.number_;
  }
  [[nodiscard]] const std::string& text() const { return text_; }
  /// The operand, with a view of the text; it holds as long as the text is neither set nor moved.
  [[nodiscard]] Operand operand() const { return {kind_, number_, text_}; }

 private:
  std::string text_;
  OperandKind kind_ = OPERAND_INVALID;
  int32_t number_ = 0;
};

// Compared values: what a condition compares its names with, and what these may hold instead.
#pragma once

#include "check/proof/proof.h"

/// A comparison of a parameter or an index with a literal that is right beside it.
struct ComparedValue {
  const Token* literal;
  VariableSource source;  ///< of the name
  int32_t code;           ///< of the operator
};

/// The comparisons of an expression, in its order. Constants and figures are not among the names.
std::vector<ComparedValue> comparedValues(const Proof& proof, const Expression& expression);

/// Whether `compared` asks for equality with what its name never holds, which a finding has said of
/// that literal or of the value that was meant to be it.
bool isToldOfStandard(Proof& proof, const ComparedValue& compared);

/// The text nearest to a literal that its name never holds: what was probably meant.
std::optional<std::string> meantText(Proof& proof, const ComparedValue& compared);

/// Proposes in `finding`, which is about `expression`, what a literal was probably meant to be.
void proposeTexts(Proof& proof, const Expression& expression, Finding& finding);

/// Adds to `finding`, which is about `expression`, what the names are that it compares, and what a
/// literal was probably meant to be.
void explainValues(Proof& proof, const Expression& expression, Finding& finding);

/// An expression with another literal.
class MendedExpression {
 public:
  /// Puts `text`, a number or a text as a parameter holds it, in the place of `literal`, which is a
  /// token of `expression`. What it is made from has to outlive it, as far as it is kept.
  MendedExpression(const Proof& proof, const Expression& expression, const Token& literal,
                   std::string text);
  MendedExpression(const MendedExpression&) = delete;
  MendedExpression& operator=(const MendedExpression&) = delete;

  [[nodiscard]] const CompiledExpression& compiled() const { return compiled_; }

 private:
  std::string text_;
  std::vector<Token> tokens_;
  CompiledExpression compiled_;
};

/// What the literal of `compared`, in a condition that is never true, may have been meant to be: a
/// value that its name holds, or an end that one of `others` compares the name with. The likeliest
/// first; none where there are many.
std::vector<std::string> meantValues(Proof& proof, const ComparedValue& compared,
                                     const std::vector<ComparedValue>& others);

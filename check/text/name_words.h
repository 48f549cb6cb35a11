// Name words: what a word can be as a name.
#pragma once

#include <string>
#include <string_view>

/// Whether a word looks like a constant of the command line: capitals, digits and underscores.
bool isConstantName(std::string_view word);

/// Whether an expression can have the name `name`: it has no sign of an operator.
bool isNameOfExpressions(std::string_view name);

/// Why an expression cannot name what is defined as `name`, which isNameOfExpressions() refuses.
std::string unusableNameText(std::string_view name);

/// The number in front of `word`, where only a unit, such as ms or dB, is behind it; else empty.
std::string_view numberBeforeUnit(std::string_view word);

/// `word` with the signs of the language for those that look alike or mean the same elsewhere: "-"
/// for a minus sign, ".." for an ellipsis, "->" for an arrow, a blank for other white space. Empty
/// where there are none.
std::string withPlainSigns(std::string_view word);

/// The number 0x... that `word` is in other languages, as in $FF or 0FFh; else empty.
std::string hexadecimalMeant(std::string_view word);

/// `word` with a "_" for each "-", which no name in an expression has.
std::string withUnderscores(std::string_view word);

#include "check/text/name_words.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "base/number.h"
#include "check/text/wording.h"

namespace {

constexpr std::string_view OPERATOR_SIGNS = "()|&^=!<>+-*/%$";

}  // namespace

bool isConstantName(std::string_view word) {
  const auto isCapital = [](char c) { return c >= 'A' && c <= 'Z'; };
  const auto mayFollow = [&](char c) { return isCapital(c) || c == '_' || (c >= '0' && c <= '9'); };
  return word.size() > 1 && isCapital(word.front()) && std::ranges::all_of(word, mayFollow);
}

bool isNameOfExpressions(std::string_view name) {
  return name.find_first_of(OPERATOR_SIGNS) == std::string_view::npos;
}

std::string unusableNameText(std::string_view name) {
  const size_t sign = name.find_first_of(OPERATOR_SIGNS);
  return "no expression can name " + quoted(name) + ", as it takes the " +
         inQuotes(name.substr(sign, 1)) + " for an operator: give the parameter a name without it";
}

std::string_view numberBeforeUnit(std::string_view word) {
  constexpr std::string_view UNITS[] = {
      "ms", "s",     "us",  "\u00B5s", "ns",  "min", "h",    "Hz", "kHz", "MHz", "GHz",
      "dB", "dBFS",  "dBu", "%",       "V",   "mV",  "A",    "mA", "W",   "K",   "C",
      "px", "lines", "fps", "deg",     "rpm", "bit", "bits", "mm", "cm",  "m"};
  const std::string_view number = word.substr(0, numberLength(word));
  const bool isUnit = std::ranges::find(UNITS, word.substr(number.size())) != std::end(UNITS);
  return isUnit && wholeNumber(number) ? number : std::string_view();
}

std::string withPlainSigns(std::string_view word) {
  constexpr std::pair<std::string_view, std::string_view> SIGNS[] = {
      {"\u2212", "-"},  {"\u2013", "-"},  {"\u2014", "-"},  {"\u2026", ".."}, {"\u2265", ">="},
      {"\u2264", "<="}, {"\u2260", "!="}, {"\u00D7", "*"},  {"\u00F7", "/"},  {"\u2192", "->"},
      {"\u21D2", "->"}, {"\u2227", "&&"}, {"\u2228", "||"}, {"\u00A0", " "},  {"\u202F", " "},
      {"\u3000", " "},  {"\u200B", ""},   {"\uFEFF", ""}};
  std::string plain;
  bool isChanged = false;
  while (!word.empty()) {
    const auto* const sign = std::ranges::find_if(
        SIGNS, [word](const auto& pair) { return word.starts_with(pair.first); });
    const bool isSign = sign != std::end(SIGNS);
    plain += isSign ? sign->second : word.substr(0, 1);
    word.remove_prefix(isSign ? sign->first.size() : 1);
    isChanged = isChanged || isSign;
  }
  return isChanged ? plain : std::string();
}

std::string hexadecimalMeant(std::string_view word) {
  std::string_view digits;
  if (word.starts_with('$')) digits = word.substr(1);
  if (word.starts_with("&H") || word.starts_with("&h")) digits = word.substr(2);
  // Names, too, may have such letters and end with an h.
  const bool isNoName = word.find_first_of("abcdef") == std::string_view::npos ||
                        std::string_view("0123456789").find(word.front()) != std::string_view::npos;
  if (word.ends_with('h') && isNoName) digits = word.substr(0, word.size() - 1);
  constexpr std::string_view HEXADECIMAL = "0123456789ABCDEFabcdef";
  const bool isNumber = !digits.empty() && digits.size() <= 8 &&
                        digits.find_first_not_of(HEXADECIMAL) == std::string_view::npos;
  return isNumber ? "0x" + std::string(digits) : std::string();
}

std::string withUnderscores(std::string_view word) {
  std::string name(word);
  std::ranges::replace(name, '-', '_');
  return name;
}

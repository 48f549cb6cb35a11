#include "check/text/wording.h"

namespace {

constexpr size_t LONGEST_QUOTATION = 40;

}  // namespace

std::string inQuotes(std::string_view text) {
  std::string quotation = "\"";
  quotation += text;
  quotation += '"';
  return quotation;
}

std::string quoted(std::string_view text) {
  const bool isLong = text.size() > LONGEST_QUOTATION;
  return isLong ? inQuotes(std::string(text.substr(0, LONGEST_QUOTATION)) + "...") : inQuotes(text);
}

std::string listOf(std::span<const std::string_view> words) {
  std::string list;
  for (size_t i = 0; i < words.size(); ++i) {
    if (i > 0) list += i + 1 == words.size() ? " or " : ", ";
    list += words[i];
  }
  return list;
}

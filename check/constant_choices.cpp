#include "check/constant_choices.h"

#include <algorithm>

#include "check/text/wording.h"
#include "deflang/text/text_cursor.h"

std::string addConstantChoice(std::string_view definition, ConstantChoices& choices) {
  const size_t equals = definition.find('=');
  if (equals == std::string_view::npos) return "a value is missing; write NAME=VALUE";
  const std::string name(definition.substr(0, equals));
  if (name.empty()) return "a name is missing; write NAME=VALUE";
  const bool isKnown = std::ranges::any_of(choices, [&](const auto& c) { return c.first == name; });
  if (isKnown) {
    return "the constant " + inQuotes(name) +
           " is given twice; several values are written NAME=VALUE,VALUE";
  }
  std::vector<std::string> values;
  for (std::string_view rest = definition.substr(equals + 1);;) {
    const size_t comma = rest.find(',');
    const std::string value(rest.substr(0, comma));
    if (std::ranges::find(values, value) != values.end()) {
      return "the constant " + inQuotes(name) + " has the value " + inQuotes(value) + " twice";
    }
    values.push_back(value);
    if (comma == std::string_view::npos) break;
    rest.remove_prefix(comma + 1);
  }
  choices.emplace_back(name, std::move(values));
  return {};
}

std::string addConstantChoices(std::string_view name, std::string_view text,
                               ConstantChoices& choices) {
  for (size_t number = 1; !text.empty(); ++number) {
    const size_t newline = text.find('\n');
    const std::string_view line = trimmed(text.substr(0, newline));
    text.remove_prefix(newline == std::string_view::npos ? text.size() : newline + 1);
    if (line.empty() || line.starts_with('#')) continue;
    const std::string wrong = addConstantChoice(line, choices);
    if (!wrong.empty()) return std::string(name) + ":" + std::to_string(number) + ": " + wrong;
  }
  return {};
}

std::string tooManyVariants(const ConstantChoices& choices) {
  size_t variants = 1;
  for (const auto& [name, values] : choices) {
    variants *= values.size();
    if (variants > MAX_VARIANTS) {
      return "the constants have more than " + std::to_string(MAX_VARIANTS) +
             " combinations; check some of their values at a time";
    }
  }
  return {};
}

#include "ctl/text/assignment.h"

#include <glib.h>

#include <algorithm>

#include "base/number.h"

namespace {

bool fits(const std::string& pattern, const std::string& text) {
  return g_pattern_match_simple(pattern.c_str(), text.c_str()) != FALSE;
}

}  // namespace

size_t signOfAssignment(std::string_view text) {
  bool isInBrackets = false;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] == '=' && !isInBrackets) return i;
    if (text[i] == '[') isInBrackets = true;
    if (text[i] == ']') isInBrackets = false;
  }
  return isInBrackets ? text.find('=') : std::string_view::npos;
}

std::optional<Assignment> assignmentOf(std::string_view text) {
  const size_t sign = signOfAssignment(text);
  if (sign == std::string_view::npos || sign == 0) return std::nullopt;
  return Assignment{std::string(text.substr(0, sign)), std::string(text.substr(sign + 1))};
}

std::string_view faultOfBrackets(std::string_view name) {
  for (size_t open = name.find('['); open < name.size();) {
    const size_t close = name.find(']', open);
    if (close == std::string_view::npos) return "a \"[\" has no \"]\"";
    open = close + 1;
    if (open < name.size() && name[open] != '[') return "there is more behind a \"]\"";
  }
  return {};
}

std::string_view baseOf(std::string_view name) { return name.substr(0, name.find('[')); }

size_t indexCountOf(std::string_view name) {
  return static_cast<size_t>(std::ranges::count(name, '['));
}

bool isNamePattern(std::string_view text) { return text.find_first_of("*?") != std::string::npos; }

bool fitsPattern(const std::string& pattern, const std::string& name) {
  return fits(pattern, name) || fits(pattern, std::string(baseOf(name)));
}

bool isSameValue(const std::string& one, const std::string& other) {
  if (one == other) return true;
  if (one.empty() || other.empty()) return false;
  const std::optional<int32_t> number = wholeNumber(one);
  return number && number == wholeNumber(other);
}

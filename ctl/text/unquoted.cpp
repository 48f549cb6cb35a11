#include "ctl/text/unquoted.h"

#include <glib.h>

#include "ctl/text/assignment.h"

namespace {

// Takes the character behind a backslash off `rest`, and adds what it stands for; false where it
// stands for nothing.
bool takeEscaped(std::string_view& rest, std::string& out) {
  if (rest.empty()) return false;
  const char c = rest.front();
  rest.remove_prefix(1);
  switch (c) {
    case '"':
    case '\\':
      out += c;
      return true;
    case 'n':
      out += '\n';
      return true;
    case 'r':
      out += '\r';
      return true;
    case 't':
      out += '\t';
      return true;
    default:
      break;
  }
  if (c != 'x' || rest.size() < 2) return false;
  const int high = g_ascii_xdigit_value(rest[0]);
  const int low = g_ascii_xdigit_value(rest[1]);
  if (high < 0 || low < 0) return false;
  out += static_cast<char>(high * 16 + low);
  rest.remove_prefix(2);
  return true;
}

// Takes a quoted text off `rest`; nullopt where it does not end.
std::optional<std::string> takeQuoted(std::string_view& rest) {
  std::string text;
  rest.remove_prefix(1);
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == '"') return text;
    if (c != '\\') {
      text += c;
    } else if (!takeEscaped(rest, text)) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

// Takes the name off `rest`, and the sign behind it.
std::optional<std::string> takeName(std::string_view& rest) {
  std::optional<std::string> name;
  if (rest.starts_with('"')) {
    name = takeQuoted(rest);
    if (!rest.starts_with('=')) return std::nullopt;
  } else {
    const size_t sign = signOfAssignment(rest);
    if (sign == std::string_view::npos) return std::nullopt;
    name = std::string(rest.substr(0, sign));
    rest.remove_prefix(sign);
  }
  rest.remove_prefix(1);
  return name;
}

std::optional<std::string> valueOf(std::string_view rest) {
  if (!rest.starts_with('"')) return std::string(rest);
  std::optional<std::string> value = takeQuoted(rest);
  return rest.empty() ? value : std::nullopt;
}

bool isForBus(const std::string& text) {
  return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

}  // namespace

std::optional<Assignment> unquotedAssignment(std::string_view line) {
  const std::optional<std::string> name = takeName(line);
  if (!name || name->empty()) return std::nullopt;
  const std::optional<std::string> value = valueOf(line);
  if (!value || !isForBus(*name) || !isForBus(*value)) return std::nullopt;
  return Assignment{*name, *value};
}

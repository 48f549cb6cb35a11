#include "ctl/text/unquoted.h"

#include <glib.h>

#include "ctl/text/assignment.h"

namespace {

constexpr std::string_view NO_ASSIGNMENT = "this is not NAME=VALUE";
constexpr std::string_view NO_ESCAPE =
    R"(a "\" is followed by neither ", \, n, r, t nor x with two digits)";
constexpr std::string_view OPEN_QUOTE = R"(the quoted text has no closing ")";
constexpr std::string_view MORE_BEHIND = R"(there is more behind the closing ")";
constexpr std::string_view NOT_FOR_BUS = "this is not UTF-8, or has a NUL byte";

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

// Takes a quoted text off `rest`; nullopt where it is no such text.
std::optional<std::string> takeQuoted(std::string_view& rest, std::string_view& fault) {
  std::string text;
  rest.remove_prefix(1);
  while (!rest.empty()) {
    const char c = rest.front();
    rest.remove_prefix(1);
    if (c == '"') return text;
    if (c != '\\') {
      text += c;
    } else if (!takeEscaped(rest, text)) {
      fault = NO_ESCAPE;
      return std::nullopt;
    }
  }
  fault = OPEN_QUOTE;
  return std::nullopt;
}

// Takes the name off `rest`, and the sign behind it.
std::optional<std::string> takeName(std::string_view& rest, std::string_view& fault) {
  std::optional<std::string> name;
  if (rest.starts_with('"')) {
    name = takeQuoted(rest, fault);
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

std::optional<std::string> valueOf(std::string_view rest, std::string_view& fault) {
  if (!rest.starts_with('"')) return std::string(rest);
  std::optional<std::string> value = takeQuoted(rest, fault);
  if (!value || rest.empty()) return value;
  fault = MORE_BEHIND;
  return std::nullopt;
}

bool isForBus(const std::string& text) {
  return g_utf8_validate_len(text.data(), text.size(), nullptr) != FALSE;
}

}  // namespace

std::optional<Assignment> unquotedAssignment(std::string_view line, std::string_view& fault) {
  fault = NO_ASSIGNMENT;
  const std::optional<std::string> name = takeName(line, fault);
  if (!name || name->empty()) return std::nullopt;
  const std::optional<std::string> value = valueOf(line, fault);
  if (!value) return std::nullopt;
  if (isForBus(*name) && isForBus(*value)) return Assignment{*name, *value};
  fault = NOT_FOR_BUS;
  return std::nullopt;
}

#include "ctl/text/quoted.h"

#include <glib.h>

#include <algorithm>

#include "ctl/text/assignment.h"

namespace {

// Signs that a shell, or this program's own sentences, would take for more than a letter.
constexpr std::string_view SENTENCE_SIGNS = " \"\\,;()";
constexpr std::string_view SHELL_LETTERS = "_-+=.,:/@%";

bool isUnprintable(gunichar c) {
  switch (g_unichar_type(c)) {
    case G_UNICODE_CONTROL:
    case G_UNICODE_FORMAT:
    case G_UNICODE_LINE_SEPARATOR:
    case G_UNICODE_PARAGRAPH_SEPARATOR:
    case G_UNICODE_SURROGATE:
      return true;
    default:
      return false;
  }
}

// Calls `visit` with each character of `text`, valid UTF-8, and its bytes.
template <typename Visit>
void forEachCharacter(std::string_view text, const Visit& visit) {
  while (!text.empty()) {
    const auto bytes =
        std::min(text.size(), static_cast<size_t>(g_utf8_skip[static_cast<guchar>(text[0])]));
    visit(g_utf8_get_char(text.data()), text.substr(0, bytes));
    text.remove_prefix(bytes);
  }
}

bool hasUnprintable(std::string_view text) {
  bool has = false;
  forEachCharacter(text,
                   [&](gunichar c, std::string_view /*bytes*/) { has = has || isUnprintable(c); });
  return has;
}

void appendBytes(std::string& out, std::string_view bytes) {
  constexpr std::string_view DIGITS = "0123456789abcdef";
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    out += {'\\', 'x', DIGITS[byte / 16], DIGITS[byte % 16]};
  }
}

// A character that cannot be printed.
void appendEscape(std::string& out, gunichar c, std::string_view bytes) {
  switch (c) {
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      appendBytes(out, bytes);
  }
}

// `text` with an escape for each character that cannot be printed, and a backslash before each of
// `signs`.
std::string escaped(std::string_view text, std::string_view signs) {
  std::string out;
  forEachCharacter(text, [&](gunichar c, std::string_view bytes) {
    if (isUnprintable(c)) return appendEscape(out, c, bytes);
    if (signs.find(bytes) != std::string_view::npos) out += '\\';
    out += bytes;
  });
  return out;
}

std::string inQuotes(std::string_view text) { return '"' + escaped(text, "\"\\") + '"'; }

bool isPlainLine(std::string_view text) {
  if (text.empty()) return true;
  return text.front() != '"' && text.front() != ' ' && text.back() != ' ' && !hasUnprintable(text);
}

bool isPlainWord(std::string_view text) {
  return !text.empty() && text.find_first_of(SENTENCE_SIGNS) == std::string_view::npos &&
         !hasUnprintable(text);
}

bool isShellLetter(char c) {
  return g_ascii_isalnum(c) || SHELL_LETTERS.find(c) != std::string_view::npos;
}

}  // namespace

std::string quotedLine(std::string_view text) {
  return isPlainLine(text) ? std::string(text) : inQuotes(text);
}

std::string quotedWord(std::string_view text) {
  return isPlainWord(text) ? std::string(text) : inQuotes(text);
}

std::string quotedAssignment(std::string_view name, std::string_view value) {
  const bool isPlain = isPlainLine(name) && signOfAssignment(name) == std::string_view::npos;
  return (isPlain ? std::string(name) : inQuotes(name)) + "=" + quotedLine(value);
}

std::string printableText(std::string_view text) { return escaped(text, {}); }

std::string shellWord(const std::string& text) {
  return hasUnprintable(text) ? "$'" + escaped(text, "'\\") + "'" : scriptWord(text);
}

std::string scriptWord(const std::string& text) {
  if (!text.empty() && std::ranges::all_of(text, isShellLetter)) return text;
  gchar* const quoted = g_shell_quote(text.c_str());
  std::string word = quoted;
  g_free(quoted);
  return word;
}

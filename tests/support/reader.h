// Reading, for the tests of the grammar: runs one of its functions on a text, and writes what it
// made of it as a text.
//
//   RangeStatement read;
//   EXPECT_EQ(readText(readRange, "(m) { 0..9, \"a\" }", read), (Stop{PARSE_DONE, 1, 17}));
//   EXPECT_EQ(textOf(read), "(m) { [0]..[9] 'a' }");
#pragma once

#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "base/number.h"
#include "deflang/expression/token.h"
#include "deflang/text/record.h"
#include "deflang/text/text_cursor.h"
#include "tests/support/lines.h"

/// Where reading stopped, and with which result.
struct Stop {
  int result;     ///< a ParseResult or TEXT_ENDS
  uint32_t line;  ///< from 1; 0 before the first line
  size_t column;  ///< in bytes from 0

  bool operator==(const Stop&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Stop& stop) {
  return out << "result " << stop.result << " at line " << stop.line << ", column " << stop.column;
}

/// The lines of `text`, each with its newline; the last may be without one. Views of `text`.
inline std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  const TextCursor::NextLine nextLine = linesIn(text);
  for (std::string_view line; nextLine(line);) lines.push_back(line);
  return lines;
}

/// The memory that keeps what the tests read, until the program ends.
inline Arena& testArena() {
  static Arena arena;
  return arena;
}

/// The result of readText() where the text ends before what is read is complete; the cursor's own
/// result is then PARSE_DONE.
constexpr int TEXT_ENDS = -100;

/// Reads into `what` by the function `read` of the grammar, from lines or pieces of lines.
template <typename Read, typename T>
Stop readText(Read read, const std::vector<std::string_view>& lines, T& what) {
  TextCursor cursor(pulledFrom(lines), testArena());
  const bool isRead = read(cursor, what);
  const int fault = cursor.result() == PARSE_DONE ? TEXT_ENDS : cursor.result();
  return {isRead ? PARSE_DONE : fault, cursor.position().line, cursor.position().column};
}

/// Reads into `what` by the function `read` of the grammar, from the lines of `text`.
template <typename Read, typename T>
Stop readText(Read read, std::string_view text, T& what) {
  return readText(read, linesOf(text), what);
}

/// A token as it is written, numbers in decimal and strings in single quotes.
inline std::string textOf(const Token& token) {
  static constexpr const char* operators[] = {"||", "&&", "|",  "^",  "&",  "==", "!=",
                                              "<",  ">",  "<=", ">=", "<<", ">>", "+",
                                              "-",  "*",  "/",  "%",  "$"};
  switch (token.kind) {
    case TOKEN_OPEN:
      return "(";
    case TOKEN_CLOSE:
      return ")";
    case TOKEN_NUMBER:
      return numberText(token.number);
    case TOKEN_STRING:
      return "'" + std::string(token.text) + "'";
    case TOKEN_VARIABLE:
      return std::string(token.text);
    default:
      return operators[token.kind];
  }
}

/// The tokens with a blank between them.
inline std::string textOf(const Expression& expression) {
  std::string text;
  for (const Token& token : expression.tokens) {
    if (!text.empty()) text += ' ';
    text += textOf(token);
  }
  return text;
}

/// "line:column".
inline std::string textOf(Position at) {
  return std::to_string(at.line) + ":" + std::to_string(at.column);
}

/// "line:column" of each token, with a blank between them.
inline std::string placesOf(const Expression& expression) {
  std::string text;
  for (const Token& token : expression.tokens) {
    if (!text.empty()) text += ' ';
    text += textOf(token.at);
  }
  return text;
}

/// "'auto'" for a quoted text, "[7]" for a value, "[0]..[a + 1]" for a span.
inline std::string textOf(const RangeItem& item) {
  if (item.text) return "'" + std::string(*item.text) + "'";
  const std::string lower = "[" + textOf(item.lower) + "]";
  return item.upper ? lower + "..[" + textOf(*item.upper) + "]" : lower;
}

/// The condition in parentheses, the items in braces: "(m) { [0]..[9] 'a' }".
inline std::string textOf(const RangeStatement& statement) {
  std::string text = "(" + textOf(statement.condition) + ") {";
  for (const RangeItem& item : statement.items) text += " " + textOf(item);
  return text + " }";
}

/// "(m) { [5] }", or "() { 'a' }" without a condition and with a quoted text.
inline std::string textOf(const DefaultStatement& statement) {
  const std::string value = statement.text ? "'" + std::string(*statement.text) + "'"
                                           : "[" + textOf(statement.value) + "]";
  return "(" + textOf(statement.condition) + ") { " + value + " }";
}

/// "'off' -> '0'".
inline std::string textOf(const Translation& translation) {
  return "'" + std::string(translation.source) + "' -> '" + std::string(translation.target) + "'";
}

/// "{ i j }".
inline std::string textOf(const IndexStatement& statement) {
  std::string text = "{";
  for (const IndexName& name : statement) text.append(" ").append(name.name);
  return text + " }";
}

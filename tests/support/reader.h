// For the tests of the parser and its readers: feeding them text, and telling what they made of it.
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

/// Where a reader stopped, and with which result.
struct Stop {
  int result;
  uint32_t line;
  size_t column;

  bool operator==(const Stop&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const Stop& stop) {
  return out << "result " << stop.result << " at line " << stop.line << ", column " << stop.column;
}

/// The lines of `text`, each with its newline; the last may have none.
inline std::vector<std::string_view> linesOf(std::string_view text) {
  std::vector<std::string_view> lines;
  const TextCursor::NextLine nextLine = linesIn(text);
  for (std::string_view line; nextLine(line);) lines.push_back(line);
  return lines;
}

/// Where what the tests read is kept.
inline Arena& testArena() {
  static Arena arena;
  return arena;
}

/// The result where the text ends before what is read is complete.
constexpr int TEXT_ENDS = -100;

/// What a function of the grammar reads from the lines of a text, which may be pieces of lines.
template <typename Read, typename T>
Stop readText(Read read, const std::vector<std::string_view>& lines, T& what) {
  TextCursor cursor(pulledFrom(lines), testArena());
  const bool isRead = read(cursor, what);
  const int fault = cursor.result() == PARSE_DONE ? TEXT_ENDS : cursor.result();
  return {isRead ? PARSE_DONE : fault, cursor.position().line, cursor.position().column};
}

template <typename Read, typename T>
Stop readText(Read read, std::string_view text, T& what) {
  return readText(read, linesOf(text), what);
}

/// A number and a variable as they are, a string in single quotes, operators and parentheses.
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

inline std::string textOf(Position at) {
  return std::to_string(at.line) + ":" + std::to_string(at.column);
}

/// "line:column" of each token.
inline std::string placesOf(const Expression& expression) {
  std::string text;
  for (const Token& token : expression.tokens) {
    if (!text.empty()) text += ' ';
    text += textOf(token.at);
  }
  return text;
}

inline std::string textOf(const RangeItem& item) {
  if (item.text) return "'" + std::string(*item.text) + "'";
  const std::string lower = "[" + textOf(item.lower) + "]";
  return item.upper ? lower + "..[" + textOf(*item.upper) + "]" : lower;
}

/// The condition in parentheses, the items in braces.
inline std::string textOf(const RangeStatement& statement) {
  std::string text = "(" + textOf(statement.condition) + ") {";
  for (const RangeItem& item : statement.items) text += " " + textOf(item);
  return text + " }";
}

inline std::string textOf(const DefaultStatement& statement) {
  const std::string value = statement.text ? "'" + std::string(*statement.text) + "'"
                                           : "[" + textOf(statement.value) + "]";
  return "(" + textOf(statement.condition) + ") { " + value + " }";
}

inline std::string textOf(const Translation& translation) {
  return "'" + std::string(translation.source) + "' -> '" + std::string(translation.target) + "'";
}

inline std::string textOf(const IndexStatement& statement) {
  std::string text = "{";
  for (const IndexName& name : statement) text.append(" ").append(name.name);
  return text + " }";
}

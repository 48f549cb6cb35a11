#include "check/static/token_place.h"

#include <algorithm>

#include "deflang/expression/operators.h"
#include "deflang/text/text_cursor.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr StopSet NAME_STOPS("()|&^=!<>+-*/%$[]");

std::string_view restAt(const SourceText& source, Position at) {
  const std::string_view line = source.line(at.line);
  return line.substr(std::min<size_t>(at.column, line.size()));
}

size_t whiteSpaceLength(std::string_view rest) {
  const auto* const end = std::find_if_not(rest.begin(), rest.end(), isWhiteSpace);
  return static_cast<size_t>(end - rest.begin());
}

bool isWordByte(char c) {
  return ('0' <= c && c <= '9') || ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z');
}

size_t numberLengthAt(std::string_view rest) {
  size_t length = rest.starts_with('-') || rest.starts_with('+') ? 1 : 0;
  if (length > 0) length += whiteSpaceLength(rest.substr(length));
  while (length < rest.size() && isWordByte(rest[length])) ++length;
  return length;
}

// With both quotes, or up to the end of the line.
size_t quotedLength(std::string_view rest) {
  const size_t end = rest.find('"', 1);
  return end == std::string_view::npos ? rest.size() : end + 1;
}

size_t nameLength(std::string_view rest, std::string_view name) {
  size_t length = std::min(baseName(name).size(), rest.size());
  if (length == name.size()) return length;
  for (;;) {
    const size_t blanks = whiteSpaceLength(rest.substr(length));
    if (!rest.substr(length + blanks).starts_with('[')) break;
    const size_t end = rest.find(']', length);
    if (end == std::string_view::npos) return length;
    length = end + 1;
  }
  if (name.ends_with(']')) return length;
  // A figure comes behind the index values.
  while (length < rest.size() && !NAME_STOPS.contains(rest[length])) ++length;
  return length;
}

size_t tokenLength(std::string_view rest, const Token& token) {
  switch (token.kind) {
    case TOKEN_NUMBER:
      return numberLengthAt(rest);
    case TOKEN_STRING:
      return quotedLength(rest);
    case TOKEN_VARIABLE:
      return nameLength(rest, token.text);
    default:
      break;
  }
  const std::optional<OperatorText> sign = operatorAt(rest);
  return sign ? sign->text.size() : 1;
}

TextPlace placeAt(Position at, size_t length) {
  return {at.line, at.column, static_cast<uint32_t>(length)};
}

}  // namespace

TextPlace tokenPlace(const SourceText& source, const Token& token) {
  return placeAt(token.at, tokenLength(restAt(source, token.at), token));
}

TextPlace valuePlace(const SourceText& source, Position at) {
  const std::string_view rest = restAt(source, at);
  if (rest.starts_with('"')) return placeAt(at, quotedLength(rest));
  return placeAt(at, std::max<size_t>(numberLengthAt(rest), 1));
}

TextPlace itemPlace(const SourceText& source, const RangeItem& item) {
  TextPlace place = valuePlace(source, item.at);
  if (item.text || !item.upper || item.upper->tokens.size() != 1) return place;
  const TextPlace upper = tokenPlace(source, item.upper->tokens.front());
  if (upper.line != place.line || textAt(source, place) == "(") return place;
  place.length = upper.column + upper.length - place.column;
  const bool isInParentheses = textAt(source, place).find('(') != std::string_view::npos;
  const size_t close = source.line(upper.line).find(')', upper.column);
  if (isInParentheses && close != std::string_view::npos) {
    place.length = static_cast<uint32_t>(close) + 1 - place.column;
  }
  return place;
}

TextPlace targetPlace(const SourceText& source, const Translation& translation) {
  const TextPlace from = valuePlace(source, translation.at);
  const std::string_view rest = source.line(from.line);
  const size_t behind = from.column + from.length;
  const size_t arrow = behind <= rest.size() ? rest.find("->", behind) : std::string_view::npos;
  if (arrow == std::string_view::npos) return from;
  const size_t column = arrow + 2 + whiteSpaceLength(rest.substr(arrow + 2));
  if (column >= rest.size()) return from;
  return valuePlace(source, {from.line, static_cast<uint32_t>(column)});
}

std::string_view textAt(const SourceText& source, const TextPlace& place) {
  return restAt(source, {place.line, place.column}).substr(0, place.length);
}

#include "deflang/expression_reader.h"

#include <optional>
#include <utility>

#include "deflang/number.h"
#include "deflang/operators.h"

namespace {

constexpr StopSet OPERAND_STOPS("()|&^=!<>+-*/%$[]");

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

// In 32 bits, where the least number is its own opposite.
int32_t negated(int32_t number) { return static_cast<int32_t>(0U - static_cast<uint32_t>(number)); }

// A minus sign before a number is the number's where an operand must stand: at the start and after
// an operator. After "(" it stays an operator without a left side, which the check refuses.
std::vector<Token> foldNegativeNumbers(std::vector<Token>& tokens) {
  std::vector<Token> folded;
  folded.reserve(tokens.size());
  for (Token& token : tokens) {
    const bool isNegative = token.kind == TOKEN_NUMBER && !folded.empty() &&
                            folded.back().kind == OP_SUBTRACT &&
                            (folded.size() == 1 || isOperator(folded[folded.size() - 2].kind));
    if (isNegative) {
      folded.back().kind = TOKEN_NUMBER;  // where the sign stands
      folded.back().number = negated(token.number);
    } else {
      folded.push_back(std::move(token));
    }
  }
  return folded;
}

}  // namespace

int ExpressionReader::read(Cursor& cursor) {
  int result = isOpen() ? PARSE_DONE : cursor.expect("(");
  if (result != PARSE_DONE) return result;
  if (!isOpen()) depth_ = 1;
  while (isOpen() && result == PARSE_DONE) result = readElement(cursor);
  return result;
}

int ExpressionReader::readElement(Cursor& cursor) {
  if (string_.isOpen() || suffix_.isOpen()) return readQuoted(cursor);
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.at("\"")) return openString(cursor);
  const std::string_view word = cursor.word(OPERAND_STOPS);
  return word.empty() ? readSign(cursor) : readOperand(cursor, word);
}

int ExpressionReader::openString(Cursor& cursor) {
  addToken(cursor, TOKEN_STRING);
  string_.open(cursor);
  return PARSE_DONE;
}

int ExpressionReader::readQuoted(Cursor& cursor) {
  if (string_.isOpen()) {
    const int result = string_.read(cursor);
    if (result == PARSE_DONE) tokens_.back().text = string_.take();
    return result;
  }
  const int result = suffix_.read(cursor);
  if (result == PARSE_DONE) {
    const std::string suffix = suffix_.take();
    tokens_.back().text.append("[").append(trimmed(suffix)).append("]");
  }
  return result;
}

int ExpressionReader::readSign(Cursor& cursor) {
  if (cursor.at("[")) return openSuffix(cursor);
  const OperatorText* const sign = operatorAt(cursor.rest());
  if (sign == nullptr) return PARSE_SYNTAX_ERROR;
  if (sign->code == TOKEN_OPEN) ++depth_;
  if (sign->code == TOKEN_CLOSE) --depth_;
  if (isOpen()) addToken(cursor, sign->code);
  cursor.advance(sign->text.size());
  if (!isOpen()) cursor.skipWhiteSpace();
  return PARSE_DONE;
}

int ExpressionReader::openSuffix(Cursor& cursor) {
  if (tokens_.empty() || tokens_.back().kind != TOKEN_VARIABLE) return PARSE_SYNTAX_ERROR;
  suffix_.open(cursor);
  return PARSE_DONE;
}

// Whether "::FIGURE" stands behind a "vidStd::PARAMETER[...]": the only name that goes on there.
bool ExpressionReader::continuesName(std::string_view word) const {
  return word.starts_with("::") && !tokens_.empty() && tokens_.back().kind == TOKEN_VARIABLE &&
         tokens_.back().text.starts_with("vidStd::") && tokens_.back().text.ends_with(']');
}

int ExpressionReader::readOperand(Cursor& cursor, std::string_view word) {
  if (continuesName(word)) {
    tokens_.back().text.append(word);
    cursor.advance(word.size());
    return PARSE_DONE;
  }
  const std::optional<int32_t> number = wholeNumber(word);
  addToken(cursor, number ? TOKEN_NUMBER : TOKEN_VARIABLE);
  if (number) {
    tokens_.back().number = *number;
  } else {
    tokens_.back().text = word;
  }
  cursor.advance(word.size());
  return PARSE_DONE;
}

void ExpressionReader::addToken(const Cursor& cursor, int32_t kind) {
  tokens_.push_back({cursor.position(), kind, 0, {}});
}

Expression ExpressionReader::take() {
  Expression expression{foldNegativeNumbers(tokens_)};
  tokens_.clear();
  return expression;
}

void ExpressionReader::reset() {
  tokens_.clear();
  string_.reset();
  suffix_.reset();
  depth_ = 0;
}

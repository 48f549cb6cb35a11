#include "deflang/text/expression_reader.h"

#include <optional>
#include <utility>

#include "base/number.h"
#include "deflang/expression/operators.h"

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
void foldNegativeNumbers(std::vector<Token>& tokens) {
  size_t folded = 0;  // how many tokens are left so far
  for (const Token& token : tokens) {
    const bool isNegative = token.kind == TOKEN_NUMBER && folded > 0 &&
                            tokens[folded - 1].kind == OP_SUBTRACT &&
                            (folded == 1 || isOperator(tokens[folded - 2].kind));
    if (isNegative) {
      tokens[folded - 1].kind = TOKEN_NUMBER;  // where the sign stands
      tokens[folded - 1].number = negated(token.number);
    } else {
      tokens[folded++] = token;
    }
  }
  tokens.resize(folded);
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
    growName({"[", trimmed(suffix_.take()), "]"});
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
  if (isOpen()) return PARSE_DONE;
  finish(cursor);
  cursor.skipWhiteSpace();
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
         lastName().starts_with("vidStd::") && lastName().ends_with(']');
}

int ExpressionReader::readOperand(Cursor& cursor, std::string_view word) {
  if (continuesName(word)) {
    growName({word});
    cursor.advance(word.size());
    return PARSE_DONE;
  }
  const std::optional<int32_t> number = wholeNumber(word);
  Token& token = addToken(cursor, number ? TOKEN_NUMBER : TOKEN_VARIABLE);
  if (number) {
    token.number = *number;
  } else {
    token.text = cursor.memory().keepText(word);
  }
  cursor.advance(word.size());
  return PARSE_DONE;
}

Token& ExpressionReader::addToken(const Cursor& cursor, int32_t kind) {
  endName(cursor);
  return tokens_.emplace_back(Token{cursor.position(), kind, 0, {}});
}

std::string_view ExpressionReader::lastName() const {
  return grownName_.empty() ? tokens_.back().text : grownName_;
}

// A name is kept when it is complete: one that took up memory with each index value would take the
// square of its length.
void ExpressionReader::growName(std::initializer_list<std::string_view> parts) {
  if (grownName_.empty()) grownName_ = tokens_.back().text;
  for (const std::string_view part : parts) grownName_ += part;
}

void ExpressionReader::endName(const Cursor& cursor) {
  if (grownName_.empty()) return;
  tokens_.back().text = cursor.memory().keepText(grownName_);
  grownName_.clear();
}

void ExpressionReader::finish(const Cursor& cursor) {
  endName(cursor);
  foldNegativeNumbers(tokens_);
  expression_.tokens = cursor.memory().keepList<Token>(tokens_);
  tokens_.clear();
}

Expression ExpressionReader::take() { return std::exchange(expression_, {}); }

void ExpressionReader::reset() {
  tokens_.clear();
  grownName_.clear();
  expression_ = {};
  string_.reset();
  suffix_.reset();
  depth_ = 0;
}

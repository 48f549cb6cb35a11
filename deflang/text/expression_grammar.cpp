#include "deflang/text/expression_grammar.h"

#include <algorithm>
#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "base/number.h"
#include "base/value_limit.h"
#include "deflang/expression/operators.h"

namespace {

constexpr StopSet OPERAND_STOPS("()|&^=!<>+-*/%$[]");

// In 32 bits, where the least number is its own opposite.
int32_t negated(int32_t number) { return static_cast<int32_t>(0U - static_cast<uint32_t>(number)); }

// Makes a minus sign and the number after it one token where an operand has to be: at the start and
// after an operator. After "(" the sign stays an operator without a left side, which compiling
// refuses.
void foldNegativeNumbers(std::vector<Token>& tokens) {
  size_t folded = 0;  // how many tokens are left so far
  for (const Token& token : tokens) {
    const bool isNegative = token.kind == TOKEN_NUMBER && folded > 0 &&
                            tokens[folded - 1].kind == OP_SUBTRACT &&
                            (folded == 1 || isOperator(tokens[folded - 2].kind));
    if (isNegative) {
      tokens[folded - 1].kind = TOKEN_NUMBER;  // where the sign is
      tokens[folded - 1].number = negated(token.number);
    } else {
      tokens[folded++] = token;
    }
  }
  tokens.resize(folded);
}

// Reads the tokens between a parenthesis, which has been taken, and its partner.
class TokenReader {
 public:
  explicit TokenReader(TextCursor& cursor) : cursor_(cursor) {}
  bool read(Expression& expression);

 private:
  bool readElement();
  bool readString();
  bool readIndexValue();
  bool readSign();
  void readOperand(std::string_view word);
  [[nodiscard]] bool continuesName(std::string_view word) const;
  Token& addToken(int32_t kind);
  [[nodiscard]] std::string_view lastName() const;
  void growName(std::initializer_list<std::string_view> parts);
  void endName();

  TextCursor& cursor_;
  std::vector<Token> tokens_;
  std::string grownName_;  // of the last token where that is a variable with index values
  size_t depth_ = 1;       // how many parentheses are open
};

bool TokenReader::read(Expression& expression) {
  while (depth_ > 0) {
    if (!readElement()) return false;
  }
  endName();
  foldNegativeNumbers(tokens_);
  expression.tokens = cursor_.arena().keepList<Token>(tokens_);
  return true;
}

bool TokenReader::readElement() {
  if (!cursor_.skipWhiteSpace()) return false;
  if (cursor_.at("\"")) return readString();
  if (cursor_.at("[")) return readIndexValue();
  const std::string_view word = cursor_.word(OPERAND_STOPS);
  if (word.empty()) return readSign();
  readOperand(word);
  return true;
}

bool TokenReader::readString() {
  Token& token = addToken(TOKEN_STRING);
  cursor_.advance(1);
  return readQuoted(cursor_, '"', token.text);
}

bool TokenReader::readIndexValue() {
  if (tokens_.empty() || tokens_.back().kind != TOKEN_VARIABLE) {
    return cursor_.fail(PARSE_SYNTAX_ERROR);
  }
  cursor_.advance(1);
  std::string_view value;
  if (!readQuoted(cursor_, ']', value)) return false;
  growName({"[", trimmed(value), "]"});
  return true;
}

bool TokenReader::readSign() {
  const std::optional<OperatorText> sign = operatorAt(cursor_.rest());
  if (!sign) return cursor_.fail(PARSE_SYNTAX_ERROR);
  if (sign->code == TOKEN_OPEN) ++depth_;
  if (sign->code == TOKEN_CLOSE) --depth_;
  if (depth_ > 0) addToken(sign->code);
  cursor_.advance(sign->text.size());
  return true;
}

void TokenReader::readOperand(std::string_view word) {
  if (continuesName(word)) {
    growName({word});
  } else if (const std::optional<int32_t> number = wholeNumber(word)) {
    addToken(TOKEN_NUMBER).number = *number;
  } else {
    addToken(TOKEN_VARIABLE).text = cursor_.arena().keepText(word);
  }
  cursor_.advance(word.size());
}

// Whether "::FIGURE" comes behind a "vidStd::PARAMETER[...]": the only name that goes on there.
bool TokenReader::continuesName(std::string_view word) const {
  return word.starts_with("::") && !tokens_.empty() && tokens_.back().kind == TOKEN_VARIABLE &&
         lastName().starts_with("vidStd::") && lastName().ends_with(']');
}

Token& TokenReader::addToken(int32_t kind) {
  endName();
  return tokens_.emplace_back(Token{cursor_.position(), kind, 0, {}});
}

std::string_view TokenReader::lastName() const {
  return grownName_.empty() ? tokens_.back().text : grownName_;
}

// A name grows here and is kept once it is complete. Kept after each index value, it would take
// memory by the square of its length.
void TokenReader::growName(std::initializer_list<std::string_view> parts) {
  if (grownName_.empty()) grownName_ = tokens_.back().text;
  for (const std::string_view part : parts) grownName_ += part;
}

void TokenReader::endName() {
  if (grownName_.empty()) return;
  tokens_.back().text = cursor_.arena().keepText(grownName_);
  grownName_.clear();
}

}  // namespace

bool readQuoted(TextCursor& cursor, char closing, std::string_view& text) {
  std::string earlier;  // what is on earlier lines
  for (;;) {
    std::string_view rest = cursor.rest();
    const size_t end = rest.find(closing);
    if (earlier.size() + std::min(end, rest.size()) > MAX_VALUE_BYTES) {
      return cursor.fail(PARSE_SYNTAX_ERROR);
    }
    if (end != std::string_view::npos) {
      rest = rest.substr(0, end);
      text = cursor.arena().keepText(earlier.empty() ? rest : earlier += rest);
      cursor.advance(end + 1);
      return true;
    }
    if (rest.ends_with('\n')) rest.remove_suffix(1);
    earlier += rest;
    if (!cursor.pullLine()) return false;
  }
}

bool readExpression(TextCursor& cursor, Expression& expression) {
  return cursor.expect("(") && TokenReader(cursor).read(expression);
}

#include "check/text/expression_causes.h"

#include <algorithm>
#include <utility>

#include "check/text/name_words.h"
#include "check/text/wording.h"
#include "deflang/expression/operators.h"
#include "sw/parm/parm_name.h"

namespace {

// What is an operator elsewhere.
constexpr std::pair<std::string_view, std::string_view> FOREIGN_OPERATORS[] = {
    {"and", "&&"}, {"AND", "&&"}, {"or", "||"},      {"OR", "||"}, {"xor", "^"},
    {"XOR", "^"},  {"mod", "%"},  {"MOD", "%"},      {"eq", "=="}, {"ne", "!="},
    {"is", "=="},  {"in", "=="},  {"contains", "$"},
};

bool isOperand(const Token& token) {
  return token.kind == TOKEN_NUMBER || token.kind == TOKEN_STRING || token.kind == TOKEN_VARIABLE;
}

// Whether a value ends with `token`, and whether one begins with it.
bool endsValue(const Token& token) { return isOperand(token) || token.kind == TOKEN_CLOSE; }
bool beginsValue(const Token& token) { return isOperand(token) || token.kind == TOKEN_OPEN; }

class ExpressionCause {
 public:
  ExpressionCause(const TextFacts& facts, const Expression& expression)
      : facts_(facts), tokens_(expression.tokens) {}

  std::optional<Finding> find() const {
    for (size_t i = 0; i < tokens_.size(); ++i) {
      if (std::optional<Finding> finding = at(i)) return finding;
    }
    return {};
  }

 private:
  [[nodiscard]] std::optional<Finding> at(size_t i) const {
    const Token& token = tokens_[i];
    const bool isFirst = i == 0;
    const bool isLast = i + 1 == tokens_.size();
    if (token.kind == TOKEN_VARIABLE && token.text.starts_with('#')) {
      return Finding{"comment-after-code", facts_.restOfLine(token.at),
                     "a comment has to be on a line of its own"};
    }
    if (!isFirst && beginsValue(token) && endsValue(tokens_[i - 1])) return betweenValues(i);
    if (token.kind == TOKEN_CLOSE && tokens_[i - 1].kind == TOKEN_OPEN) {
      return wrong(i, "there is nothing between these parentheses");
    }
    if (!isOperator(token.kind)) return {};
    const bool lacksLeft = isFirst || !endsValue(tokens_[i - 1]);
    if (lacksLeft) return withoutLeft(i);
    if (isLast || tokens_[i + 1].kind == TOKEN_CLOSE) {
      return wrong(i, "a value is missing behind " + textOf(i));
    }
    return {};
  }

  [[nodiscard]] std::optional<Finding> betweenValues(size_t i) const {
    const Token& before = tokens_[i - 1];
    for (const size_t word : {i - 1, i}) {
      if (tokens_[word].kind != TOKEN_VARIABLE) continue;
      if (auto finding = foreignQuotationAt(facts_, tokens_[word].at)) return *std::move(finding);
    }
    const bool hasSeparator = before.kind == TOKEN_VARIABLE && before.text.size() > 1 &&
                              (before.text.back() == ',' || before.text.back() == ';');
    if (hasSeparator) {
      return wrong(i - 1,
                   "an expression has no " + quoted(before.text.substr(before.text.size() - 1)));
    }
    for (const size_t word : {i - 1, i}) {
      const Token& token = tokens_[word];
      if (token.kind != TOKEN_VARIABLE) continue;
      const auto* const foreign = std::ranges::find(
          FOREIGN_OPERATORS, token.text, &std::pair<std::string_view, std::string_view>::first);
      if (foreign == std::end(FOREIGN_OPERATORS)) continue;
      const bool isListed =
          token.text == "in" && word + 1 < tokens_.size() && tokens_[word + 1].kind == TOKEN_OPEN;
      if (isListed) {
        return wrong(word,
                     "there is no operator \"in\": compare with each, as in (a == 1 || a == 2)");
      }
      Finding finding = wrong(word, "there is no operator " + quoted(token.text));
      finding.proposal = {finding.at, std::string(foreign->second)};
      return finding;
    }
    for (const size_t word : {i - 1, i}) {
      if (tokens_[word].kind != TOKEN_VARIABLE) continue;
      const std::string sign = withPlainSigns(tokens_[word].text);
      const std::optional<OperatorText> meant = operatorAt(sign);
      if (!meant || meant->text.size() != sign.size()) continue;
      Finding finding = wrong(word, "there is no operator " + quoted(tokens_[word].text));
      finding.proposal = {finding.at, sign};
      return finding;
    }
    for (const size_t word : {i - 1, i}) {
      if (!isNegation(tokens_[word])) continue;
      return wrong(word, "there is no operator " + textOf(word) +
                             ": compare with 0, as in \"(a == 0)\", or write \"!=\" for \"==\"");
    }
    if (std::optional<Finding> finding = nameInWords(i)) return *std::move(finding);
    if (tokens_[i].kind == TOKEN_OPEN && tokens_[i - 1].kind == TOKEN_VARIABLE) {
      return callOf(i - 1);
    }
    if (tokens_[i].kind == TOKEN_VARIABLE && isQuestion(tokens_[i].text)) {
      return wrong(
          i, "there is no operator " + textOf(i) + ": write one statement for each condition");
    }
    return wrong(i, "an operator is missing between " + textOf(i - 1) + " and " + textOf(i));
  }

  // A name with something in parentheses behind it: perhaps an index value.
  [[nodiscard]] Finding callOf(size_t name) const {
    Finding finding = wrong(name, "there is no function " + textOf(name) +
                                      ", and an operator is missing behind a name");
    const ParameterRecord* const record = facts_.defined(tokens_[name].text);
    if (record != nullptr && !record->indices.empty()) {
      finding.text = "an index value is in brackets: " + std::string(record->name) + "[...]";
    }
    return finding;
  }

  static bool isNegation(const Token& token) {
    return token.kind == TOKEN_VARIABLE && (token.text == "not" || token.text == "NOT");
  }

  // Two words that are one name, written with a "_" between them.
  [[nodiscard]] std::optional<Finding> nameInWords(size_t i) const {
    const Token& before = tokens_[i - 1];
    const Token& word = tokens_[i];
    if (before.kind != TOKEN_VARIABLE || word.kind != TOKEN_VARIABLE ||
        before.at.line != word.at.line) {
      return {};
    }
    const std::string name = std::string(before.text) + "_" + std::string(word.text);
    if (facts_.defined(baseName(name)) == nullptr) return {};
    Finding finding = wrong(i - 1, "a name has no blank");
    const TextPlace end = facts_.tokenAt(word.at);
    finding.at.length = end.column + end.length - finding.at.column;
    finding.proposal = {finding.at, name};
    return finding;
  }

  static bool isQuestion(std::string_view text) { return text == "?" || text == ":"; }

  // Two signs that are an operator elsewhere: <> and the like.
  [[nodiscard]] std::optional<Finding> foreignSigns(size_t i) const {
    constexpr std::pair<std::string_view, std::string_view> SIGNS[] = {
        {"<>", "!="},  {"><", "!="},  {"=!", "!="},  {"^=", "!="},  {"&&&", "&&"},
        {"|||", "||"}, {"!==", "!="}, {">>>", ">>"}, {"<<<", "<<"}, {"**", ""},
    };
    if (i == 0 || tokens_[i - 1].at.line != tokens_[i].at.line) return {};
    const TextPlace first = facts_.tokenAt(tokens_[i - 1].at);
    const TextPlace second = facts_.tokenAt(tokens_[i].at);
    if (first.column + first.length != second.column) return {};
    const TextPlace both = {first.line, first.column, first.length + second.length};
    const std::string_view written =
        facts_.source().line(both.line).substr(both.column, both.length);
    const auto* const found =
        std::ranges::find(SIGNS, written, &std::pair<std::string_view, std::string_view>::first);
    if (found == std::end(SIGNS)) return {};
    Finding finding = {CODE, both, "there is no operator " + quoted(written)};
    if (!found->second.empty()) finding.proposal = {both, std::string(found->second)};
    return finding;
  }

  [[nodiscard]] Finding withoutLeft(size_t i) const {
    if (std::optional<Finding> finding = foreignSigns(i)) return *std::move(finding);
    if (i + 1 < tokens_.size()) {
      if (std::optional<Finding> finding = foreignSigns(i + 1)) return *std::move(finding);
    }
    const bool isMinus = tokens_[i].kind == OP_SUBTRACT;
    const bool hasRight = i + 1 < tokens_.size() && beginsValue(tokens_[i + 1]);
    if (isMinus && hasRight) {
      return wrong(
          i,
          "a \"-\" makes a number negative only at the start of an expression or behind an "
          "operator: write it with a 0, as in (0 - a)");
    }
    return wrong(i, "a value is missing before " + textOf(i));
  }

  [[nodiscard]] std::string textOf(size_t i) const {
    const TextPlace place = facts_.tokenAt(tokens_[i].at);
    return quoted(facts_.source().line(place.line).substr(place.column, place.length));
  }

  [[nodiscard]] Finding wrong(size_t i, const std::string& text) const {
    return {CODE, facts_.tokenAt(tokens_[i].at), text};
  }

  static constexpr std::string_view CODE = "invalid-expression";
  const TextFacts& facts_;
  std::span<const Token> tokens_;
};

}  // namespace

Finding causeOfInvalidExpression(const TextFacts& facts, const Expression& expression,
                                 Position at) {
  Compiled compiled;
  const bool isWellFormed = Program::compile(expression, compiled.variables, compiled.program) == 0;
  if (!isWellFormed) {
    if (std::optional<Finding> finding = ExpressionCause(facts, expression).find()) {
      return *std::move(finding);
    }
    return {"invalid-expression", facts.tokenAt(at), "the expression goes wrong here"};
  }
  const auto divides = [](const Token& token) {
    return token.kind == OP_DIVIDE || token.kind == OP_REMAINDER;
  };
  const bool isDivision = std::ranges::any_of(expression.tokens, divides);
  return {
      "invalid-expression", facts.tokenAt(at),
      std::string("this expression never has a value") + (isDivision ? ": it divides by 0" : "")};
}

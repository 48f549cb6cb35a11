#include <algorithm>
#include <set>

#include "base/number.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "sw/parm/parm_name.h"

namespace {

// What a person reads where the engine reads an octal number.
struct OctalReading {
  std::string decimal;  // "10" of "010", "-10" of "-010"
  int32_t number;       // 8
};

bool isDigit(char c) { return '0' <= c && c <= '9'; }

// The two readings of `text`, where it is an octal number and they differ.
std::optional<OctalReading> octalIn(std::string_view text) {
  std::string digits;
  std::ranges::copy_if(text, std::back_inserter(digits), [](char c) { return c != ' '; });
  const std::optional<int32_t> number = wholeNumber(digits);
  const size_t sign = digits.starts_with('-') || digits.starts_with('+') ? 1 : 0;
  const std::string_view magnitude = std::string_view(digits).substr(sign);
  if (!number || magnitude.size() < 2 || magnitude.front() != '0') return std::nullopt;
  if (!std::ranges::all_of(magnitude, isDigit)) return std::nullopt;
  const size_t first = std::min(magnitude.find_first_not_of('0'), magnitude.size() - 1);
  std::string decimal = digits.substr(0, sign) + std::string(magnitude.substr(first));
  if (wholeNumber(decimal) == number) return std::nullopt;
  return OctalReading{std::move(decimal), *number};
}

std::string isRead(const OctalReading& reading) {
  return " is read as an octal number, " + numberText(reading.number);
}

class OctalCheck {
 public:
  explicit OctalCheck(StaticContext& context) : context_(context) {}

  void check(const NamedDefinition& definition) {
    const ParameterRecord& record = *definition.record;
    forEachExpression(record, [&](ExpressionUse /*use*/, const Expression& expression) {
      checkExpression(expression);
    });
    for (const RangeStatement& range : record.rangeValid) checkSpans(range, record);
    for (const Translation& translation : record.valueChange) checkTranslation(translation, record);
    for (const DefaultStatement& statement : record.defaults) {
      if (statement.text) checkQuoted(valuePlace(source(), statement.at), *statement.text, record);
    }
  }

 private:
  [[nodiscard]] const SourceText& source() const { return context_.source(); }

  void checkExpression(const Expression& expression) {
    for (const Token& token : expression.tokens) {
      if (token.kind == TOKEN_NUMBER) checkNumber(tokenPlace(source(), token));
      if (token.kind != TOKEN_VARIABLE) continue;
      checkIndexValues(token);
      checkConstant(token);
    }
  }

  void checkNumber(const TextPlace& at) {
    const std::string_view text = textAt(source(), at);
    const std::optional<TextPlace> whole = thousandsAround(at);
    if (whole) return tellThousands(at, *whole);
    if (const std::optional<OctalReading> reading = octalIn(text)) tell(at, text, *reading);
  }

  // The number of which the one at `at` is most likely a group of three digits: "000" in 1,000 is
  // an item of its own.
  [[nodiscard]] std::optional<TextPlace> thousandsAround(const TextPlace& at) const {
    const std::string_view line = source().line(at.line);
    const std::string_view group = line.substr(at.column, at.length);
    const bool isGroup =
        group.size() == 3 && group.front() == '0' && std::ranges::all_of(group, isDigit);
    if (!isGroup || at.column < 2 || line[at.column - 1] != ',') return {};
    size_t from = at.column - 1;
    while (from > 0 && (isDigit(line[from - 1]) || line[from - 1] == ',')) --from;
    const size_t first = line.find(',', from) - from;
    if (first == 0 || first > 3) return {};
    size_t end = at.column + at.length;
    while (end + 3 < line.size() && line[end] == ',' &&
           std::ranges::all_of(line.substr(end + 1, 3), isDigit)) {
      end += 4;
    }
    return TextPlace{at.line, static_cast<uint32_t>(from), static_cast<uint32_t>(end - from)};
  }

  // 1..86,400 is a span and an item, and may be meant so, unless a default lies between.
  void checkSpans(const RangeStatement& range, const ParameterRecord& record) {
    for (size_t i = 1; i < range.items.size(); ++i) {
      const RangeItem& span = range.items[i - 1];
      const RangeItem& item = range.items[i];
      if (!span.upper || item.text || item.upper) continue;
      const std::optional<int32_t> end = numberOf(*span.upper);
      const std::optional<int32_t> group = numberOf(item.lower);
      if (!end || !group || *end < 1 || *end > 999 || *group < 100 || *group > 999) continue;
      const TextPlace from = tokenPlace(source(), span.upper->tokens.front());
      const TextPlace at = tokenPlace(source(), item.lower.tokens.front());
      const bool isJoined = from.line == at.line && from.column + from.length + 1 == at.column;
      const TextPlace whole = {from.line, from.column, from.length + 1 + at.length};
      const DefaultStatement* const between =
          isJoined ? defaultBetween(record, *end, *end * 1000 + *group) : nullptr;
      if (between == nullptr) continue;
      tellThousands(at, whole);
      context_.explained().add(between->at);
    }
  }

  // A default above `low`, up to `high`, that no range takes; null where there is none.
  static const DefaultStatement* defaultBetween(const ParameterRecord& record, int32_t low,
                                                int32_t high) {
    for (const DefaultStatement& statement : record.defaults) {
      const std::optional<int32_t> number =
          statement.text ? std::nullopt : numberOf(statement.value);
      if (number && low < *number && *number <= high && !mayTake(record, *number)) {
        return &statement;
      }
    }
    return nullptr;
  }

  // Whether a range has the number, or an item that is no number.
  static bool mayTake(const ParameterRecord& record, int32_t number) {
    return std::ranges::any_of(record.rangeValid, [&](const RangeStatement& range) {
      return std::ranges::any_of(range.items, [&](const RangeItem& item) {
        if (item.text) return false;
        const std::optional<int32_t> low = numberOf(item.lower);
        const std::optional<int32_t> high = item.upper ? numberOf(*item.upper) : low;
        return !low || !high || (*low <= number && number <= *high);
      });
    });
  }

  static std::optional<int32_t> numberOf(const Expression& expression) {
    const std::span<const Token> tokens = expression.tokens;
    if (tokens.size() != 1 || tokens.front().kind != TOKEN_NUMBER) return std::nullopt;
    return tokens.front().number;
  }

  void tellThousands(const TextPlace& at, const TextPlace& whole) {
    context_.explained().add({at.line, at.column});
    if (!thousands_.insert(whole).second) return;
    const std::string_view text = textAt(source(), whole);
    std::string number(text);
    std::erase(number, ',');
    Finding finding = {"octal", whole,
                       std::string(text) +
                           " is read as items with \",\" between them, as a number "
                           "has no separators; write " +
                           number + ", or blanks behind the \",\""};
    finding.proposal = {whole, number};
    context_.add(std::move(finding));
  }

  // A bare number is the decimal text of its value, a quoted text is itself.
  void checkTranslation(const Translation& translation, const ParameterRecord& record) {
    const TextPlace from = valuePlace(source(), translation.at);
    const TextPlace to = targetPlace(source(), translation);
    if (!textAt(source(), from).starts_with('"')) checkNumber(from);
    if (to == from) return;
    if (textAt(source(), to).starts_with('"')) {
      checkQuoted(to, translation.target, record);
    } else {
      checkNumber(to);
    }
  }

  // A text that the parameter takes as a number.
  void checkQuoted(const TextPlace& at, std::string_view text, const ParameterRecord& record) {
    const std::optional<OctalReading> reading = octalIn(text);
    if (reading && takesNumbers(record)) tell(at, textAt(source(), at), *reading);
  }

  static bool takesNumbers(const ParameterRecord& record) {
    for (const RangeStatement& range : record.rangeValid) {
      for (const RangeItem& item : range.items) {
        if (!item.text) return true;
      }
    }
    return false;
  }

  void checkIndexValues(const Token& token) {
    const Reference reference = context_.referenceOf(token);
    if (!reference.isQualified()) return;
    const ParmName name = splitName(reference.name);
    for (const std::string& value : name.indices) {
      const std::optional<OctalReading> reading = octalIn(value);
      if (!reading) continue;
      context_.add({"octal", tokenPlace(source(), token),
                    "the index value " + value + isRead(*reading) +
                        ", and names an instance that " + "is neither of " + reading->decimal +
                        " nor of " + numberText(reading->number) + "; write " + reading->decimal});
      context_.explained().add(token.at);
    }
  }

  // Also where it is compared with a text: a number is compared as its decimal text.
  void checkConstant(const Token& token) {
    const Reference reference = context_.referenceOf(token);
    if (reference.named != nullptr || reference.figure != nullptr) return;
    const std::string* const value = context_.checked().database().findConstant(reference.name);
    const std::optional<OctalReading> reading = value == nullptr ? std::nullopt : octalIn(*value);
    if (!reading || !constants_.insert(reference.name).second) return;
    context_.add({"octal", tokenPlace(source(), token),
                  "the value " + *value + " of the constant " + inQuotes(reference.name) +
                      isRead(*reading) + "; write " + reading->decimal + " on the command line"});
  }

  void tell(const TextPlace& at, std::string_view text, const OctalReading& reading) {
    context_.add({"octal", at,
                  std::string(text) + isRead(reading) + "; write " + reading.decimal +
                      " without the leading 0, or " + numberText(reading.number)});
    context_.explained().add({at.line, at.column});
  }

  StaticContext& context_;
  std::set<TextPlace> thousands_;         // those that were told
  std::set<std::string_view> constants_;  // those that were told
};

}  // namespace

void checkOctal(StaticContext& context) {
  OctalCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) check.check(definition);
}

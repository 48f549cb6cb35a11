#include "check/proof/compared_values.h"

#include <algorithm>
#include <set>

#include "base/nearest_word.h"
#include "base/number.h"
#include "check/static/static_context.h"
#include "check/static/token_place.h"
#include "deflang/expression/operators.h"
#include "sw/parm/parm_name.h"

namespace {

// More values are counted and not listed.
constexpr size_t MANY_VALUES = 8;
constexpr size_t LISTED_OF_MANY = 4;
constexpr size_t MANY_NAMES = 3;

bool isLiteral(const Token& token) {
  return token.kind == TOKEN_NUMBER || token.kind == TOKEN_STRING;
}

bool isEquality(int32_t code) { return code == OP_EQUAL || code == OP_NOT_EQUAL; }

std::vector<std::string> partsOf(const Domain& values) {
  std::vector<std::string> parts;
  for (const auto& [low, high] : values.spans()) {
    parts.push_back(std::to_string(low) + (low == high ? "" : ".." + std::to_string(high)));
  }
  for (const std::string& value : values.texts()) {
    if (!value.empty()) parts.push_back(inQuotes(value));
  }
  return parts;
}

// "a", "b" or "c"
std::string listed(std::vector<std::string> parts) {
  if (parts.size() > MANY_VALUES) {
    const size_t more = parts.size() - LISTED_OF_MANY;
    parts.resize(LISTED_OF_MANY);
    parts.push_back("one of " + std::to_string(more) + " more");
  }
  std::string text;
  for (size_t i = 0; i < parts.size(); ++i) {
    const char* const lead = i == 0 ? "" : i + 1 < parts.size() ? ", " : " or ";
    text += lead + parts[i];
  }
  return text;
}

// Whether nothing is known of what is held.
bool isAnyNumber(const Domain& held) {
  return held.isAll() ||
         std::ranges::find(held.spans(), Span(INT32_MIN, INT32_MAX)) != held.spans().end();
}

// The definition of the name that is compared, or null.
const Subject* subjectOf(const Proof& proof, const ComparedValue& compared) {
  return proof.text().find(baseName(compared.source.name));
}

// The texts in the ranges of a definition that have nothing else.
std::set<std::string, std::less<>> writtenTexts(const Subject* subject) {
  std::set<std::string, std::less<>> texts;
  if (subject == nullptr) return texts;
  for (const CompiledStatement& range : subject->rangeValid) {
    for (const CompiledItem& item : range.items) {
      if (!item.text) return {};
      texts.insert(*item.text);
    }
  }
  return texts;
}

// The value by which a definition replaces the text that is compared, and which it holds then.
std::optional<std::string> replacedBy(Proof& proof, const ComparedValue& compared) {
  const Subject* const subject = subjectOf(proof, compared);
  if (subject == nullptr || compared.literal->kind != TOKEN_STRING) return std::nullopt;
  if (!isEquality(compared.code)) return std::nullopt;
  std::string value(compared.literal->text);
  const Domain& held = proof.domains().ofAnyVariant(compared.source).values;
  if (held.contains(value)) return std::nullopt;
  subject->definition().translateTwice(value);
  if (value == compared.literal->text || !held.contains(value)) return std::nullopt;
  return value;
}

// The statement that replaces `source`.
const Translation* translationOf(const Subject& subject, std::string_view source) {
  for (const Translation& translation : subject.record->valueChange) {
    if (translation.source == source) return &translation;
  }
  return nullptr;
}

// Tells what a text becomes that is compared, and proposes that.
void explainReplaced(Proof& proof, const ComparedValue& compared, Finding& finding) {
  const std::optional<std::string> value = replacedBy(proof, compared);
  if (!value) return;
  const std::string_view text = compared.literal->text;
  const SourceText& source = proof.text().checked().source;
  if (const Translation* const by = translationOf(*subjectOf(proof, compared), text)) {
    finding.related.push_back(
        {valuePlace(source, by->at), inQuotes(text) + " becomes " + inQuotes(*value) + " here"});
  }
  if (finding.proposal) return;
  const bool isNumber = wholeNumber(*value).has_value();
  finding.proposal =
      Proposal{tokenPlace(source, *compared.literal), isNumber ? *value : inQuotes(*value)};
}

// Proposes the text nearest to the one that is compared.
void proposeText(Proof& proof, const ComparedValue& compared, Finding& finding) {
  if (finding.proposal) return;
  if (const std::optional<std::string> meant = meantText(proof, compared)) {
    const TextPlace at = tokenPlace(proof.text().checked().source, *compared.literal);
    finding.proposal = Proposal{at, inQuotes(*meant)};
  }
}

}  // namespace

std::vector<ComparedValue> comparedValues(const Proof& proof, const Expression& expression) {
  std::vector<ComparedValue> found;
  const std::span<const Token> tokens = expression.tokens;
  for (size_t i = 1; i + 1 < tokens.size(); ++i) {
    if (!isOperator(tokens[i].kind) || !comparesTexts(tokens[i].kind)) continue;
    const bool isBehind = isLiteral(tokens[i + 1]);
    const Token& literal = tokens[isBehind ? i + 1 : i - 1];
    const Token& name = tokens[isBehind ? i - 1 : i + 1];
    if (!isLiteral(literal) || name.kind != TOKEN_VARIABLE) continue;
    VariableSource source = proof.text().database().findSource(name.text);
    if (source.figure != nullptr || source.constant != nullptr) continue;
    found.push_back({&literal, std::move(source), tokens[i].kind});
  }
  return found;
}

std::optional<std::string> meantText(Proof& proof, const ComparedValue& compared) {
  if (compared.literal->kind != TOKEN_STRING || !isEquality(compared.code)) return std::nullopt;
  const Domain& held = proof.domains().ofAnyVariant(compared.source).values;
  // What a situation may leave behind is not meant: then it is one of the texts that are written.
  const std::set<std::string, std::less<>> texts =
      held.isAll() ? writtenTexts(subjectOf(proof, compared)) : held.texts();
  const std::string literal(compared.literal->text);
  if (held.isAll() ? texts.contains(literal) : held.contains(literal)) return std::nullopt;
  NearestWord nearest(literal);
  for (const std::string& text : texts) {
    if (!text.empty()) nearest.offer(text);
  }
  return nearest.found() ? std::optional(std::string(*nearest.found())) : std::nullopt;
}

bool isToldOfStandard(Proof& proof, const ComparedValue& compared) {
  if (compared.literal->kind != TOKEN_STRING || !isEquality(compared.code)) return false;
  const Domain& held = proof.domains().ofAnyVariant(compared.source).values;
  if (held.contains(compared.literal->text)) return false;
  const SourceText& source = proof.text().checked().source;
  const TextPlace at = tokenPlace(source, *compared.literal);
  const std::string literal = inQuotes(std::string(compared.literal->text));
  return proof.hasFound("unknown-standard", [&](const Finding& finding) {
    if (finding.at == at) return true;
    if (!finding.proposal || finding.proposal->text != literal || finding.at.length < 2) {
      return false;
    }
    const std::string_view written = textAt(source, finding.at);
    return held.contains(written.substr(1, written.size() - 2));
  });
}

void proposeTexts(Proof& proof, const Expression& expression, Finding& finding) {
  for (const ComparedValue& compared : comparedValues(proof, expression)) {
    proposeText(proof, compared, finding);
  }
}

void explainValues(Proof& proof, const Expression& expression, Finding& finding) {
  std::set<std::string_view> told;
  for (const ComparedValue& compared : comparedValues(proof, expression)) {
    explainReplaced(proof, compared, finding);
    proposeText(proof, compared, finding);
    const Domain& held = proof.domains().ofAnyVariant(compared.source).values;
    const std::string_view name = baseName(compared.source.name);
    const Subject* const subject = proof.text().find(name);
    if (subject == nullptr || isAnyNumber(held) || told.size() == MANY_NAMES) continue;
    const std::vector<std::string> parts = partsOf(held);
    if (parts.empty() || !told.insert(name).second) continue;
    finding.related.push_back({placeOfName(*subject), std::string(name) + " is " + listed(parts)});
  }
}

MendedExpression::MendedExpression(const Proof& proof, const Expression& expression,
                                   const Token& literal, std::string text)
    : text_(std::move(text)), tokens_(expression.tokens.begin(), expression.tokens.end()) {
  Token& token = tokens_[static_cast<size_t>(&literal - expression.tokens.data())];
  const std::optional<int32_t> number = wholeNumber(text_);
  token.kind = number ? TOKEN_NUMBER : TOKEN_STRING;
  token.number = number.value_or(0);
  token.text = text_;
  compiled_ = proof.text().compile({tokens_});
}

std::vector<std::string> meantValues(Proof& proof, const ComparedValue& compared,
                                     const std::vector<ComparedValue>& others) {
  std::vector<std::string> values;
  if (std::optional<std::string> value = replacedBy(proof, compared)) {
    values.push_back(*std::move(value));
  }
  if (std::optional<std::string> meant = meantText(proof, compared)) {
    values.push_back(*std::move(meant));
  }
  const Domain& held = proof.domains().ofAnyVariant(compared.source).values;
  for (const std::string& value : held.values(MANY_VALUES).value_or(std::vector<std::string>())) {
    if (!value.empty() && std::ranges::find(values, value) == values.end()) values.push_back(value);
  }
  for (const ComparedValue& other : others) {
    if (other.literal->kind != TOKEN_NUMBER || other.source.name != compared.source.name) continue;
    for (const int64_t number : {int64_t{other.literal->number}, int64_t{other.literal->number} - 1,
                                 int64_t{other.literal->number} + 1}) {
      const std::string value = std::to_string(number);
      if (held.contains(value) && std::ranges::find(values, value) == values.end()) {
        values.push_back(value);
      }
    }
  }
  return values;
}

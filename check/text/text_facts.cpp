#include "check/text/text_facts.h"

#include <algorithm>
#include <tuple>

#include "check/text/foreign_quotes.h"
#include "check/text/record_expressions.h"
#include "check/text/wording.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/vid_std_name.h"
#include "deflang/text/text_cursor.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr StopSet NAME_STOPS("()|&^=!<>+-*/%$[]{},\"");

bool isBehind(Position a, Position b) {
  return std::tie(a.line, a.column) > std::tie(b.line, b.column);
}

uint64_t keyOf(Position at) { return uint64_t{at.line} << 32U | at.column; }

// How long the element of an expression at the start of `line` is, in bytes.
size_t elementLength(std::string_view line) {
  if (line.starts_with('"')) return std::min(line.find('"', 1), line.size() - 1) + 1;
  size_t end = 0;
  while (end < line.size() && !NAME_STOPS.contains(line[end])) ++end;
  if (end == 0) {
    const std::optional<OperatorText> sign = operatorAt(line);
    return sign ? sign->text.size() : std::min<size_t>(1, line.size());
  }
  for (;;) {
    const size_t next = end + firstWord(line.substr(end));
    const size_t closing = line.find(']', next);
    const bool isIndexed = next < line.size() && line[next] == '[';
    if (!isIndexed || closing == std::string_view::npos) return end;
    end = closing + 1;
    while (end < line.size() && !NAME_STOPS.contains(line[end])) ++end;
  }
}

}  // namespace

TextPlace placeAt(Position at, size_t length) {
  return {at.line, at.column, static_cast<uint32_t>(length)};
}

std::optional<Finding> foreignQuotationAt(const TextFacts& facts, Position at) {
  const std::string_view line = facts.source().line(at.line);
  const std::optional<ForeignQuotation> quotation =
      foreignQuotation(line.substr(std::min<size_t>(at.column, line.size())));
  if (!quotation) return {};
  const TextPlace place = placeAt(at, quotation->whole.size());
  Finding finding = {"unquoted-text", place, "a text has to be in double quotes"};
  if (quotation->isClosed) finding.proposal = {place, inQuotes(quotation->inner)};
  return finding;
}

const DefinitionLayout* TextFacts::definitionAt(Position at) const {
  const std::vector<DefinitionLayout>& all = text_.layout.definitions;
  const auto behind = std::ranges::upper_bound(
      all, at, [](Position a, Position b) { return isBehind(b, a); }, &DefinitionLayout::name);
  return behind == all.begin() ? nullptr : &*std::prev(behind);
}

const StatementLayout* TextFacts::statementAt(Position at) const {
  const DefinitionLayout* const definition = definitionAt(at);
  if (definition == nullptr) return nullptr;
  const std::vector<StatementLayout>& all = definition->statements;
  const auto from = [](const StatementLayout& statement) { return statement.extent.from; };
  const auto behind = std::ranges::upper_bound(
      all, at, [](Position a, Position b) { return isBehind(b, a); }, from);
  return behind == all.begin() ? nullptr : &*std::prev(behind);
}

const ParameterRecord* TextFacts::defined(std::string_view baseName) const {
  const ParameterRecord* const record = records().find(baseName);
  return record == nullptr || record->access == ACCESS_NONE ? nullptr : record;
}

const Expression* TextFacts::expressionAt(Position at) const {
  const auto add = [this](const Expression& expression) {
    for (const Token& token : expression.tokens) expressions_.emplace(keyOf(token.at), &expression);
  };
  if (expressions_.empty()) {
    for (const auto& [record, name] : names_) forEachExpression(*record, add);
  }
  const auto found = expressions_.find(keyOf(at));
  return found == expressions_.end() ? nullptr : found->second;
}

TextPlace TextFacts::tokenAt(Position at) const {
  const std::string_view line = source_.line(at.line);
  return placeAt(at, elementLength(line.substr(std::min<size_t>(at.column, line.size()))));
}

TextPlace TextFacts::restOfLine(Position at) const {
  return placeAt(at, trimmed(source_.line(at.line).substr(at.column)).size());
}

TextPlace TextFacts::nameOf(const ParameterRecord& record) const {
  const auto found = names_.find(&record);
  return found == names_.end() ? TextPlace() : placeAt(found->second, record.name.size());
}

TextPlace TextFacts::keywordAt(Position at) const {
  const StatementLayout* const statement = statementAt(at);
  if (statement == nullptr) return tokenAt(at);
  return placeAt(statement->extent.from, statement->keyword.size());
}

bool TextFacts::isConstant(std::string_view name) const {
  const bool isTaken =
      name == THIS_VALUE || splitVidStdName(name).has_value() || defined(baseName(name)) != nullptr;
  return !isTaken && constants_.findConstant(name) != nullptr;
}

bool TextFacts::namesConstant(const Expression& expression) const {
  return std::ranges::any_of(expression.tokens, [this](const Token& token) {
    return token.kind == TOKEN_VARIABLE && isConstant(token.text);
  });
}

std::optional<Value> TextFacts::constantValue(const Expression& expression) const {
  Compiled compiled;
  if (Program::compile(expression, compiled.variables, compiled.program) != 0) return {};
  Situation situation(compiled.variables.size());
  for (uint32_t slot = 0; slot < compiled.variables.size(); ++slot) {
    const std::string_view name = compiled.variables[slot];
    if (isConstant(name)) situation.bind(slot, operandOf(*constants_.findConstant(name)));
  }
  Value value = compiled.program.evaluate(situation);
  return value.valid() ? std::optional(std::move(value)) : std::nullopt;
}

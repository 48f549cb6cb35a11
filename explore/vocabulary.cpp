#include "explore/vocabulary.h"

#include "base/number.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

using Values = std::set<std::string>;

// What is beside a number may be on the other side of a comparison, or of the end of a range.
void addNumber(int32_t number, Values& values) {
  for (const int64_t near : {int64_t{number} - 1, int64_t{number}, int64_t{number} + 1}) {
    if (INT32_MIN <= near && near <= INT32_MAX) values.insert(std::to_string(near));
  }
}

void addLiterals(const Expression& expression, Values& values) {
  for (const Token& token : expression.tokens) {
    if (token.kind == TOKEN_NUMBER) addNumber(token.number, values);
    if (token.kind == TOKEN_STRING) values.emplace(token.text);
  }
}

}  // namespace

// Goes through the statements of one definition after the other.
class Vocabulary::Reading {
 public:
  Reading(const TextCoverage& coverage, Vocabulary& vocabulary)
      : records_(coverage.numbered().records), vocabulary_(vocabulary) {}

  void read(const ParameterRecord& record) {
    own_ = std::string(record.name);
    vocabulary_.vocabularies_[own_].isStatus =
        record.access == ACCESS_RO || record.access == ACCESS_ROSTRICT;
    for (const auto& statement : record.indices) {
      for (const IndexName& index : statement) namesOf(statement).emplace(index.name);
    }
    for (const auto* ranges : {&record.rangeValid, &record.rangeDoc}) {
      for (const auto& statement : *ranges) readRange(statement);
    }
    for (const auto* conditions : {&record.ctrlRO, &record.ctrlValid}) {
      for (const auto& statement : *conditions) readExpression(statement, statement);
    }
    for (const auto& statement : record.defaults) {
      readExpression(statement.condition, statement);
      readItem(statement.text, statement.value, statement);
    }
    for (const auto& statement : record.valueChange) {
      values_[own_].insert({std::string(statement.source), std::string(statement.target)});
    }
  }

  void finish() {
    for (auto& [name, values] : values_) {
      vocabulary_.vocabularies_[name].values.assign(values.begin(), values.end());
    }
  }

 private:
  template <typename Statement>
  std::set<std::string>& namesOf(const Statement& statement) {
    return vocabulary_.names_[statement.place.line - 1];
  }

  void readRange(const Listed<RangeStatement>& statement) {
    readExpression(statement.condition, statement);
    for (const RangeItem& item : statement.items) {
      readItem(item.text, item.lower, statement);
      if (item.upper) readItem({}, *item.upper, statement);
    }
  }

  template <typename Statement>
  void readItem(const std::optional<std::string_view>& text, const Expression& value,
                const Statement& statement) {
    if (text) {
      values_[own_].emplace(*text);
    } else {
      if (value.tokens.size() == 1) addLiterals(value, values_[own_]);
      readExpression(value, statement);
    }
  }

  // Each name may be compared with each literal beside it.
  template <typename Statement>
  void readExpression(const Expression& expression, const Statement& statement) {
    for (const Token& token : expression.tokens) {
      if (token.kind != TOKEN_VARIABLE) continue;
      const std::string name(baseName(referencedName(token.text)));
      if (records_.find(name) == nullptr) continue;
      namesOf(statement).insert(name);
      addLiterals(expression, values_[name]);
      if (splitVidStdName(token.text)) vocabulary_.vocabularies_[name].isSelector = true;
    }
  }

  const ParameterRecords& records_;
  Vocabulary& vocabulary_;
  std::map<std::string, Values> values_;
  std::string own_;
};

Vocabulary::Vocabulary(const TextCoverage& coverage) : names_(coverage.statements().size()) {
  Reading reading(coverage, *this);
  for (const ParameterRecord* record : coverage.numbered().records.inNameOrder()) {
    if (record->access != ACCESS_NONE) reading.read(*record);
  }
  reading.finish();
}

const NameVocabulary& Vocabulary::of(std::string_view name) const {
  static const NameVocabulary none;
  const auto found = vocabularies_.find(name);
  return found == vocabularies_.end() ? none : found->second;
}

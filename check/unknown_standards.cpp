#include "check/unknown_standards.h"

#include <algorithm>
#include <set>
#include <string>

#include "check/fault_view.h"
#include "check/nearest_word.h"
#include "check/record_expressions.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"
#include "vid_std.h"

namespace {

std::optional<std::string> nearestStandard(std::string_view text) {
  NearestWord nearest(text);
  for (const vidStd_t& standard : vidStds()) nearest.offer(standard.name);
  for (const vidFormat_t& format : vidFormats()) nearest.offer(format.name);
  if (!nearest.found()) return {};
  return std::string(*nearest.found());
}

bool selectsNothing(std::string_view text) {
  const vidSelection_t selected = selectVid(text);
  return selected.standard == nullptr && selected.format == nullptr;
}

class StandardTexts {
 public:
  StandardTexts(const TextFacts& facts, Findings& findings) : facts_(facts), findings_(findings) {
    for (const ParameterRecord* record : facts.records().inNameOrder()) {
      forEachExpression(*record,
                        [this](const Expression& expression) { noteSelectors(expression); });
    }
  }

  void check() const {
    if (selectors_.empty()) return;
    for (const ParameterRecord* record : facts_.records().inNameOrder()) {
      if (selectors_.contains(record->name)) checkValues(*record);
      forEachExpression(*record,
                        [this](const Expression& expression) { checkComparisons(expression); });
    }
  }

 private:
  void noteSelectors(const Expression& expression) {
    for (const Token& token : expression.tokens) {
      if (token.kind != TOKEN_VARIABLE) continue;
      const auto name = splitVidStdName(token.text);
      if (name) selectors_.insert(baseName(name->parameter));
    }
  }

  void checkValues(const ParameterRecord& record) const {
    const auto isTranslated = [&record](std::string_view text) {
      return std::ranges::any_of(record.valueChange,
                                 [text](const Translation& t) { return t.source == text; });
    };
    for (const RangeStatement& range : record.rangeValid) {
      for (const RangeItem& item : range.items) {
        if (item.text && !isTranslated(*item.text)) checkText(*item.text, item.at);
      }
    }
    for (const DefaultStatement& value : record.defaults) {
      if (value.text && !isTranslated(*value.text)) checkText(*value.text, value.at);
    }
  }

  void checkComparisons(const Expression& expression) const {
    for (size_t i = 1; i + 1 < expression.tokens.size(); ++i) {
      const int32_t kind = expression.tokens[i].kind;
      if (kind != OP_EQUAL && kind != OP_NOT_EQUAL) continue;
      checkComparison(expression.tokens[i - 1], expression.tokens[i + 1]);
      checkComparison(expression.tokens[i + 1], expression.tokens[i - 1]);
    }
  }

  void checkComparison(const Token& name, const Token& text) const {
    const bool isSelector = name.kind == TOKEN_VARIABLE && selectors_.contains(baseName(name.text));
    if (isSelector && text.kind == TOKEN_STRING) checkText(text.text, text.at);
  }

  void checkText(std::string_view text, Position at) const {
    if (!selectsNothing(text)) return;
    const std::optional<std::string> near = nearestStandard(text);
    if (!near) return;
    const TextPlace place = facts_.tokenAt(at);
    findings_.add({"unknown-standard",
                   place,
                   quoted(text) + " selects no video standard",
                   {},
                   Proposal{place, "\"" + *near + "\""}});
  }

  const TextFacts& facts_;
  Findings& findings_;
  std::set<std::string_view> selectors_;
};

}  // namespace

void addUnknownStandards(const TextFacts& facts, Findings& findings) {
  StandardTexts(facts, findings).check();
}

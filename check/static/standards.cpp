#include <algorithm>
#include <map>
#include <set>

#include "check/static/static_bounds.h"
#include "check/static/static_checks.h"
#include "check/static/token_place.h"
#include "check/text/unknown_standards.h"
#include "srcs/vid_std_figures.h"
#include "vid_std.h"

namespace {

bool isDigit(char c) { return '0' <= c && c <= '9'; }

std::string_view selectedName(std::string_view value) {
  const vidSelection_t selected = selectVid(value);
  if (selected.standard != nullptr) return selected.standard->name;
  return selected.format != nullptr ? selected.format->name : std::string_view();
}

bool isRowName(std::string_view text) {
  const auto isNamed = [&](const auto& row) { return row.name == text; };
  return std::ranges::any_of(vidStds(), isNamed) || std::ranges::any_of(vidFormats(), isNamed);
}

// Whether `value`, which begins with the name that it selects, means another row: it is the name of
// one, or the name ends within a number. A name with a remark behind it means the row of the name.
bool meansAnotherRow(std::string_view value, std::string_view selected) {
  if (selected.empty() || value.size() == selected.size()) return false;
  const std::string_view rest = value.substr(selected.size());
  if (isRowName(value) || isDigit(rest[0])) return true;
  // 25.00 is 25.
  return rest[0] == '.' && rest.find_first_of("123456789") == rest.find_first_not_of(".0") &&
         rest.find_first_not_of(".0") != std::string_view::npos;
}

class StandardCheck {
 public:
  explicit StandardCheck(StaticContext& context) : context_(context) {}

  void check(const NamedDefinition& definition) {
    forEachExpression(*definition.record, [&](ExpressionUse /*use*/, const Expression& expression) {
      for (const Token& token : expression.tokens) {
        if (token.kind != TOKEN_VARIABLE) continue;
        const Reference reference = context_.referenceOf(token);
        if (reference.figure != nullptr) checkReference(reference);
      }
    });
  }

 private:
  void checkReference(const Reference& reference) {
    if (reference.named == nullptr) {
      checkConstant(reference);
    } else if (reference.named->isIndex()) {
      tell(reference, inQuotes(reference.base) +
                          " is an index, which has no figures; name a "
                          "parameter that holds a standard");
    } else {
      if (holders_.insert(reference.named).second) checkTexts(reference);
      checkFigure(reference);
    }
  }

  void checkConstant(const Reference& reference) {
    const std::string* const value = context_.checked().database().findConstant(reference.name);
    if (value == nullptr) return;
    const std::string selected(selectedName(*value));
    if (vidStdFigure(*value, *reference.figure)) {
      if (meansAnotherRow(*value, selected) && constants_.insert(reference.name).second) {
        context_.add({"other-standard", tokenPlace(context_.source(), *reference.token),
                      "the constant " + inQuotes(reference.name) + " is " + inQuotes(*value) +
                          ", which selects " + inQuotes(selected)});
      }
      return;
    }
    tell(reference,
         "the constant " + inQuotes(reference.name) + " is " + inQuotes(*value) +
             (selected.empty() ? ", which selects no video standard"
                               : ", which selects a picture format without this figure"));
  }

  // Whether any value that the parameter may hold has the figure.
  void checkFigure(const Reference& reference) {
    const IndexDef* const built = context_.built(*reference.named);
    if (built == nullptr || hasRunTimeRange(*built) || built->baseBounds().count() == 0) return;
    const std::set<std::string>& texts = built->baseBounds().strings().texts();
    const auto hasFigure = [&](const std::string& text) {
      return vidStdFigure(text, *reference.figure).has_value();
    };
    if (std::ranges::any_of(texts, hasFigure)) return;
    if (std::ranges::any_of(texts, isUnknownStandard)) {  // which is told already
      return context_.explained().add(reference.token->at);
    }
    const bool isSelected =
        std::ranges::any_of(texts, [](const auto& text) { return !selectedName(text).empty(); });
    tell(reference, "no value that " + inQuotes(reference.base) +
                        " may hold selects a video "
                        "standard" +
                        (isSelected ? " with this figure" : "") +
                        ", so the figure never has a value; allow the name of one");
  }

  void tell(const Reference& reference, std::string text) {
    context_.explained().add(reference.token->at);
    if (!undefined_.insert(reference.token->text).second) return;
    context_.add(
        {"undefined-figure", tokenPlace(context_.source(), *reference.token), std::move(text)});
  }

  // The texts that a parameter may come to hold, where they are written.
  void checkTexts(const Reference& reference) {
    const ParameterRecord& record = *reference.named->record;
    told_.clear();
    for (const RangeStatement& range : record.rangeValid) {
      for (const RangeItem& item : range.items) {
        if (item.text) checkText(reference, item.at, *item.text);
      }
    }
    for (const DefaultStatement& statement : record.defaults) {
      if (statement.text) checkText(reference, statement.at, *statement.text);
    }
    for (const Translation& translation : record.valueChange) {
      const TextPlace to = targetPlace(context_.source(), translation);
      checkText(reference, {to.line, to.column}, translation.target);
    }
  }

  void checkText(const Reference& reference, Position at, std::string_view text) {
    const std::string_view selected = selectedName(text);
    if (!meansAnotherRow(text, selected) || !told_.insert(text).second) return;
    const vidSelection_t row = selectVid(text);
    context_.add({"other-standard",
                  valuePlace(context_.source(), at),
                  inQuotes(text) + " begins with " + inQuotes(selected) +
                      ", so its figures are those of the " +
                      (row.standard != nullptr ? "standard " : "picture format ") +
                      std::string(selected) + "; name the row that is meant, if it can be selected",
                  {{tokenPlace(context_.source(), *reference.token), "its figure is used here"}}});
  }

  StaticContext& context_;
  std::set<const NamedDefinition*> holders_;  // whose texts were looked at
  std::set<std::string_view> constants_;      // those that select another row
  std::set<std::string_view> undefined_;      // names that were told
  std::set<std::string_view> told_;           // texts of one holder
};

}  // namespace

void checkStandards(StaticContext& context) {
  StandardCheck check(context);
  for (const NamedDefinition& definition : context.definitions()) check.check(definition);
}

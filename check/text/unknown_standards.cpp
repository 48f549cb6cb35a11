#include "check/text/unknown_standards.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <string>
#include <vector>

#include "base/nearest_word.h"
#include "check/text/record_expressions.h"
#include "check/text/repeated_findings.h"
#include "check/text/wording.h"
#include "deflang/expression/operators.h"
#include "deflang/expression/vid_std_name.h"
#include "deflang/text/text_cursor.h"
#include "sw/parm/parm_name.h"
#include "vid_std.h"

namespace {

// The names that select what they say: a row behind another one that begins it is never selected.
std::vector<std::string_view> namesOfTheCatalogue() {
  std::vector<std::string_view> names;
  for (const vidStd_t& standard : vidStds()) {
    if (findVidStd(standard.name)->name == std::string_view(standard.name)) {
      names.emplace_back(standard.name);
    }
  }
  for (const vidFormat_t& format : vidFormats()) {
    if (selectVid(format.name).format == &format) names.emplace_back(format.name);
  }
  return names;
}

// The letters and digits of a name in an order of their own: "720p50" has those of "720p/50".
std::string signsOf(std::string_view name) {
  std::string signs;
  for (const char c : name) {
    if (std::isalnum(static_cast<unsigned char>(c)) == 0) continue;
    signs += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  }
  std::ranges::sort(signs);
  return signs;
}

std::string digitsOf(std::string_view name) {
  std::string digits(name);
  std::erase_if(digits, [](char c) { return c < '0' || c > '9'; });
  return digits;
}

// The name that was most likely meant: of the same signs, or of the same digits, or one that is cut
// short behind its "/".
std::optional<std::string> nearestStandard(std::string_view text) {
  const std::vector<std::string_view> names = namesOfTheCatalogue();
  const std::string signs = signsOf(text);
  const bool isCut = text.find('/') != std::string_view::npos;
  for (const std::string_view name : names) {
    if (signsOf(name) == signs || (isCut && name.starts_with(text))) return std::string(name);
  }
  NearestWord nearest(text);
  for (const std::string_view name : names) {
    if (digitsOf(name) == digitsOf(text)) nearest.offer(name);
  }
  if (!nearest.found()) return {};
  return std::string(*nearest.found());
}

// A name with one digit for each number: "1080i/55" is written like "1080i/50".
std::string shapeOf(std::string_view name) {
  std::string shape;
  for (const char c : name) {
    const bool isDigit = std::isdigit(static_cast<unsigned char>(c)) != 0;
    if (!isDigit || !shape.ends_with('0')) shape += isDigit ? '0' : c;
  }
  return shape;
}

bool isWrittenLikeAStandard(std::string_view text) {
  const std::string shape = shapeOf(text);
  return std::ranges::any_of(namesOfTheCatalogue(),
                             [&](std::string_view name) { return shapeOf(name) == shape; });
}

// The names that go on behind `text` with a rate: "720p/50" of "720p".
std::vector<std::string_view> namesWithRate(std::string_view text) {
  const std::string start = std::string(text) + "/";
  std::vector<std::string_view> names;
  for (const std::string_view name : namesOfTheCatalogue()) {
    const bool goesOn =
        name.starts_with(start) && name.find('/', start.size()) == std::string_view::npos;
    // Some are standards and formats.
    if (goesOn && std::ranges::find(names, name) == names.end()) names.push_back(name);
  }
  return names;
}

// "720p/60.00, 720p/59.94 or others".
std::string someOf(std::vector<std::string_view> names) {
  constexpr size_t FEW = 3;
  if (names.size() > FEW) {
    names.resize(FEW - 1);
    names.emplace_back("others");
  }
  return listOf(names);
}

// The texts of a parameter that takes no others; none where its range is not known.
std::vector<std::string_view> textsTakenBy(const ParameterRecord& record) {
  std::vector<std::string_view> texts;
  for (const RangeStatement& range : record.rangeValid) {
    for (const RangeItem& item : range.items) {
      if (!item.text) return {};
      texts.push_back(*item.text);
    }
  }
  return texts;
}

// What of `texts` was most likely meant by `text`, which is none of them.
std::optional<std::string> nearestOf(std::span<const std::string_view> texts,
                                     std::string_view text) {
  const auto isLonger = [&](std::string_view one) { return one.starts_with(text); };
  if (std::ranges::count_if(texts, isLonger) == 1) {
    return std::string(*std::ranges::find_if(texts, isLonger));
  }
  NearestWord nearest(text);
  nearest.offer(texts);
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

  void check() {
    if (selectors_.empty()) return;
    for (const ParameterRecord* record : facts_.records().inNameOrder()) {
      if (selectors_.contains(record->name)) checkValues(*record);
      forEachExpression(*record,
                        [this](const Expression& expression) { checkComparisons(expression); });
    }
    repeated_.forEach([this](Finding finding, size_t) { findings_.add(std::move(finding)); });
  }

 private:
  void noteSelectors(const Expression& expression) {
    for (const Token& token : expression.tokens) {
      if (token.kind != TOKEN_VARIABLE) continue;
      const auto name = splitVidStdName(token.text);
      if (name) selectors_.insert(baseName(name->parameter));
    }
  }

  void checkValues(const ParameterRecord& record) {
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

  void checkComparisons(const Expression& expression) {
    for (size_t i = 1; i + 1 < expression.tokens.size(); ++i) {
      const int32_t kind = expression.tokens[i].kind;
      if (kind != OP_EQUAL && kind != OP_NOT_EQUAL) continue;
      checkComparison(expression.tokens[i - 1], expression.tokens[i + 1]);
      checkComparison(expression.tokens[i + 1], expression.tokens[i - 1]);
    }
  }

  void checkComparison(const Token& name, const Token& text) {
    const bool isSelector = name.kind == TOKEN_VARIABLE && selectors_.contains(baseName(name.text));
    if (!isSelector || text.kind != TOKEN_STRING) return;
    std::optional<Finding> finding = findingOf(text.text, text.at);
    if (!finding) return;
    if (const ParameterRecord* const record = facts_.defined(baseName(name.text))) {
      const std::vector<std::string_view> taken = textsTakenBy(*record);
      if (std::ranges::find(taken, text.text) != taken.end()) {
        repeated_.add(std::string(text.text), *std::move(finding));
        return;
      }
      if (!taken.empty()) proposeTaken(*finding, text.text, *record, taken);
    }
    findings_.add(*std::move(finding));
  }

  // Nothing that the parameter does not take helps in a comparison.
  void proposeTaken(Finding& finding, std::string_view text, const ParameterRecord& record,
                    const std::vector<std::string_view>& taken) const {
    const bool isTaken = finding.proposal && std::ranges::any_of(taken, [&](std::string_view one) {
                           return inQuotes(one) == finding.proposal->text;
                         });
    if (isTaken) return;
    finding.proposal.reset();
    if (const std::optional<std::string> near = nearestOf(taken, text)) {
      finding.proposal = Proposal{finding.at, inQuotes(*near)};
    }
    std::vector<std::string> quotations;
    quotations.reserve(taken.size());
    for (const std::string_view one : taken) quotations.push_back(quoted(one));
    finding.related.push_back(
        {facts_.nameOf(record),
         std::string(record.name) + " is " + someOf({quotations.begin(), quotations.end()})});
  }

  void checkText(std::string_view text, Position at) {
    std::optional<Finding> finding = findingOf(text, at);
    if (finding) repeated_.add(std::string(text), *std::move(finding));
  }

  [[nodiscard]] std::optional<Finding> findingOf(std::string_view text, Position at) const {
    const TextPlace place = facts_.tokenAt(at);
    if (isUnknownStandard(text)) {
      Finding finding{"unknown-standard", place, quoted(text) + " selects no video standard"};
      std::optional<std::string> near = nearestStandard(text);
      const std::vector<std::string_view> longer = namesWithRate(text);
      if (!near && longer.size() == 1) near = std::string(longer.front());
      if (near) {
        finding.proposal = Proposal{place, inQuotes(*near)};
      } else if (!longer.empty()) {
        finding.text += ": the rate is missing, as in " + someOf(longer);
      }
      return finding;
    }
    if (trimmed(text) == text || selectsNothing(text)) return {};
    return Finding{"unknown-standard",
                   place,
                   quoted(text) + " is the name of a video standard with white space behind it",
                   {},
                   Proposal{place, inQuotes(trimmed(text))}};
  }

  const TextFacts& facts_;
  Findings& findings_;
  RepeatedFindings repeated_;  // of the values of parameters, by what they are
  std::set<std::string_view> selectors_;
};

}  // namespace

bool isUnknownStandard(std::string_view text) {
  return selectsNothing(text) &&
         (nearestStandard(text) || isWrittenLikeAStandard(text) || !namesWithRate(text).empty());
}

void addUnknownStandards(const TextFacts& facts, Findings& findings) {
  StandardTexts(facts, findings).check();
}

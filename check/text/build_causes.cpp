#include "check/text/build_causes.h"

#include <algorithm>
#include <set>
#include <tuple>

#include "base/nearest_word.h"
#include "base/number.h"
#include "check/text/expression_causes.h"
#include "check/text/finding_codes.h"
#include "check/text/index_causes.h"
#include "check/text/name_causes.h"
#include "check/text/record_expressions.h"
#include "check/text/repeated_findings.h"
#include "check/text/text_facts.h"
#include "check/text/text_scan.h"
#include "check/text/unknown_standards.h"
#include "check/text/unused_constants.h"
#include "check/text/wording.h"
#include "database/reference_ring.h"
#include "deflang/expression/vid_std_name.h"
#include "deflang/text/text_cursor.h"
#include "sw/parm/parm_name.h"

namespace {

// Orders of more index values are not tried.
constexpr size_t MANY_INDICES = 5;

bool isAt(Position a, Position b) { return a.line == b.line && a.column == b.column; }

bool haveSameTokens(const Expression& a, const Expression& b) {
  return std::ranges::equal(a.tokens, b.tokens, [](const Token& x, const Token& y) {
    return x.kind == y.kind && x.number == y.number && x.text == y.text;
  });
}

// "1..2, 7, "off"", cut where it is long.
std::string valuesText(const BoundsParm& bounds) {
  constexpr size_t LONGEST = 60;
  std::string text;
  const auto add = [&text](const std::string& item) {
    if (text.size() < LONGEST) text += (text.empty() ? "" : ", ") + item;
  };
  for (const auto& [low, high] : bounds.integers().spans()) {
    add(low == high ? std::to_string(low) : std::to_string(low) + ".." + std::to_string(high));
  }
  for (const std::string& allowed : bounds.strings().texts()) add(quoted(allowed));
  return text.size() < LONGEST ? text : text + ", ...";
}

bool isQuotedText(std::string_view value) {
  return value.size() > 2 && value.front() == '"' && value.back() == '"';
}

std::string countOf(size_t count, const std::string& one, const std::string& many) {
  return (count == 0 ? "no" : std::to_string(count)) + " " + (count == 1 ? one : many);
}

class BuildCauses {
 public:
  BuildCauses(const SourceText& source, const ReadText& text, const Variant& variant,
              Findings& findings)
      : facts_(source, text, *variant.database),
        names_(facts_, variant.constants),
        indices_(facts_, names_, repeated_),
        variant_(variant),
        findings_(findings) {}

  void explain(const BuildReport& report) {
    const std::vector<Diagnostic>& all = report.diagnostics.diagnostics();
    for (const Diagnostic& diagnostic : all) notePair(diagnostic);
    for (const Diagnostic& diagnostic : all) explainOne(diagnostic);
    indices_.finish();
    addRepeated();
    addOddNames();
    explainEmptyConditions();
    if (report.finishResult == 1) explainRing(report.onRing);
    addUnusedConstants(facts_, variant_.constants, misspeltConstants_, findings_);
    addUnknownStandards(facts_, findings_);
    if (report.result != 0 && !hasError_ && !facts_.text().isBroken) {
      add({"builder", {}, "the daemon refuses the text"});
    }
  }

 private:
  // Two conditions that contradict or repeat each other: the later one is not reported as constant,
  // too.
  void notePair(const Diagnostic& diagnostic) {
    const bool isPair =
        diagnostic.code == DIAG_CONDITIONS_ZERO || diagnostic.code == DIAG_CONFLICTING_CONDITIONS;
    if (isPair) pairs_.emplace(diagnostic.at.line, diagnostic.at.column);
  }

  void explainOne(const Diagnostic& diagnostic) {
    if (diagnostic.at.line == NO_POSITION) return;  // an empty condition, which is looked for
    const DefinitionLayout* const definition = facts_.definitionAt(diagnostic.at);
    if (definition == nullptr) return;
    const ParameterRecord& record = *definition->record;
    switch (diagnostic.code) {
      case DIAG_MULTIPLE_INDEX_STATEMENTS:
        return secondIndexList(record, diagnostic);
      case DIAG_UNDEFINED_INDEX:
        return indices_.undefined(diagnostic.at, diagnostic.text);
      case DIAG_INVALID_INDEX:
        return indices_.notAnIndex(record, diagnostic.at);
      case DIAG_UNDEFINED_VARIABLE:
        return undefinedName(diagnostic);
      case DIAG_INDEX_MISMATCH:
        return indexMismatch(record, diagnostic);
      case DIAG_CONDITION_ZERO:
        return neverTrue(record, diagnostic);
      case DIAG_CONDITIONS_ZERO:
      case DIAG_CONDITIONS_NON_ZERO:
      case DIAG_CONFLICTING_CONDITIONS:
        return diagnostic.severity == SEVERITY_ERROR && isInDefault(diagnostic.at)
                   ? secondFallback(record, diagnostic)
                   : constantPair(record, diagnostic);
      case DIAG_INDEX_WITH_INDICES:
        return add({"indexed-index", facts_.keywordAt(diagnostic.at),
                    "an index has no indices: this statement is passed over"});
      case DIAG_MULTIPLE_TRANSLATIONS:
        return ambiguousTranslation(record, diagnostic);
      case DIAG_INVALID_RANGE:
        return invalidRange(record, diagnostic);
      case DIAG_INVALID_EXPRESSION:
        return invalidExpression(diagnostic);
      case DIAG_DUPLICATE_CONDITIONS:
        return sameCondition(record, diagnostic);
      default:
        return add({"builder", facts_.tokenAt(diagnostic.at), diagnosticMessage(diagnostic.code)});
    }
  }

  // ---- Indices

  void secondIndexList(const ParameterRecord& record, const Diagnostic& diagnostic) {
    add({"second-index-list",
         facts_.keywordAt(diagnostic.at),
         quoted(record.name) + " has an index statement already: this one is passed over",
         {{facts_.keywordAt(record.indices.front().front().at), "the first one is here"}}});
  }

  void indexMismatch(const ParameterRecord& record, const Diagnostic& diagnostic) {
    const TextPlace place = facts_.tokenAt(diagnostic.at);
    const std::string_view name = tokenText(diagnostic.at);
    const std::string_view referenced = referencedName(name);
    const ParmName parts = splitName(referenced);
    const ParameterRecord* const named = facts_.defined(parts.base);
    if (named == nullptr || isBroken(*named) || isBroken(record)) return;
    if (named->access == ACCESS_INDEX) return wrongIndex(record, *named, parts, place);
    const size_t count = named->indices.empty() ? 0 : named->indices.front().size();
    const size_t given = parts.indices.size();
    if (count != given) {
      std::string text = std::string(named->name) + " has " + countOf(count, "index", "indices") +
                         ", " + std::to_string(given) + (given == 1 ? " is" : " are") + " given";
      if (count == 0 && given == 1 && isQuotedText(parts.indices.front())) {
        text += "; a comparison with its value is written " + std::string(named->name) +
                " == " + parts.indices.front();
      }
      return add({"index-mismatch", place, text, {{facts_.nameOf(*named), "defined here"}}});
    }
    const IndexedName written = {name, referenced, parts, place};
    if (std::optional<Finding> finding = otherOrder(*named, written)) {
      return add(*std::move(finding));
    }
    for (size_t i = 0; i < count; ++i) wrongIndexValue(record, *named, i, written);
  }

  // A name with index values in an expression.
  struct IndexedName {
    std::string_view text;        // all of the token
    std::string_view referenced;  // of it, without "vidStd::" and figure
    const ParmName& parts;
    TextPlace place;

    // With another name in the place of this one.
    [[nodiscard]] Proposal with(const std::string& other) const {
      std::string right(text);
      const auto from = static_cast<size_t>(referenced.data() - text.data());
      return {place, right.replace(from, referenced.size(), other)};
    }
    [[nodiscard]] std::string withValues(const IndexTuple& values) const {
      std::string right(parts.base);
      for (const std::string& value : values) right += "[" + value + "]";
      return right;
    }
  };

  // The index values in an order in which they fit.
  [[nodiscard]] std::optional<Finding> otherOrder(const ParameterRecord& named,
                                                  const IndexedName& written) const {
    std::vector<const IndexDef*> indices;
    IndexTuple order;
    for (const IndexName& index : named.indices.front()) {
      indices.push_back(variant_.database->findIndex(index.name));
      if (indices.back() == nullptr) return {};
      order.emplace_back(index.name);
    }
    IndexTuple values = written.parts.indices;
    if (values.size() > MANY_INDICES) return {};
    std::ranges::sort(values);
    bool isFound = fitIndices(indices, values);
    while (!isFound && std::ranges::next_permutation(values).found) {
      isFound = fitIndices(indices, values);
    }
    if (!isFound) return {};
    Finding finding = {"index-mismatch",
                       written.place,
                       "the index values have another order: " + written.withValues(order),
                       {{facts_.nameOf(named), "defined here"}}};
    finding.proposal = written.with(written.withValues(values));
    return finding;
  }

  void wrongIndex(const ParameterRecord& record, const ParameterRecord& index,
                  const ParmName& parts, TextPlace place) {
    if (!parts.indices.empty()) {
      return add({"index-mismatch", place,
                  quoted(parts.base) + " is an index, which has no indices itself"});
    }
    indices_.foreign(record, index, place);
  }

  void wrongIndexValue(const ParameterRecord& record, const ParameterRecord& named, size_t i,
                       const IndexedName& written) {
    const std::string_view name = named.indices.front()[i].name;
    const IndexDef* const index = variant_.database->findIndex(name);
    const ParameterRecord* const definition = facts_.defined(name);
    if (index == nullptr || definition == nullptr || isBroken(*definition)) return;
    const std::vector<const IndexDef*> one = {index};
    const std::string& value = written.parts.indices[i];
    if (fitIndices(one, {value})) return;
    Finding finding = {"index-mismatch",
                       written.place,
                       "the index " + quoted(name) + " has no value " + quoted(value) +
                           ": it has " + valuesText(index->baseBounds()),
                       {{facts_.nameOf(*definition), "defined here"}}};
    const size_t count = written.parts.indices.size();
    const bool isShared = !record.indices.empty() &&
                          std::ranges::find(record.indices.front(), name, &IndexName::name) !=
                              record.indices.front().end();
    const bool isExpression = value.find_first_of(" \t+-*/%") != std::string::npos;
    const bool isName = value == name || facts_.defined(value) != nullptr ||
                        facts_.isConstant(value) ||
                        (index->baseBounds().strings().count() == 0 && !wholeNumber(value));
    const bool isQuoted = isQuotedText(value);
    const std::string bare = isQuoted ? value.substr(1, value.size() - 2) : value;
    if (isQuoted && fitIndices(one, {bare})) {
      finding.text = "an index value in brackets has no quotes";
      IndexTuple values = written.parts.indices;
      values[i] = bare;
      finding.proposal = written.with(written.withValues(values));
    } else if (isName && !isExpression && count == 1 && isShared) {
      finding.text = "brackets hold an index value, and no name: without brackets, " +
                     quoted(written.parts.base) + " is that of the same " + std::string(name);
      finding.proposal = written.with(std::string(written.parts.base));
    } else if (isName) {
      finding.text = "brackets hold an index value as it is written, and no " +
                     std::string(isExpression ? "expression" : "name") + ": the index " +
                     quoted(name) + " has " + valuesText(index->baseBounds());
    } else {
      proposeIndexValue(finding, *index, i, written);
    }
    add(std::move(finding));
  }

  static void proposeIndexValue(Finding& finding, const IndexDef& index, size_t i,
                                const IndexedName& written) {
    IndexTuple values = written.parts.indices;
    NearestWord nearest(values[i]);
    for (const std::string& text : index.baseBounds().strings().texts()) nearest.offer(text);
    if (!nearest.found()) return;
    values[i] = std::string(*nearest.found());
    finding.proposal = written.with(written.withValues(values));
  }

  // ---- Names

  void undefinedName(const Diagnostic& diagnostic) {
    const std::string base(baseName(referencedName(diagnostic.text)));
    if (facts_.text().isDoubtful(base)) return;
    Finding finding = names_.undefined(diagnostic.at, diagnostic.text);
    const bool isMisspelt = finding.proposal && isUnusedConstant(finding.proposal->text);
    if (isMisspelt) {
      finding.text += ", and nothing uses the constant " + quoted(finding.proposal->text) +
                      " of the command line: one of the two is misspelt";
      misspeltConstants_.insert(finding.proposal->text);
    }
    const std::string cause = finding.text;
    repeated_.add(cause, std::move(finding));
  }

  void addRepeated() {
    repeated_.forEach([this](Finding finding, size_t count) {
      // A constant that the text has again is right there.
      const bool isOnCommandLine =
          finding.proposal && misspeltConstants_.contains(finding.proposal->text);
      if (isOnCommandLine && count > 1) finding.proposal.reset();
      add(std::move(finding));
    });
  }

  void addOddNames() {
    for (Finding& finding : names_.oddNames().findings()) {
      if (findings_.find(finding.code, finding.at) == nullptr) add(std::move(finding));
    }
  }

  [[nodiscard]] bool isUnusedConstant(const std::string& name) {
    const bool isGiven = std::ranges::any_of(
        variant_.constants, [&name](const auto& constant) { return constant.first == name; });
    if (!isGiven || facts_.defined(name) != nullptr) return false;
    if (!used_) used_ = namesInExpressions(facts_);
    return !used_->contains(name);
  }

  void explainRing(const std::string& onRing) {
    std::vector<RingStep> ring = referenceRing(*variant_.database->findParm(onRing));
    if (ring.empty()) return;
    const auto nameAt = [this](const RingStep& step) {
      return facts_.nameOf(*facts_.defined(step.parm->parm.name()));
    };
    std::rotate(ring.begin(), std::ranges::min_element(ring, {}, nameAt), ring.end());
    std::string names;
    Finding finding = {"cycle", nameAt(ring.front()), ""};
    for (size_t i = 0; i < ring.size(); ++i) {
      const std::string& next = ring[(i + 1) % ring.size()].parm->parm.name();
      names += ring[i].parm->parm.name() + " -> ";
      if (auto place = referenceIn(ring[i], next)) finding.related.push_back(*std::move(place));
    }
    finding.text =
        "parameters depend on one another in a ring: " + names + ring.front().parm->parm.name();
    add(std::move(finding));
  }

  // Where a step of a ring names the next parameter.
  [[nodiscard]] std::optional<RelatedPlace> referenceIn(const RingStep& step,
                                                        std::string_view next) const {
    const std::string& definition =
        step.index == nullptr ? step.parm->parm.name() : step.index->index->name();
    const ParameterRecord* const record = facts_.defined(definition);
    std::optional<Position> first;
    if (record == nullptr) return {};
    forEachExpression(*record, [&](const Expression& expression) {
      for (const Token& token : expression.tokens) {
        const bool isNext =
            token.kind == TOKEN_VARIABLE && baseName(referencedName(token.text)) == next;
        if (isNext && (!first || std::tie(token.at.line, token.at.column) <
                                     std::tie(first->line, first->column))) {
          first = token.at;
        }
      }
    });
    if (!first) return {};
    std::string text = quoted(step.parm->parm.name()) + " depends on " + quoted(next);
    if (step.index != nullptr) text += " by its index " + quoted(definition);
    return RelatedPlace{facts_.tokenAt(*first), text};
  }

  // ---- Conditions

  void neverTrue(const ParameterRecord& record, const Diagnostic& diagnostic) {
    if (pairs_.contains({diagnostic.at.line, diagnostic.at.column})) return;
    const StatementLayout* const statement = facts_.statementAt(diagnostic.at);
    const std::string_view keyword = statement == nullptr ? "" : statement->keyword;
    Finding finding = {"constant-condition", facts_.tokenAt(diagnostic.at),
                       "this condition is never true"};
    if (keyword.starts_with("range")) {
      finding.level = LEVEL_ERROR;
      finding.text += ", and the daemon refuses a range that never applies";
    } else if (keyword == "ctrlValid") {
      finding.text += ", so " + quoted(record.name) + " is never available";
    } else {
      finding.text += ", so this default never counts";
    }
    add(std::move(finding));
  }

  [[nodiscard]] bool isInDefault(Position at) const {
    const StatementLayout* const statement = facts_.statementAt(at);
    return statement != nullptr && statement->keyword == "default";
  }

  void constantPair(const ParameterRecord& record, const Diagnostic& diagnostic) {
    const StatementLayout* const statement = facts_.statementAt(diagnostic.at);
    const std::string keyword(statement == nullptr ? "" : statement->keyword);
    const StatementList<Expression>& all = keyword == "ctrlRO" ? record.ctrlRO : record.ctrlValid;
    const bool isConflict = diagnostic.code == DIAG_CONFLICTING_CONDITIONS;
    const bool isTrue = diagnostic.code == DIAG_CONDITIONS_NON_ZERO;
    Finding finding = {
        isConflict ? "conflicting-conditions" : "repeated-condition", facts_.tokenAt(diagnostic.at),
        isConflict
            ? "this \"" + keyword + "\" contradicts an earlier one: one is always true, one never"
        : isTrue ? "a second \"" + keyword + "\" that is always true"
                 : "a second \"" + keyword + "\" that is never true"};
    for (const Expression& expression : all) {
      if (expression.empty() || facts_.namesConstant(expression)) continue;
      if (isAt(expression.tokens.front().at, diagnostic.at)) break;
      const std::optional<Value> value = facts_.constantValue(expression);
      if (!value || (!isConflict && value->isTrue() != isTrue)) continue;
      finding.related.push_back(
          {facts_.tokenAt(expression.tokens.front().at),
           std::string("this one is ") + (value->isTrue() ? "always true" : "never true")});
      break;
    }
    add(std::move(finding));
  }

  // The later of two defaults that always apply.
  void secondFallback(const ParameterRecord& record, const Diagnostic& diagnostic) {
    Finding finding = {"same-condition", facts_.tokenAt(diagnostic.at),
                       quoted(record.name) + " has a default that always applies already"};
    for (const DefaultStatement& value : record.defaults) {
      const bool isAlways = value.condition.empty() || isAlwaysTrue(value.condition);
      if (!isAlways) continue;
      finding.related.push_back({facts_.keywordAt(value.at), "the first one is here"});
      break;
    }
    add(std::move(finding));
  }

  [[nodiscard]] bool isAlwaysTrue(const Expression& condition) const {
    const std::optional<Value> value = facts_.constantValue(condition);
    return value && value->isTrue() && !facts_.namesConstant(condition);
  }

  void sameCondition(const ParameterRecord& record, const Diagnostic& diagnostic) {
    const Expression* const condition = facts_.expressionAt(diagnostic.at);
    Finding finding = {"same-condition", facts_.tokenAt(diagnostic.at),
                       "an earlier default has the same condition"};
    for (const DefaultStatement& value : record.defaults) {
      if (condition == nullptr || !haveSameTokens(value.condition, *condition)) continue;
      finding.related.push_back(
          {facts_.tokenAt(value.condition.tokens.front().at), "the earlier condition"});
      break;
    }
    add(std::move(finding));
  }

  // ctrlRO () and ctrlValid (), which the builder reports without a place.
  void explainEmptyConditions() {
    for (const DefinitionLayout& definition : facts_.text().layout.definitions) {
      if (definition.record->access == ACCESS_NONE) continue;
      std::map<std::string_view, size_t> places;
      for (const StatementLayout& statement : definition.statements) {
        if (!statement.keyword.starts_with("ctrl")) continue;
        const Position from = statement.extent.from;
        TextScan scan(facts_.source(), facts_.source().text(), facts_.source().offsetOf(from));
        scan.next();
        scan.next();
        if (!scan.next().isSign(')')) continue;
        add({"invalid-expression", placeAt(from, statement.keyword.size()),
             "the condition of \"" + std::string(statement.keyword) + "\" is empty"});
      }
    }
  }

  // ---- Values

  void ambiguousTranslation(const ParameterRecord& record, const Diagnostic& diagnostic) {
    const Translation* second = nullptr;
    for (const Translation& translation : record.valueChange) {
      if (isAt(translation.at, diagnostic.at)) second = &translation;
    }
    if (second == nullptr) return;
    for (const Translation& first : record.valueChange) {
      if (first.source != second->source) continue;
      return add({"ambiguous-translation",
                  facts_.tokenAt(diagnostic.at),
                  quoted(second->source) + " becomes " + quoted(first.target) +
                      " already, and cannot become " + quoted(second->target),
                  {{facts_.tokenAt(first.at), "the first translation"}}});
    }
  }

  void invalidRange(const ParameterRecord& record, const Diagnostic& diagnostic) {
    for (const StatementList<RangeStatement>* ranges : {&record.rangeValid, &record.rangeDoc}) {
      for (const RangeStatement& range : *ranges) {
        const auto item = std::ranges::find_if(
            range.items, [&](const RangeItem& i) { return isAt(i.at, diagnostic.at); });
        if (item != range.items.end()) return add(invalidItem(*item));
      }
    }
  }

  [[nodiscard]] Finding invalidItem(const RangeItem& item) const {
    const TextPlace place = placeAt(item.at, itemLength(item.at));
    if (item.text) return {"invalid-range", place, "an item cannot be the empty text"};
    if (item.lower.empty() || (item.upper && item.upper->empty())) {
      return {"invalid-range", place, "there is nothing between these parentheses"};
    }
    const std::optional<Value> lower = facts_.constantValue(item.lower);
    const std::optional<Value> upper = facts_.constantValue(*item.upper);
    const bool isText = (lower && !lower->isNumber()) || (upper && !upper->isNumber());
    if (isText || !lower || !upper) {
      return {"invalid-range", place, "the ends of a span are numbers, and no texts"};
    }
    const std::string low = lower->asText();
    const std::string high = upper->asText();
    Finding finding = {"invalid-range", place, "a span goes upwards: " + low + " is above " + high};
    const bool areBare = place.length == low.size() + high.size() + 2;
    if (areBare) finding.proposal = {place, high + ".." + low};
    return finding;
  }

  // Up to the "," or "}" behind an item, as far as it is on one line.
  [[nodiscard]] size_t itemLength(Position at) const {
    const std::string_view line = facts_.source().line(at.line).substr(at.column);
    size_t depth = 0;
    size_t end = 0;
    for (; end < line.size(); ++end) {
      const char c = line[end];
      if (c == '(') ++depth;
      if (c == ')' && depth > 0) --depth;
      if (depth == 0 && (c == ',' || c == '}')) break;
    }
    while (end > 0 && isWhiteSpace(line[end - 1])) --end;
    return end;
  }

  void invalidExpression(const Diagnostic& diagnostic) {
    if (const Expression* const expression = facts_.expressionAt(diagnostic.at)) {
      return add(causeOfInvalidExpression(facts_, *expression, diagnostic.at));
    }
    add({"invalid-expression", facts_.tokenAt(diagnostic.at),
         "there is nothing between these parentheses"});
  }

  // ---- Helpers

  // Whether the end of a piece cuts the token at `at` off, or something off it.
  [[nodiscard]] bool isAtCut(Position at) const {
    const std::set<size_t>& cuts = facts_.text().cuts;
    if (cuts.empty()) return false;
    const size_t from = facts_.source().offsetOf(at);
    const auto cut = cuts.lower_bound(from);
    return cut != cuts.end() && *cut <= from + facts_.tokenAt(at).length;
  }

  [[nodiscard]] bool isBroken(const ParameterRecord& record) const {
    return facts_.text().brokenRecords.contains(&record);
  }

  // The text of the variable at a place.
  [[nodiscard]] std::string_view tokenText(Position at) const {
    const Expression* const expression = facts_.expressionAt(at);
    if (expression == nullptr) return {};
    const auto token =
        std::ranges::find_if(expression->tokens, [at](const Token& t) { return isAt(t.at, at); });
    return token->text;
  }

  void add(Finding finding) {
    if (isAtCut({finding.at.line, finding.at.column})) return;
    const FindingCode* const code = findFindingCode(finding.code);
    hasError_ = hasError_ || finding.level.value_or(code->level) == LEVEL_ERROR;
    findings_.add(std::move(finding));
  }

  TextFacts facts_;
  NameCauses names_;
  RepeatedFindings repeated_;
  IndexCauses indices_;
  const Variant& variant_;
  Findings& findings_;
  std::set<std::pair<uint32_t, uint32_t>> pairs_;
  std::set<std::string> misspeltConstants_;
  std::optional<std::set<std::string_view>> used_;
  bool hasError_ = false;
};

}  // namespace

void explainBuild(const SourceText& source, const ReadText& text, const Variant& variant,
                  const BuildReport& report, Findings& findings) {
  BuildCauses(source, text, variant, findings).explain(report);
}

#include "check/text/index_causes.h"

#include <algorithm>

#include "base/number.h"
#include "check/text/record_expressions.h"
#include "check/text/text_scan.h"
#include "check/text/wording.h"
#include "deflang/expression/vid_std_name.h"
#include "sw/parm/parm_name.h"

namespace {

bool isIndexedBy(const ParameterRecord& record, std::string_view name) {
  if (record.indices.empty()) return false;
  return std::ranges::find(record.indices.front(), name, &IndexName::name) !=
         record.indices.front().end();
}

// Whether the statements of a definition are what an index has: values, and when it is available.
bool looksLikeIndex(const ParameterRecord& record) {
  const auto isConstant = [](const RangeStatement& range) { return range.condition.empty(); };
  return record.indices.empty() && record.defaults.empty() && record.valueChange.empty() &&
         record.ctrlRO.empty() && record.rangeDoc.empty() &&
         std::ranges::any_of(record.rangeValid, isConstant);
}

std::set<std::string_view> namesOfValues(const TextFacts& facts) {
  std::set<std::string_view> names;
  for (const ParameterRecord* record : facts.records().inNameOrder()) {
    forEachExpression(*record, [&](const Expression& expression) {
      for (const Token& token : expression.tokens) {
        if (token.kind != TOKEN_VARIABLE) continue;
        const std::string_view name = baseName(referencedName(token.text));
        if (!isIndexedBy(*record, name)) names.insert(name);
      }
    });
  }
  return names;
}

}  // namespace

void IndexCauses::undefined(Position at, const std::string& name) {
  if (facts_.text().isDoubtful(name)) return;
  Finding finding = {"undefined-index", placeAt(at, name.size()),
                     "there is no index " + quoted(name)};
  std::string_view bare = name;
  if (bare.size() > 2 && bare.front() == '"' && bare.back() == '"') {
    bare = bare.substr(1, bare.size() - 2);
    finding.text = "the name of an index has no quotes";
    finding.proposal = {finding.at, std::string(bare)};
  } else if (name.find("..") != std::string::npos || wholeNumber(name)) {
    finding.text = "an index statement has the names of indices, and no values: " + quoted(name);
  } else if (const std::optional<std::string> near = names_.nearest(name, NAME_INDEX)) {
    finding.proposal = {finding.at, *near};
  }
  repeated_.add("no index " + name, std::move(finding));
}

void IndexCauses::notAnIndex(const ParameterRecord& record, Position at) {
  for (const IndexName& index : record.indices.front()) {
    const bool isHere = index.at.line == at.line && index.at.column == at.column;
    if (isHere && facts_.defined(index.name) != nullptr) {
      parameters_[index.name].push_back(placeAt(at, index.name.size()));
    }
  }
}

void IndexCauses::foreign(const ParameterRecord& record, const ParameterRecord& index,
                          const TextPlace& place) {
  const bool hasList = !record.indices.empty();
  Finding finding = {
      "index-mismatch",
      place,
      quoted(record.name) + " is not indexed by " + quoted(index.name),
      {{hasList ? facts_.keywordAt(record.indices.front().front().at) : facts_.nameOf(record),
        hasList ? "its indices are given here" : "this definition has no index statement"}}};
  std::string cause = "foreign index " + std::string(index.name);
  if (const auto near = names_.nearest(index.name, NAME_PARAMETER)) {
    finding.text =
        quoted(index.name) + " is an index, and " + quoted(record.name) + " is not indexed by it";
    finding.proposal = {place, *near};
  } else {
    cause += " in " + std::string(record.name);
  }
  repeated_.add(cause, std::move(finding));
}

bool IndexCauses::isMeantAsIndex(const ParameterRecord& record) {
  if (!looksLikeIndex(record)) return false;
  if (!values_) values_ = namesOfValues(facts_);
  return !values_->contains(record.name);
}

TextPlace IndexCauses::accessOf(const ParameterRecord& record) const {
  const TextPlace name = facts_.nameOf(record);
  const std::string& text = facts_.source().text();
  const size_t at = facts_.source().offsetOf({name.line, name.column}) + name.length;
  const TextPart access = TextScan(facts_.source(), text, at).peek();
  const Position place = facts_.source().positionOf(access.at);
  return placeAt(place, access.text.size());
}

void IndexCauses::finish() {
  for (auto& [name, places] : parameters_) {
    std::ranges::sort(places);
    const ParameterRecord& record = *facts_.defined(name);
    const std::optional<std::string> near = names_.nearest(name, NAME_INDEX);
    const RelatedPlace definition = {facts_.nameOf(record), "defined here"};
    Finding finding = {"not-an-index",
                       places.front(),
                       quoted(name) + " is a parameter, and no index",
                       {definition}};
    if (near) finding.proposal = {places.front(), *near};
    std::vector<TextPlace> further(places.begin() + 1, places.end());
    if (!near && isMeantAsIndex(record)) {
      finding.at = accessOf(record);
      finding.text = quoted(name) + " is used as an index, and defined as a parameter";
      finding.related = {{places.front(), "used here"}};
      finding.proposal = {finding.at, "index"};
    }
    addFurtherPlaces(finding, further, "also used here");
    repeated_.add("parameter " + std::string(name), std::move(finding));
  }
}

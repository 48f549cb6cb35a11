#include "check/report_sarif.h"

#include <algorithm>
#include <cctype>
#include <nlohmann/json.hpp>

#include "check/named_values.h"
#include "check/printable.h"
#include "check/report_json_text.h"
#include "check/text/finding_codes.h"

namespace {

using Json = nlohmann::ordered_json;

// A file name as a reference that is resolved against the folder of the call.
std::string uriOf(std::string_view name) {
  constexpr std::string_view DIGITS = "0123456789ABCDEF";
  std::string uri = name.starts_with('/') ? "file://" : "";
  for (const char c : name) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = byte < 0x80 && (std::isalnum(byte) != 0 || c == '/' || c == '.' ||
                                         c == '-' || c == '_' || c == '~');
    if (isPlain) {
      uri += c;
    } else {
      uri.append({'%', DIGITS[byte >> 4U], DIGITS[byte & 0xFU]});
    }
  }
  return uri;
}

Json messageOf(const std::string& text) { return {{"text", text}}; }

Json ruleOf(const FindingCode& code) {
  Json rule = {{"id", code.name},
               {"shortDescription", messageOf(std::string(code.summary))},
               {"defaultConfiguration", {{"level", levelWord(code.level)}}}};
  if (!code.explanation.empty()) rule["help"] = messageOf(std::string(code.explanation));
  return rule;
}

// Makes the results of one text.
class ResultMaker {
 public:
  explicit ResultMaker(const SourceText& source) : source_(source), uri_(uriOf(source.name())) {}

  [[nodiscard]] Json resultOf(const Finding& finding) const {
    const FindingCode* const code = findFindingCode(finding.code);
    Json result = {{"ruleId", finding.code},
                   {"ruleIndex", code - findingCodes().data()},
                   {"level", levelWord(levelOf(finding))},
                   {"message", messageOf(fullText(finding))},
                   {"locations", Json::array({locationOf(finding.at)})}};
    for (const RelatedPlace& related : finding.related) {
      Json location = locationOf(related.at);
      location["message"] = messageOf(related.text);
      result["relatedLocations"].push_back(std::move(location));
    }
    if (finding.proposal && finding.proposal->at.line != 0) {
      result["fixes"] = Json::array({fixOf(*finding.proposal)});
    }
    addProperties(finding, result);
    return result;
  }

 private:
  // The sentence, with the situation and the variant.
  [[nodiscard]] static std::string fullText(const Finding& finding) {
    std::string text = finding.text;
    if (!finding.witness.empty()) text += ", for example with " + joinedValues(finding.witness);
    if (!finding.variant.empty()) text += " (with " + finding.variant + ")";
    return text;
  }

  static void addProperties(const Finding& finding, Json& result) {
    for (const auto& [name, value] : finding.witness) {
      result["properties"]["witness"].push_back({{"name", name}, {"value", value}});
    }
    if (!finding.variant.empty()) result["properties"]["variant"] = finding.variant;
  }

  [[nodiscard]] Json locationOf(const TextPlace& at) const {
    Json physical = {{"artifactLocation", {{"uri", uri_}}}};
    if (at.line != 0) physical["region"] = regionOf(at);
    return {{"physicalLocation", physical}};
  }

  // The end is the column behind the last character; a place without extent ends where it begins.
  [[nodiscard]] Json regionOf(const TextPlace& at) const {
    const std::string_view line = source_.line(at.line);
    const size_t column = std::min<size_t>(at.column, line.size());
    const size_t start = characterCount(line.substr(0, column)) + 1;
    const size_t end = start + characterCount(line.substr(column, at.length));
    return {{"startLine", at.line}, {"startColumn", start}, {"endColumn", end}};
  }

  [[nodiscard]] Json fixOf(const Proposal& proposal) const {
    const Json replacement = {{"deletedRegion", regionOf(proposal.at)},
                              {"insertedContent", messageOf(proposal.text)}};
    const Json change = {{"artifactLocation", {{"uri", uri_}}},
                         {"replacements", Json::array({replacement})}};
    return {{"artifactChanges", Json::array({change})}};
  }

  const SourceText& source_;
  const std::string uri_;
};

void addResults(const FileReport& file, Json& results) {
  const ResultMaker maker(*file.source);
  for (const Finding& finding : file.report.findings) results.push_back(maker.resultOf(finding));
  for (const Finding& finding : file.report.allowed) {
    Json result = maker.resultOf(finding);
    result["suppressions"] = Json::array({{{"kind", "inSource"}}});
    results.push_back(std::move(result));
  }
  for (const Finding& finding : file.report.undecided) {
    Json result = maker.resultOf(finding);
    result["kind"] = "open";
    result["level"] = "none";
    results.push_back(std::move(result));
  }
}

}  // namespace

std::string sarifReport(std::span<const FileReport> files) {
  Json rules = Json::array();
  for (const FindingCode& code : findingCodes()) rules.push_back(ruleOf(code));
  Json results = Json::array();
  for (const FileReport& file : files) addResults(file, results);
  Json run = {{"tool", {{"driver", {{"name", "ostrel-check"}, {"rules", std::move(rules)}}}}},
              {"columnKind", "unicodeCodePoints"},
              {"results", std::move(results)}};
  Json json = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
               {"version", "2.1.0"},
               {"runs", Json::array({std::move(run)})}};
  return jsonText(json);
}

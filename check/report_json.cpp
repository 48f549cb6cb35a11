#include "check/report_json.h"

#include <nlohmann/json.hpp>

#include "check/report_json_text.h"
#include "check/text/finding_codes.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr int VERSION = 1;

// Adds where something is, if it has a place.
void addPlace(const TextPlace& at, Json& json) {
  if (at.line == 0) return;
  json["line"] = at.line;
  json["column"] = at.column + 1;
  json["length"] = at.length;
}

Json placedText(const TextPlace& at, const std::string& text) {
  Json json = Json::object();
  addPlace(at, json);
  json["text"] = text;
  return json;
}

Json valuesOf(const NamedValues& values) {
  Json json = Json::array();
  for (const auto& [name, value] : values) json.push_back({{"name", name}, {"value", value}});
  return json;
}

Json findingOf(const Finding& finding) {
  Json json = {{"code", finding.code}, {"level", levelWord(levelOf(finding))}};
  addPlace(finding.at, json);
  json["text"] = finding.text;
  for (const RelatedPlace& related : finding.related) {
    json["related"].push_back(placedText(related.at, related.text));
  }
  if (finding.proposal) json["proposal"] = placedText(finding.proposal->at, finding.proposal->text);
  if (!finding.witness.empty()) json["witness"] = valuesOf(finding.witness);
  if (!finding.variant.empty()) json["variant"] = finding.variant;
  return json;
}

Json findingsOf(const std::vector<Finding>& findings) {
  Json json = Json::array();
  for (const Finding& finding : findings) json.push_back(findingOf(finding));
  return json;
}

Json fileOf(const FileReport& file) {
  return {{"name", file.source->name()},
          {"findings", findingsOf(file.report.findings)},
          {"allowed", findingsOf(file.report.allowed)},
          {"undecided", findingsOf(file.report.undecided)}};
}

}  // namespace

std::string jsonReport(std::span<const FileReport> files) {
  Json json = {{"version", VERSION}, {"files", Json::array()}};
  for (const FileReport& file : files) json["files"].push_back(fileOf(file));
  return jsonText(json);
}

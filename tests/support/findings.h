// Findings as texts, for tests of the checker.
#pragma once

#include <string>
#include <vector>

#include "check/text/finding_codes.h"
#include "check/text/read_text.h"
#include "check/text/variant.h"

/// "2:14 error: a span has two ends [syntax]"; without a place where the finding has none.
inline std::string findingText(const Finding& finding) {
  const FindingCode* const code = findFindingCode(finding.code);
  const char* const levels[] = {"error", "warning", "note"};
  const std::string place = finding.at.line == 0 ? ""
                                                 : std::to_string(finding.at.line) + ":" +
                                                       std::to_string(finding.at.column + 1) + " ";
  return place + levels[code == nullptr ? LEVEL_ERROR : finding.level.value_or(code->level)] +
         ": " + finding.text + " [" + std::string(finding.code) + "]";
}

/// All of `findings`, in the order of the text.
inline std::vector<std::string> findingTexts(const Findings& findings) {
  std::vector<std::string> texts;
  for (const Finding& finding : findings.inTextOrder()) texts.push_back(findingText(finding));
  return texts;
}

/// As findingTexts(), each with its related places as "2:1 note: defined here" and its proposal as
/// "2:14 meant: mode".
inline std::vector<std::string> detailedTexts(const Findings& findings) {
  const auto placeText = [](TextPlace at) {
    return std::to_string(at.line) + ":" + std::to_string(at.column + 1);
  };
  std::vector<std::string> texts;
  for (const Finding& finding : findings.inTextOrder()) {
    texts.push_back(findingText(finding));
    for (const RelatedPlace& related : finding.related) {
      texts.push_back(placeText(related.at) + " note: " + related.text);
    }
    if (finding.proposal) {
      texts.push_back(placeText(finding.proposal->at) + " meant: " + finding.proposal->text);
    }
  }
  return texts;
}

/// What is said about a text when it is read.
inline std::vector<std::string> findingsOfReading(const std::string& text) {
  const SourceText source("text", text);
  ReadText read;
  Findings findings;
  readText(source, read, findings);
  return findingTexts(findings);
}

/// What is said when it is read and built.
inline Findings findingsOf(const std::string& text, const NamedValues& constants = {}) {
  const SourceText source("text", text);
  ReadText read;
  Findings findings;
  readText(source, read, findings);
  static_cast<void>(buildVariant(source, read, constants, findings));
  return findings;
}

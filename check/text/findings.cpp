#include "check/text/findings.h"

#include <algorithm>
#include <tuple>

Finding* Findings::find(std::string_view code, TextPlace at) {
  const auto found = std::find_if(findings_.begin(), findings_.end(), [&](const Finding& finding) {
    return finding.code == code && finding.at.line == at.line && finding.at.column == at.column;
  });
  return found == findings_.end() ? nullptr : &*found;
}

std::vector<Finding> Findings::inTextOrder() const {
  const auto key = [](const Finding& finding) {
    return std::tie(finding.at.line, finding.at.column, finding.code, finding.text,
                    finding.variant);
  };
  std::vector<Finding> ordered = findings_;
  std::stable_sort(ordered.begin(), ordered.end(),
                   [&](const Finding& a, const Finding& b) { return key(a) < key(b); });
  const auto same = [&](const Finding& a, const Finding& b) { return key(a) == key(b); };
  ordered.erase(std::unique(ordered.begin(), ordered.end(), same), ordered.end());
  return ordered;
}

#include "check/text/findings.h"

#include <algorithm>
#include <tuple>

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

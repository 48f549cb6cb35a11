#include "check/report.h"

#include <algorithm>

#include "check/text/finding_codes.h"

namespace {

bool isError(const Finding& finding) { return levelOf(finding) == LEVEL_ERROR; }

}  // namespace

void keepErrors(CheckReport& report) {
  std::erase_if(report.findings, [](const Finding& finding) { return !isError(finding); });
  report.allowed.clear();
  report.undecided.clear();
}

bool hasErrors(const CheckReport& report) { return std::ranges::any_of(report.findings, isError); }

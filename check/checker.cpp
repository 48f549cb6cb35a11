#include "check/checker.h"

#include "base/system_log.h"
#include "check/allowances.h"
#include "check/merged_findings.h"
#include "check/proof/prove.h"
#include "check/static/static_checks.h"
#include "check/text/checked_text.h"

namespace {

// Whether all has been asked that findings of `code` come from.
bool isAsked(const FindingCode& code, bool isRead, bool isBuilt, bool isProved) {
  switch (code.group) {
    case GROUP_READING:
    case GROUP_OWN:
      return true;
    case GROUP_BUILDER:
      return isRead;
    case GROUP_STATIC:
      return isBuilt;
    case GROUP_PROVED:
      return isBuilt && isProved;
  }
  return false;
}

// Moves from `findings` what the text allows.
std::vector<Finding> takeAllowed(Allowances& allowances, std::vector<Finding>& findings) {
  std::vector<Finding> allowed;
  std::vector<Finding> rest;
  for (Finding& finding : findings) {
    (allowances.allow(finding) ? allowed : rest).push_back(std::move(finding));
  }
  findings = std::move(rest);
  return allowed;
}

}  // namespace

CheckReport checkText(const SourceText& source, const CheckOptions& options) {
  // What the engine tells of values that it refuses is part of a trial, and no matter of the log.
  const LogRedirection silence([](const std::string& /*line*/) {});
  const Deadline::Clock::time_point start = Deadline::Clock::now();
  Findings ofReading;
  ReadText text;
  readText(source, text, ofReading);

  beginProofs();
  MergedFindings found(options.constants);
  ProofLimits limits;
  if (options.maxSeconds)
    limits.deadline = Deadline(start + std::chrono::seconds(*options.maxSeconds));
  bool areAllBuilt = true;
  for (NamedValues& constants : variantsOf(options.constants)) {
    Findings findings;
    Findings questions;
    const Variant variant = buildVariant(source, text, std::move(constants), findings);
    const CheckedText checked{source, text, options.constants, variant};
    const ExplainedPlaces explained = checkStatics(checked, findings);
    if (variant.isBuilt && options.proofs) prove(checked, explained, limits, findings, questions);
    areAllBuilt = areAllBuilt && variant.isBuilt;
    found.addVariant(variant.isBuilt, findings, questions);
  }

  Findings all = found.merged();
  for (const Finding& finding : ofReading.all()) all.add(finding);
  CheckReport report = {all.inTextOrder(), {}, found.undecided().inTextOrder()};
  Allowances allowances(source, text.layout);
  report.allowed = takeAllowed(allowances, report.findings);
  static_cast<void>(takeAllowed(allowances, report.undecided));

  Findings remaining;
  for (Finding& finding : report.findings) remaining.add(std::move(finding));
  allowances.report(
      [&](const FindingCode& code) {
        return isAsked(code, !text.isBroken, areAllBuilt, options.proofs);
      },
      remaining);
  report.findings = remaining.inTextOrder();
  return report;
}

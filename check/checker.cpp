#include "check/checker.h"

#include <algorithm>

#include "base/system_log.h"
#include "check/allowances.h"
#include "check/jobs.h"
#include "check/merged_findings.h"
#include "check/packed_findings.h"
#include "check/partial_variant.h"
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

// A text with all that is the same in each of its variants.
class VariantChecks {
 public:
  VariantChecks(const SourceText& source, const ReadText& text, const CheckOptions& options,
                Deadline::Clock::time_point start)
      : source_(source),
        text_(text),
        options_(options),
        variants_(variantsOf(options.constants)),
        memory_(text, options.constants) {
    if (options.maxSeconds) deadline_ = Deadline(start + std::chrono::seconds(*options.maxSeconds));
    // A job asks its part of the questions in every variant: like questions are answered once.
    if (options.proofs) parts_ = std::min(options.jobs, MANY_JOBS);
  }

  // Adds what is found to `found`. Returns why it cannot, else nothing.
  std::string run(MergedFindings& found, bool& areAllBuilt) const {
    const size_t pieces = variants_.size() * parts_;
    const JobResults done = runJobs(pieces, std::min(options_.jobs, MANY_JOBS),
                                    [this](size_t piece) { return packFindings(check(piece)); });
    if (!done.failure.empty()) return done.failure;
    for (size_t piece = 0; piece < pieces; piece += parts_) {
      VariantFindings variant;
      for (size_t part = 0; part < parts_; ++part) {
        std::string_view bytes = done.results[piece + part];
        std::optional<VariantFindings> unpacked = unpackFindings(bytes);
        if (!unpacked) return "a job has answered something else";
        variant.isBuilt = unpacked->isBuilt;
        for (const Finding& finding : unpacked->findings.all()) variant.findings.add(finding);
        for (const Finding& finding : unpacked->undecided.all()) variant.undecided.add(finding);
      }
      areAllBuilt = areAllBuilt && variant.isBuilt;
      found.addVariant(variant.isBuilt, variant.findings, variant.undecided);
    }
    return {};
  }

 private:
  static constexpr uint32_t MANY_JOBS = 64;

  // What the first part of a variant's questions finds, with what needs no proof, or another part.
  VariantFindings check(size_t piece) const {
    const size_t part = piece % parts_;
    VariantFindings result;
    const Variant variant =
        buildVariant(source_, text_, variants_[piece / parts_], result.findings);
    result.isBuilt = variant.isBuilt;
    const CheckedText checked{source_, text_, options_.constants, variant};
    const ExplainedPlaces explained = checkStatics(checked, result.findings);
    const std::vector<Finding> known = result.findings.all();
    if (options_.proofs) prove(variant, explained, part, result);
    if (part == 0) return result;
    const std::vector<Finding> all = result.findings.all();
    result.findings = {};
    for (size_t i = 0; i < all.size(); ++i) {
      // A proof may have said more in a finding that needed none.
      const bool isNew = i >= known.size() || all[i].related.size() > known[i].related.size() ||
                         all[i].level != known[i].level;
      if (isNew) result.findings.add(all[i]);
    }
    return result;
  }

  // Asks of what the engine has built, or could build without what is wrong.
  void prove(const Variant& variant, const ExplainedPlaces& explained, size_t part,
             VariantFindings& result) const {
    std::optional<Variant> partial;
    if (!variant.isBuilt) partial = buildPartly(source_, text_, variant.constants);
    if (!variant.isBuilt && !partial) return;
    const CheckedText checked{source_, text_, options_.constants, partial ? *partial : variant};
    // What is left out may differ.
    ProofMemory* const memory = partial || variants_.size() == 1 ? nullptr : &memory_;
    ::prove(checked, explained, {deadline_, parts_, part, memory}, result.findings,
            result.undecided);
  }

  const SourceText& source_;
  const ReadText& text_;
  const CheckOptions& options_;
  std::vector<NamedValues> variants_;
  mutable ProofMemory memory_;  // each job has its own
  Deadline deadline_;
  size_t parts_ = 1;
};

// Whether a text has nothing that anybody could be told of.
bool hasNothing(const SourceText& source, const ReadText& text, const Findings& ofReading) {
  return text.layout.definitions.empty() && ofReading.all().empty() && !text.isBroken &&
         source.text().find("# check:") == std::string_view::npos;
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
  bool areAllBuilt = true;
  const std::string failure = VariantChecks(source, text, options, start).run(found, areAllBuilt);
  if (!failure.empty()) return {{}, {}, {}, failure};

  Findings all = found.merged();
  for (const Finding& finding : ofReading.all()) all.add(finding);
  if (hasNothing(source, text, ofReading)) {
    all.add({"nothing-defined", {}, "the text has no definition, so the device has no parameters"});
  }
  CheckReport report = {all.inTextOrder(), {}, found.undecided().inTextOrder(), {}};
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

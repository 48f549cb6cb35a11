#include "check/merged_findings.h"

#include <algorithm>
#include <cassert>
#include <functional>
#include <iterator>

#include "check/named_values.h"
#include "check/text/finding_codes.h"

namespace {

// Whether a finding of `code` says that something never matters: what matters in one product is no
// mistake in another one.
bool isForAllVariants(std::string_view code) {
  static constexpr std::string_view CODES[] = {"always-true", "dead-comparison", "never-true",
                                               "unreachable"};
  return std::find(std::begin(CODES), std::end(CODES), code) != std::end(CODES);
}

// Whether `a` says more than `b` of the same finding: what follows from it, or an earlier place.
bool saysMore(const Finding& a, const Finding& b) {
  if (levelOf(a) != levelOf(b)) return levelOf(a) < levelOf(b);
  if (a.related.size() != b.related.size()) return a.related.size() > b.related.size();
  return !a.related.empty() && a.related.front().at < b.related.front().at;
}

bool hasAny(const std::vector<bool>& states) {
  return std::find(states.begin(), states.end(), true) != states.end();
}

}  // namespace

MergedFindings::MergedFindings(const ConstantChoices& choices)
    : choices_(choices), variants_(variantsOf(choices)) {}

void MergedFindings::addVariant(bool isBuilt, const Findings& findings, const Findings& undecided) {
  const size_t variant = isBuilt_.size();
  assert(variant < variants_.size());
  isBuilt_.push_back(isBuilt);
  for (const Finding& finding : findings.all()) add(variant, finding, &Entry::has);
  for (const Finding& finding : undecided.all()) add(variant, finding, &Entry::isOpen);
}

void MergedFindings::add(size_t variant, const Finding& finding, std::vector<bool> Entry::*states) {
  Entry& entry = entries_[{finding.at, finding.code, finding.text}];
  // A finding has more to tell than a question.
  const bool isFinding = states == &Entry::has;
  if (entry.has.empty() ||
      (isFinding && (!hasAny(entry.has) || isBetter(variant, finding, entry)))) {
    entry.finding = finding;
    entry.variant = variant;
  }
  entry.has.resize(variants_.size());
  entry.isOpen.resize(variants_.size());
  (entry.*states)[variant] = true;
}

// Whether a finding has more to tell than the one of `entry`, which is of an earlier variant or of
// the same.
bool MergedFindings::isBetter(size_t variant, const Finding& finding, const Entry& entry) {
  return levelOf(finding) < levelOf(entry.finding) ||
         (variant == entry.variant && saysMore(finding, entry.finding));
}

Findings MergedFindings::merged() const {
  assert(isBuilt_.size() == variants_.size());
  Findings findings;
  for (const auto& [key, entry] : entries_) {
    if (!isFound(entry) || isSwallowed(entry)) continue;
    Finding finding = entry.finding;
    finding.variant = variantOf(entry);
    findings.add(std::move(finding));
  }
  return findings;
}

// Whether a graver finding says the same and more: of a default with a name that is misspelt, or
// that is translated to one that no range allows.
bool MergedFindings::isSwallowed(const Entry& entry) const {
  const std::string_view code = entry.finding.code;
  if (code != "unknown-standard" && code != "translation") return false;
  return std::ranges::any_of(entries_, [&](const auto& other) {
    const Finding& finding = other.second.finding;
    return finding.code == "default-outside" && isFound(other.second) &&
           std::ranges::any_of(finding.related, [&](const RelatedPlace& related) {
             return related.at == entry.finding.at && related.text == entry.finding.text;
           });
  });
}

Findings MergedFindings::undecided() const {
  assert(isBuilt_.size() == variants_.size());
  Findings findings;
  for (const auto& [key, entry] : entries_) {
    if (!isUndecided(entry)) continue;
    Finding finding = entry.finding;
    finding.variant = variantOf({finding, 0, entry.isOpen, std::vector<bool>(variants_.size())});
    findings.add(std::move(finding));
  }
  return findings;
}

bool MergedFindings::isFound(const Entry& entry) const {
  if (!hasAny(entry.has)) return false;
  return !isForAllVariants(entry.finding.code) || std::ranges::all_of(entry.has, std::identity());
}

bool MergedFindings::isUndecided(const Entry& entry) const {
  if (!hasAny(entry.isOpen)) return false;
  return isForAllVariants(entry.finding.code) ? !isMissedBySome(entry) : !hasAny(entry.has);
}

// Whether a variant neither has it nor leaves it open; that may be one that is not built.
bool MergedFindings::isMissedBySome(const Entry& entry) const {
  for (size_t variant = 0; variant < variants_.size(); ++variant) {
    if (!entry.has[variant] && !entry.isOpen[variant]) return true;
  }
  return false;
}

bool MergedFindings::isLackedBySome(const Entry& entry) const {
  for (size_t variant = 0; variant < variants_.size(); ++variant) {
    if (isKnown(entry, variant) && !entry.has[variant]) return true;
  }
  return false;
}

std::string MergedFindings::variantOf(const Entry& entry) const {
  if (!isLackedBySome(entry)) return {};
  const auto first = std::find(entry.has.begin(), entry.has.end(), true);
  const NamedValues& constants = variants_[static_cast<size_t>(first - entry.has.begin())];
  NamedValues deciding;
  size_t step = variants_.size();
  for (size_t i = 0; i < choices_.size(); ++i) {
    const size_t values = choices_[i].second.size();
    step /= values;
    if (isDecidedBy(entry, step, values)) deciding.push_back(constants[i]);
  }
  // What is not known may hide that several constants decide it together.
  return joinedValues(deciding.empty() ? constants : deciding);
}

// Whether two variants that differ in this constant alone differ in the finding. Those with its
// next value are `step` variants further on.
bool MergedFindings::isDecidedBy(const Entry& entry, size_t step, size_t values) const {
  for (size_t first = 0; first < variants_.size(); ++first) {
    if (first / step % values != 0) continue;
    bool someHave = false;
    bool someLack = false;
    for (size_t variant = first; variant < first + step * values; variant += step) {
      if (!isKnown(entry, variant)) continue;
      (entry.has[variant] ? someHave : someLack) = true;
    }
    if (someHave && someLack) return true;
  }
  return false;
}

// Whether the variant's findings tell if it has this one.
bool MergedFindings::isKnown(const Entry& entry, size_t variant) const {
  if (entry.isOpen[variant] && !entry.has[variant]) return false;
  if (isBuilt_[variant] || entry.has[variant]) return true;
  const FindingGroup group = findFindingCode(entry.finding.code)->group;
  return group != GROUP_STATIC && group != GROUP_PROVED;
}

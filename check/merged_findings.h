// Merged findings: what was found in several variants, each finding told once.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "check/text/findings.h"
#include "check/text/variant.h"

/// Findings are the same where code, place and text are; of those of one variant the one counts
/// that says most. One that not all variants have names the
/// first that has it, with those constants only that decide it. A variant in which it is undecided
/// may have it.
class MergedFindings {
 public:
  /// For the variants of `choices`, which has to outlive this.
  explicit MergedFindings(const ConstantChoices& choices);

  /// Adds what was found in the variants one after another, in the order of variantsOf(). Where a
  /// variant is not built, nobody could ask for more than what kept it from being built.
  void addVariant(bool isBuilt, const Findings& findings, const Findings& undecided = {});
  /// Of the variants that were added, which have to be all: every finding once.
  [[nodiscard]] Findings merged() const;
  /// Likewise: every question once that is undecided in some variant and is no finding.
  [[nodiscard]] Findings undecided() const;

 private:
  using Key = std::tuple<TextPlace, std::string_view, std::string>;
  struct Entry {
    Finding finding;
    size_t variant = 0;  // that the finding is of: the first that has it, or has it graver
    std::vector<bool> has;
    std::vector<bool> isOpen;  // undecided
  };

  void add(size_t variant, const Finding& finding, std::vector<bool> Entry::*states);
  static bool isBetter(size_t variant, const Finding& finding, const Entry& entry);
  [[nodiscard]] bool isFound(const Entry& entry) const;
  [[nodiscard]] bool isSwallowed(const Entry& entry) const;
  [[nodiscard]] bool isUndecided(const Entry& entry) const;
  [[nodiscard]] bool isMissedBySome(const Entry& entry) const;
  [[nodiscard]] bool isLackedBySome(const Entry& entry) const;
  [[nodiscard]] std::string variantOf(const Entry& entry) const;
  [[nodiscard]] bool isDecidedBy(const Entry& entry, size_t step, size_t values) const;
  [[nodiscard]] bool isKnown(const Entry& entry, size_t variant) const;

  const ConstantChoices& choices_;
  std::vector<NamedValues> variants_;
  std::vector<bool> isBuilt_;
  std::map<Key, Entry> entries_;
};

// A collection of findings about one text.
#pragma once

#include <string_view>
#include <vector>

#include "check/text/finding.h"

/// Collects findings in any order.
class Findings {
 public:
  void add(Finding finding) { findings_.push_back(std::move(finding)); }
  /// What was added, in that order.
  [[nodiscard]] const std::vector<Finding>& all() const { return findings_; }
  /// The first finding of `code` that begins where `at` does, to say more in it, or null. Valid
  /// until the next add().
  [[nodiscard]] Finding* find(std::string_view code, TextPlace at);
  /// Calls `visit` with each finding, which may say more in it.
  template <typename Visit>
  void forEach(const Visit& visit) {
    for (Finding& finding : findings_) visit(finding);
  }
  /// In the order of the text: by place, then by code; what is said twice is said once.
  [[nodiscard]] std::vector<Finding> inTextOrder() const;

 private:
  std::vector<Finding> findings_;
};

// Repeated findings: what is wrong in several places for one reason, told once.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "check/text/findings.h"

/// Gathers findings by their causes.
class RepeatedFindings {
 public:
  /// `further` is said of each further place.
  explicit RepeatedFindings(std::string further = "also used here")
      : further_(std::move(further)) {}

  /// Adds a finding. Those of one cause are one finding, at the first of their places.
  void add(const std::string& cause, Finding finding) { all_[cause].add(std::move(finding)); }
  /// Calls `visit` with the finding of each cause, and with how many places it has. The further
  /// places are among the related ones, a few of them; the last of these tells how many more there
  /// are.
  template <typename Visit>
  void forEach(const Visit& visit) const {
    for (const auto& [cause, findings] : all_) {
      const std::vector<Finding> places = findings.inTextOrder();
      visit(joined(places), places.size());
    }
  }

 private:
  [[nodiscard]] Finding joined(const std::vector<Finding>& places) const;

  std::string further_;
  std::map<std::string, Findings, std::less<>> all_;
};

/// Adds to `finding` the places `further`, where the same is wrong, each with `text`: a few of
/// them, and how many more there are.
void addFurtherPlaces(Finding& finding, const std::vector<TextPlace>& further,
                      const std::string& text);

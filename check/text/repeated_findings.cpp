#include "check/text/repeated_findings.h"

#include <algorithm>

namespace {

// Of the further places.
constexpr size_t MANY_PLACES = 4;

}  // namespace

void addFurtherPlaces(Finding& finding, const std::vector<TextPlace>& further,
                      const std::string& text) {
  const size_t shown = std::min(further.size(), MANY_PLACES);
  for (size_t i = 0; i < shown; ++i) finding.related.push_back({further[i], text});
  const size_t more = further.size() - shown;
  if (more == 0) return;
  finding.related.back().text +=
      ", and in " + std::to_string(more) + (more == 1 ? " more place" : " more places");
}

Finding RepeatedFindings::joined(const std::vector<Finding>& places) const {
  Finding first = places.front();
  std::vector<TextPlace> further;
  for (size_t i = 1; i < places.size(); ++i) further.push_back(places[i].at);
  addFurtherPlaces(first, further, further_);
  return first;
}

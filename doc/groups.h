// Groups: the parameters of a device by the prefixes of their names, so that a picture of many
// parameters can begin with few nodes.
//
//   crop_left, crop_right, crop_top   are the group "crop"
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "doc/model.h"

/// So many parameters are one group at most.
constexpr size_t MANY_IN_A_GROUP = 80;

/// Some parameters of a model, as places in its list, in their order there.
struct DocGroup {
  std::string title;  ///< the prefix, or the first and the last name
  std::vector<size_t> members = {};
  bool hasPrefix = true;  ///< its members share one
};

/// Parts `parameters`, which are places in the list of `model`, into groups of two and more, in the
/// order of their first members. What shares no prefix with another one is in groups at the end. A
/// group that would have more than MANY_IN_A_GROUP members is parted by longer prefixes, or else by
/// count.
std::vector<DocGroup> groupsOf(const DocModel& model, const std::vector<size_t>& parameters);

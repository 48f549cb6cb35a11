// The picture: what follows what, from left to right by level, drawn by Graphviz.
#pragma once

#include <string>

#include "doc/model.h"

/// The section of the page with the picture. A device of few parameters is one drawing, with those
/// of one prefix in a box; of a larger one there is a drawing of the groups, and one of each group
/// with its members, to be opened by its node. Empty where no parameter follows another.
struct DocPicture {
  std::string html;
  std::string failure;  ///< as of drawGraphs(); else empty
};

DocPicture makePicture(const DocModel& model);

// The page: the documentation of a device as one HTML file that needs nothing else.
//
// It asks the network for nothing and runs no script but its own: a policy in its head names them
// by their hashes, so that no text of a device can bring in another one.
#pragma once

#include <string>

#include "doc/model.h"

/// What the page has beside the model.
struct PageParts {
  std::string picture;     ///< HTML of the picture; empty: none
  std::string deviceData;  ///< JSON of the compiled definitions; empty: nothing can be tried
  std::string evaluator;   ///< the script that defines OstrelDevice; empty: as above
};

/// The whole page.
std::string pageText(const DocModel& model, const PageParts& parts);

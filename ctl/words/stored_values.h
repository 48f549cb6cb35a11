// Stored values: what a device would have to get to be as it is now.
#pragma once

#include <optional>
#include <vector>

#include "ctl/words/levels.h"

/// The values of all "rw" parameters, with `isStatus` of all, the empty text among them where it is
/// allowed; none of a device where nothing has a value yet. nullopt where the service has gone
/// meanwhile and `mayGo`. Otherwise it ends the program then.
std::optional<std::vector<Assignment>> storedValues(Service& service, const Levels& levels,
                                                    bool isStatus, bool mayGo = false);

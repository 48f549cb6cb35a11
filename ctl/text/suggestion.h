// Suggestions: what is said of a name that does not exist.
#pragma once

#include <string>
#include <vector>

#include "ctl/service/answers.h"

/// A sentence about `name`, which is no instance of any of `parameters`, with the name that may
/// have been meant.
std::string unknownNameText(const std::string& name,
                            const std::vector<ListedParameter>& parameters);

/// The base name with the names of its indices: gain[channel].
std::string shapeOf(const ListedParameter& parameter);

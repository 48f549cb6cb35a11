// The model as JSON, for other programs. ostrel-doc(1) and schemas/documentation-1.json have the
// layout; what it means stays within a version.
#pragma once

#include <string>

#include "doc/model.h"

/// The whole model in lines.
std::string jsonText(const DocModel& model);

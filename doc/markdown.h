// The model as Markdown, for a wiki or a repository.
#pragma once

#include <string>

#include "doc/model.h"

/// The whole model: a heading for each parameter and index, and a table for the standards of each
/// selector. No text of the device is markup in it.
std::string markdownText(const DocModel& model);

// The matrix of the page: what follows a video standard, under each standard that may be selected.
#pragma once

#include <string>

#include "doc/model.h"

/// The section of the page, with one table for each parameter that selects a standard; empty where
/// the model has none.
std::string matrixHtml(const DocModel& model);

/// The range of a cell in one line, `0 … 1919, off`; "any value" where there are no limits, and
/// empty where there is no range.
std::string rangeText(const DocStandardCell& cell);

// Reports: what was found, text by text.
#pragma once

#include <memory>
#include <vector>

#include "check/checker.h"

/// A text and what was found in it. There is always a source.
struct FileReport {
  std::unique_ptr<SourceText> source;
  CheckReport report;
};

/// Leaves only the errors of a report.
void keepErrors(CheckReport& report);

/// Whether there is an error among the findings.
bool hasErrors(const CheckReport& report);

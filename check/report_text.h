// The report as a person reads it.
#pragma once

#include <cstdio>

#include "check/checker.h"

/// Writes each finding as
///
///   FILE:LINE:COL: error: text [code]
///     the line of the text
///       ^~~~
///
/// and its related places as notes.
void writeText(const SourceText& source, const CheckReport& report, std::FILE* out);

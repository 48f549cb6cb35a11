// The report as a person reads it.
#pragma once

#include <cstdio>

#include "check/report.h"

/// What is shown, and how.
struct TextStyle {
  bool hasColours = false;      ///< for a terminal
  bool showsAllowed = false;    ///< also what a comment of the text allows
  bool showsUndecided = false;  ///< each undecided question; else only how many there are
};

/// Writes each finding of a text as
///
///   FILE:LINE:COL: error: text [code]
///   the line of the text
///         ^~~~
///
/// and behind it, as notes, its related places, its proposal, the situation that shows it and the
/// variant that has it. Lines and columns count from 1, columns in bytes. What a terminal cannot
/// show of the text is replaced. Nothing is written where nothing was found. A failed write is left
/// to the caller to ask of `out`.
void writeText(const FileReport& file, const TextStyle& style, std::FILE* out);

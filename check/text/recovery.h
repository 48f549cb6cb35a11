// Recovery: where the reading of a text goes on after a fault.
#pragma once

#include <cstddef>

#include "check/text/text_scan.h"
#include "deflang/text/reading_observer.h"

/// A place where the reading can go on, and what is there.
struct ResumePoint {
  Resumption what = RESUME_NOWHERE;  ///< RESUME_STATEMENT or RESUME_DEFINITION
  size_t at = 0;                     ///< the byte of the text
};

/// Whether `part`, the one before what `scan` gives next, begins a statement: a keyword with an
/// opening sign behind it.
bool beginsStatement(const TextPart& part, const TextScan& scan);

/// Whether `part`, the one before what `scan` gives next, begins a definition: a name, an access
/// word and an opening brace.
bool beginsDefinition(const TextPart& part, const TextScan& scan);

/// The place behind the statement whose keyword or opening sign `scan` gives next; where its own
/// closing sign is missing, the next statement, the next definition, or the closing brace of the
/// definition. The end of the text counts as a definition.
ResumePoint behindStatement(TextScan scan);

/// The next place at which a statement or a definition begins or the open definition ends.
ResumePoint nextStatement(TextScan scan);

/// The next place at which a definition begins.
ResumePoint nextDefinition(TextScan scan);

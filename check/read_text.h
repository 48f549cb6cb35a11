// Reading a text to the end, whatever is wrong with it.
#pragma once

#include "check/findings.h"
#include "check/source_text.h"
#include "check/text_layout.h"
#include "deflang/text/definition_text.h"

/// A text as the engine has read it.
struct ReadText {
  DefinitionText definitions;
  TextLayout layout;
  /// Whether something was wrong: what is missing in the records may be what was not understood.
  bool isBroken = false;
};

/// Reads `source` by the engine's grammar. What is wrong goes to `findings`, with its cause; the
/// reading then goes on with the next statement or definition. `source` has to outlive the result.
void readText(const SourceText& source, ReadText& text, Findings& findings);

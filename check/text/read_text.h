// Reading a text to the end, whatever is wrong with it.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "check/text/findings.h"
#include "check/text/source_text.h"
#include "check/text/text_layout.h"
#include "deflang/text/definition_text.h"

/// A text as the engine has read it.
struct ReadText {
  DefinitionText definitions;
  TextLayout layout;
  /// Whether something was wrong: what is missing in the records may be what was not understood.
  bool isBroken = false;
  /// The definitions of which something was not understood.
  std::set<const ParameterRecord*> brokenRecords;
  /// Words outside of definitions that were not understood; they may have been meant to be names.
  std::set<std::string, std::less<>> strayWords;
  /// The bytes at which the end of a piece cuts a word in two, of which nothing else is said.
  std::set<size_t> cuts;
  /// Lines with a NUL byte, of which nothing else is said.
  std::set<uint32_t> linesWithNul;

  /// Whether what is wrong with the use of a name may only follow from a fault of reading.
  [[nodiscard]] bool isDoubtful(std::string_view baseName) const;
};

/// Reads `source` by the engine's grammar. What is wrong goes to `findings`, with its cause; the
/// reading then goes on with the next statement or definition. `source` has to outlive the result.
/// Takes linear time. Where the daemon refuses to read a text, there is at least one error.
void readText(const SourceText& source, ReadText& text, Findings& findings);

// Descriptions: the comment lines that stand directly before a definition.
//
//   # ---- Picture ----          begins a section
//
//   # The gain of the picture.   describes what follows
//   # 1000 is unity.
//   gain rw { ... }
#pragma once

#include <map>
#include <string>
#include <vector>

#include "check/text/source_text.h"
#include "check/text/text_layout.h"

/// What the comments say of one name.
struct Description {
  /// Each of one line or of several joined by blanks; an empty comment line parts them. A name that
  /// is defined twice has those of both places.
  std::vector<std::string> paragraphs;
  /// The title of the section in which it is first defined: of the last line above it of the form
  /// `# ---- TITLE ----`, with two or more of one of - = * # ~ at least before it. Empty before the
  /// first section.
  std::string section;
};

/// The descriptions of all records of `layout`. A comment of the form `# check: ...` is for the
/// checker, and a line of signs only is an ornament; neither is part of a description.
std::map<const ParameterRecord*, Description> describe(const SourceText& source,
                                                       const TextLayout& layout);

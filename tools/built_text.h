// A definition text that a tool needs built.
#pragma once

#include <memory>
#include <string>

#include "check/text/read_text.h"
#include "check/text/source_text.h"
#include "check/text/variant.h"

/// A text under one choice of constants, as the engine has it.
struct BuiltText {
  std::unique_ptr<SourceText> source;
  ReadText text;
  Variant variant;
};

/// Reads and builds `text`, which is called `name`. Returns null where the daemon would refuse it,
/// after a report of what is wrong on standard error. Raises std::bad_alloc where memory is
/// exhausted.
std::unique_ptr<BuiltText> buildText(const std::string& name, std::string text,
                                     NamedValues constants);

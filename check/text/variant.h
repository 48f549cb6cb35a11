// Variants: one text under one choice of command-line constants, built by the engine.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "check/text/findings.h"
#include "check/text/read_text.h"
#include "database/database.h"

/// The constants of the command line: for each name its values, in the order given.
using ConstantChoices = std::vector<std::pair<std::string, std::vector<std::string>>>;

/// All combinations of the values, the first name varying slowest; one without constants where
/// there are no choices.
std::vector<NamedValues> variantsOf(const ConstantChoices& choices);

/// A text built under one choice.
struct Variant {
  NamedValues constants;
  std::unique_ptr<Database> database;
  /// Whether the engine built it without an error, so that its definitions can be asked.
  bool isBuilt = false;
};

/// Builds `text` by the engine's builder. All that it reports goes to `findings`, with the cause.
Variant buildVariant(const SourceText& source, const ReadText& text, NamedValues constants,
                     Findings& findings);

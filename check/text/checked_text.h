// What every check is given: a text as written, as read, and as built under one choice of
// constants.
#pragma once

#include "check/text/variant.h"

/// One text in one variant, which the engine has built without an error. All of it outlives the
/// checks. They leave the values of the parameters as they find them: never set.
struct CheckedText {
  const SourceText& source;
  const ReadText& text;
  const ConstantChoices& choices;
  const Variant& variant;

  [[nodiscard]] Database& database() const { return *variant.database; }
};

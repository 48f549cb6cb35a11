// Partial variants: of a text that the engine does not build, the definitions that have nothing to
// do with what is wrong.
#pragma once

#include <optional>

#include "check/text/variant.h"

/// Builds the definitions of `text` in which nothing is wrong and which name none in which
/// something is, directly or through others. What holds of them in the whole text holds here,
/// unless it depends on who names them. No value where nothing can be said to be right: where
/// nothing is left, or where bytes were not read as they are.
std::optional<Variant> buildPartly(const SourceText& source, const ReadText& text,
                                   const NamedValues& constants);

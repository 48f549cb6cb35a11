// Bare words: texts without quotes, and names without parentheses, where items or values belong.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/text/fault_view.h"

/// The bare words from the byte `from` on, where there is one, up to what ends the statement or is
/// no word, text, number or sign between them. Of a word before an arrow its part before it.
/// `areNames` tells whether they may be names, too.
std::vector<BareWord> bareWordsFrom(const FaultView& view, size_t from, bool areNames);

/// What is said about `words`, which are not empty. `nameOf` gives, for a word, the name that it
/// is or is meant to be in an expression.
Finding findingOfBareWords(
    const SourceText& source, const std::vector<BareWord>& words,
    const std::function<std::optional<std::string>(std::string_view)>& nameOf);

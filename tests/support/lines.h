// Lines for tests: those of a list, as a cursor pulls them.
#pragma once

#include <cstddef>
#include <string_view>

#include "deflang/text/text_cursor.h"

/// The elements of a list of texts, which lives as long as they are asked for.
template <typename Texts>
TextCursor::NextLine pulledFrom(const Texts& texts) {
  return [&texts, next = size_t{0}](std::string_view& line) mutable {
    if (next == texts.size()) return false;
    line = texts[next++];
    return true;
  };
}

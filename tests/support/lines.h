// Lines for tests and fuzz targets: the elements of a list, as a cursor pulls them.
#pragma once

#include <cstddef>
#include <string_view>

#include "deflang/text/text_cursor.h"

/// Gives the elements of `texts`, one for each call, as the lines of a definition text. `texts` has
/// to outlive the function that is returned. In a template, so that a list of strings and one of
/// views will do.
template <typename Texts>
TextCursor::NextLine pulledFrom(const Texts& texts) {
  return [&texts, next = size_t{0}](std::string_view& line) mutable {
    if (next == texts.size()) return false;
    line = texts[next++];
    return true;
  };
}

// Short texts: the start of a text that is too long for its place.
#pragma once

#include <cstddef>
#include <string>

/// `text`, which is valid UTF-8, or where it has more than `most` characters, its start with a sign
/// that more follows: `most` characters in all. `most` is at least 1.
std::string shortened(const std::string& text, size_t most);

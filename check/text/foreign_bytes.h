// Foreign bytes: files that are no text, or none in UTF-8.
#pragma once

#include <string>
#include <string_view>

/// What a file with the bytes `bytes` is, where it is no text that could be read: one in 16 bits
/// for each character, or none at all. Empty where it may be a text.
std::string kindOfForeignBytes(std::string_view bytes);

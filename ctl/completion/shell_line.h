// Lines of a shell that are still being typed: their words, and what completes the last one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

/// A line up to the cursor.
struct ShellLine {
  std::vector<std::string> words;  ///< without their quotes; the last is empty behind a blank
  size_t begin = 0;                ///< of the last word, in the line
  char quote = '\0';               ///< that is open at the end: ' or ", or none
};

/// Splits a line as a shell does. Expansions stay as they are.
ShellLine shellLine(std::string_view line);

/// What a shell has to put in the place of `replaced`, the end of the typed word `typed`, so that
/// the whole means `word`; both are as they were typed, quotes and all. Empty where what stays does
/// not begin the word.
std::string shellReply(const std::string& word, std::string_view typed, std::string_view replaced);

// Quotes: how texts that may hold any character are written, so that they can be told from what
// stands around them.
//
// What begins with a double quote is quoted, and everything else is as it is. Within quotes
// \" \\ \n \r \t are as in C, and \xHH is a byte of a character that cannot be printed.
#pragma once

#include <string>
#include <string_view>

/// `text` where it is the rest of a line: quoted where it has characters that cannot be printed, or
/// begins with a quote, or begins or ends with a blank.
std::string quotedLine(std::string_view text);

/// `text` among other words: quoted also where it is empty, or has a blank or one of " \ , ; ( ).
std::string quotedWord(std::string_view text);

/// name=value as a line. The name is quoted where its end would not be found.
std::string quotedAssignment(std::string_view name, std::string_view value);

/// `text` that has quotes of its own, as a statement has: as it is, but that what cannot be printed
/// is written as within quotes.
std::string printableText(std::string_view text);

/// `text` as an argument of a command line that is shown: what cannot be printed is in $'...',
/// which bash and zsh read.
std::string shellWord(const std::string& text);

/// `text` as an argument of a command that any shell is given.
std::string scriptWord(const std::string& text);

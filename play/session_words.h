// The words of a session's lines, and how texts are written as words.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A part of a word: a text, or a loop variable whose value belongs there.
struct WordPiece {
  std::string text;         ///< or the name of the variable
  bool isVariable = false;  ///< written $NAME or ${NAME}
  bool isQuoted = false;    ///< within quotes
};

/// A word of a line.
struct SessionWord {
  std::vector<WordPiece> pieces = {};
  size_t begin = 0;  ///< where it begins in the line, in bytes from 0
  size_t end = 0;    ///< behind its last byte

  /// Whether any of it is quoted.
  [[nodiscard]] bool isQuoted() const;
  /// Whether it holds a loop variable.
  [[nodiscard]] bool hasVariable() const;
  /// Its text; of a word with variables that without their values.
  [[nodiscard]] std::string text() const;
  /// Whether it is `sign`, all of it unquoted.
  [[nodiscard]] bool is(std::string_view sign) const;
  /// Whether it ends with a colon that is not quoted.
  [[nodiscard]] bool endsWithColon() const;
  /// Takes away the colon at its end.
  void dropColon();
};

/// What is wrong with a line.
struct WordError {
  size_t at = 0;     ///< where, in bytes from 0
  std::string text;  ///< a sentence
};

/// Takes `line`, which has no newline, apart into `words`, up to its end or to a comment. Blanks
/// and tabs separate words. A "#" at the start of a word begins a comment. Within quotes, blanks
/// and "#" belong to the word. A backslash, also outside quotes, is followed by one of
/// \ " # $ n t r, or by x and two hexadecimal digits. Returns what is wrong, if anything is: the
/// words before it are in `words`. Every word is valid UTF-8 without NUL bytes then.
std::optional<WordError> readSessionWords(std::string_view line, std::vector<SessionWord>& words);

/// `text` as a word, which readSessionWords() reads as that text: as it is, or quoted where it is
/// empty or has what would be read otherwise.
std::string spelledWord(std::string_view text);
/// `text` in quotes.
std::string quotedWord(std::string_view text);
/// A change "name=value" as a word: a value is quoted by itself, and not where it is empty.
std::string spelledChange(std::string_view change);

// Text cursor: a place in a definition text, and the reading of words and signs from there.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>

#include "base/arena.h"
#include "deflang/expression/token.h"
#include "deflang/text/parse_result.h"

/// White space as the C locale has it, whatever locale the program runs in: bytes from 0x80 up are
/// none.
constexpr bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The characters that end a word: those given, and white space.
class StopSet {
 public:
  constexpr explicit StopSet(std::string_view characters) {
    for (const char c : characters) stops_[static_cast<unsigned char>(c)] = true;
    for (unsigned char c = 0; c < 0x80; ++c) {
      if (isWhiteSpace(static_cast<char>(c))) stops_[c] = true;
    }
  }
  [[nodiscard]] constexpr bool contains(char c) const {
    return stops_[static_cast<unsigned char>(c)];
  }

 private:
  std::array<bool, 256> stops_{};
};

/// Pulls the lines of the text as it comes to them, and passes over those of comments. What reads
/// from it returns false as soon as there is nothing more to read: the text has ended, or something
/// is wrong, which result() tells. The cursor is then at the character where the failing step
/// started, or at the first one of a bare number that does not convert, for the caret.
class TextCursor {
 public:
  /// Gives the next line of the text, which is valid until the one after it is asked for; false
  /// where there is none.
  using NextLine = std::function<bool(std::string_view& line)>;

  /// Before the first line, which is line 1. What is read is kept in `arena`.
  TextCursor(NextLine nextLine, Arena& arena) : nextLine_(std::move(nextLine)), arena_(arena) {}

  /// PARSE_DONE until something is wrong; also where the text ends in the middle of a definition.
  [[nodiscard]] ParseResult result() const { return result_; }
  [[nodiscard]] Position position() const { return {number_, static_cast<uint32_t>(column_)}; }
  [[nodiscard]] std::string_view line() const { return line_; }
  [[nodiscard]] Arena& arena() const { return arena_; }
  /// What has not been read yet of the line.
  [[nodiscard]] std::string_view rest() const { return line_.substr(column_); }
  /// Whether `sign` comes next.
  [[nodiscard]] bool at(std::string_view sign) const { return rest().starts_with(sign); }
  /// The characters before the next stop or the end of the line; they stay unread.
  [[nodiscard]] std::string_view word(const StopSet& stops) const {
    size_t end = column_;
    while (end < line_.size() && !stops.contains(line_[end])) ++end;
    return line_.substr(column_, end - column_);
  }

  /// Goes on by `count` characters of the rest of the line.
  void advance(size_t count) { column_ += count; }
  /// Goes past `sign`. Returns false, without going on, when it does not come next.
  bool take(std::string_view sign) {
    if (!at(sign)) return false;
    advance(sign.size());
    return true;
  }
  /// Goes to the beginning of the next line. Returns false where the text ends, and for a line with
  /// a NUL.
  bool pullLine();
  /// Goes to the next character that is no white space. Returns false as pullLine() does.
  bool skipWhiteSpace() {
    do {
      while (column_ < line_.size() && isWhiteSpace(line_[column_])) ++column_;
    } while (column_ == line_.size() && pullLine());
    return column_ < line_.size() && result_ == PARSE_DONE;
  }
  /// Goes past `sign` and the white space before it. Something else there is a syntax error.
  bool expect(std::string_view sign) {
    return skipWhiteSpace() && (take(sign) || fail(PARSE_SYNTAX_ERROR));
  }
  /// Ends the reading here. Returns false.
  bool fail(ParseResult result) {
    result_ = result;
    return false;
  }
  /// Ends the reading at `at`, or at the first word of the line where `at` is on an earlier one.
  bool failAt(Position at, ParseResult result);

 private:
  NextLine nextLine_;
  Arena& arena_;
  std::string_view line_;
  uint32_t number_ = 0;
  size_t column_ = 0;
  ParseResult result_ = PARSE_DONE;
};

/// Where the first character of `line` that is no white space is; its length where there is none.
size_t firstWord(std::string_view line);

/// The lines of a text that is there as a whole, and that lives as long as they are asked for.
TextCursor::NextLine linesIn(std::string_view text);

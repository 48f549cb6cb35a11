// Text cursor: a place in a definition text, and the reading of words and signs from there.
//
// How a reading function uses it, for the list "{ left, right }":
//
//   if (!cursor.expect("{")) return false;
//   do {
//     if (!cursor.skipWhiteSpace()) return false;
//     const std::string_view name = cursor.word(STOPS);   // constexpr StopSet STOPS(",}")
//     names.push_back(cursor.arena().keepText(name));     // a view is valid for this line only
//     cursor.advance(name.size());
//     if (!cursor.skipWhiteSpace()) return false;
//   } while (cursor.take(","));
//   return cursor.expect("}");
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/arena.h"
#include "deflang/expression/token.h"
#include "deflang/text/parse_result.h"

/// Whether `c` is white space of the C locale (blank, \t, \n, \v, \f, \r), whatever locale the
/// program runs in. Bytes from 0x80 up are not.
constexpr bool isWhiteSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

/// The characters that end a word: those given, and white space. A table with an entry for each
/// byte, made when the program is compiled.
class StopSet {
 public:
  /// A word ends at each of `characters`, and at white space.
  constexpr explicit StopSet(std::string_view characters) {
    for (const char c : characters) stops_[static_cast<unsigned char>(c)] = true;
    for (unsigned char c = 0; c < 0x80; ++c) {
      if (isWhiteSpace(static_cast<char>(c))) stops_[c] = true;
    }
  }
  /// Whether `c` ends a word.
  [[nodiscard]] constexpr bool contains(char c) const {
    return stops_[static_cast<unsigned char>(c)];
  }

 private:
  std::array<bool, 256> stops_{};
};

/// Pulls each line of the text when it comes to it, and passes over lines that are comments. A
/// function that reads from it returns false when there is no more to read: either the text has
/// ended, with result() still PARSE_DONE, or something is wrong and result() says what. After an
/// error the cursor is at the character for the caret: where the failing step started, or the first
/// character of a bare number that belongs to no number. Nothing is read after that.
///
/// Every view of the line is valid until the next line is pulled. What outlives it has to be kept
/// in arena(). Exhausted memory raises std::bad_alloc.
class TextCursor {
 public:
  /// Gives the next line of the text, with its newline if it has one; returns false where the text
  /// has ended, also when asked again. The line has to be valid until the next call. A long line
  /// may come in pieces without newlines: each piece counts as a line, and its end ends a word.
  using NextLine = std::function<bool(std::string_view& line)>;

  /// A cursor before the first line, which is line 1. `arena` has to outlive the cursor and what
  /// is read.
  TextCursor(NextLine nextLine, Arena& arena) : nextLine_(std::move(nextLine)), arena_(arena) {}

  /// PARSE_DONE until something is wrong; also where the text ends in the middle of a definition.
  [[nodiscard]] ParseResult result() const { return result_; }
  /// The line, from 1 (0 before the first), and the byte in it, from 0. At the end of the text:
  /// the last line's number, and 0.
  [[nodiscard]] Position position() const {
    return {start_.line, start_.column + static_cast<uint32_t>(column_)};
  }
  /// The whole line, for reports; empty before the first line and at the end of the text.
  [[nodiscard]] std::string_view line() const { return line_; }
  /// Where a reading function keeps what it has read.
  [[nodiscard]] Arena& arena() const { return arena_; }
  /// What has not been read yet of the line.
  [[nodiscard]] std::string_view rest() const { return line_.substr(column_); }
  /// Whether `sign` comes next, all of it on this line. White space is not skipped.
  [[nodiscard]] bool at(std::string_view sign) const { return rest().starts_with(sign); }
  /// The characters before the next stop or the end of the line; empty where a stop comes next.
  /// They stay unread.
  [[nodiscard]] std::string_view word(const StopSet& stops) const {
    size_t end = column_;
    while (end < line_.size() && !stops.contains(line_[end])) ++end;
    return line_.substr(column_, end - column_);
  }

  /// Goes on by `count` bytes, which is at most the size of rest().
  void advance(size_t count) { column_ += count; }
  /// Goes past `sign`. Returns false when it does not come next; the cursor then stays, and that
  /// is no error.
  bool take(std::string_view sign) {
    if (!at(sign)) return false;
    advance(sign.size());
    return true;
  }
  /// To be called by `nextLine` itself: the line that it gives now is at `start`, and not one below
  /// the last. For whoever gives long lines in pieces but wants places in the whole lines, or who
  /// gives a line again. Positions and the numbers of the lines behind it follow.
  void startLineAt(Position start) { start_ = start; }
  /// Goes to the beginning of the next line that is no comment. Returns false where the text ends,
  /// and for a line with a NUL byte, which is a syntax error at that byte.
  bool pullLine();
  /// Goes to the next character that is no white space, on this line or a later one. Returns false
  /// as pullLine() does.
  bool skipWhiteSpace() {
    const size_t begin = column_;
    while (column_ < line_.size() && isWhiteSpace(line_[column_])) ++column_;
    const bool isBlank = column_ == begin + 1 && line_[begin] == ' ';
    const bool isExcerpt = column_ == begin || isBlank;
    return column_ < line_.size() && isExcerpt ? result_ == PARSE_DONE : skipFrom(begin);
  }
  /// Goes past `sign` and the white space before it. Returns false where the text ends, and where
  /// something else comes next, which is a syntax error.
  bool expect(std::string_view sign) {
    return skipWhiteSpace() && (take(sign) || fail(PARSE_SYNTAX_ERROR));
  }
  /// Begins an excerpt of what is read from here on.
  void beginExcerpt() {
    excerpt_.clear();
    excerptFrom_ = column_;
    isExcerpting_ = true;
  }
  /// Ends it here. It is the text as it is written, but that white space between words is one
  /// blank, and that comments are left out, and the line ends within a quoted text. Valid until the
  /// next line is pulled and the next excerpt begins.
  [[nodiscard]] std::string_view endExcerpt();
  /// Ends the reading with an error here. Returns false, so that a reading function can end with
  /// `return cursor.fail(...)`.
  bool fail(ParseResult result) {
    result_ = result;
    return false;
  }
  /// Ends the reading with an error at `at`; where that is on an earlier line, at the first word of
  /// this one, because only this line can be shown. Returns false.
  bool failAt(Position at, ParseResult result);
  /// Takes an error back, for a caller that knows where to go on. The cursor stays where it is.
  void recover() { result_ = PARSE_DONE; }

 private:
  bool skipFrom(size_t begin);
  void cutExcerpt(size_t end);

  NextLine nextLine_;
  Arena& arena_;
  std::string_view line_;
  Position start_;   // of line_
  size_t word_ = 0;  // the first of line_
  size_t column_ = 0;
  ParseResult result_ = PARSE_DONE;
  std::string excerpt_;  // without what is on this line from excerptFrom_ on
  size_t excerptFrom_ = 0;
  bool isExcerpting_ = false;
};

/// The byte offset of the first character of `line` that is no white space; the length of `line`
/// where there is no such character.
size_t firstWord(std::string_view line);

/// `text` without the white space at its ends.
std::string_view trimmed(std::string_view text);

/// Gives the lines of `text`, each with its newline but perhaps the last. `text` has to outlive the
/// function that is returned. For callers that have all of a text: tests, benchmarks, fuzz targets.
TextCursor::NextLine linesIn(std::string_view text);

/// Gives the pieces of `text` as the daemon reads them, without the byte order mark in front.
/// `text` has to outlive the function that is returned.
TextCursor::NextLine piecesIn(std::string_view text);

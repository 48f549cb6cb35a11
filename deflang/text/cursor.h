// Cursor: a place in one line of definition text, and the reading of words and signs from there.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/record_memory.h"
#include "deflang/expression/token.h"
#include "deflang/text/parse_result.h"
#include "deflang/text/text_cursor.h"

/// Lives as long as the line that it reads. After a failed step it stands at the character at which
/// that step started, or at the first one of a bare number that did not convert, for the caret.
class Cursor {
 public:
  /// At the start of `line`, which is line `number` (from 1) of its text. What is read from it is
  /// kept in `memory`.
  Cursor(std::string_view line, uint32_t number, RecordMemory& memory)
      : line_(line), number_(number), memory_(memory) {}

  [[nodiscard]] size_t column() const { return column_; }
  [[nodiscard]] Position position() const { return {number_, static_cast<uint32_t>(column_)}; }
  [[nodiscard]] std::string_view line() const { return line_; }
  [[nodiscard]] RecordMemory& memory() const { return memory_; }
  /// What has not been read yet.
  [[nodiscard]] std::string_view rest() const { return line_.substr(column_); }
  [[nodiscard]] bool atEnd() const { return column_ == line_.size(); }
  /// Whether `sign` comes next.
  [[nodiscard]] bool at(std::string_view sign) const { return rest().starts_with(sign); }
  /// The characters before the next stop or the end of the line; they stay unread.
  [[nodiscard]] std::string_view word(const StopSet& stops) const {
    size_t end = column_;
    while (end < line_.size() && !stops.contains(line_[end])) ++end;
    return line_.substr(column_, end - column_);
  }

  /// Goes on by `count` characters of the rest.
  void advance(size_t count) { column_ += count; }
  /// Goes to `column`, from 0 to the line's length.
  void moveTo(size_t column) { column_ = column; }
  /// Goes on to the next character that is no white space. Returns false when the line ends first.
  bool skipWhiteSpace() {
    while (!atEnd() && isWhiteSpace(line_[column_])) ++column_;
    return !atEnd();
  }
  /// Goes past `sign`. Returns false, without going on, when it does not come next.
  bool take(std::string_view sign) {
    if (!at(sign)) return false;
    advance(sign.size());
    return true;
  }
  /// Goes past `sign` and the white space before it. Returns PARSE_DONE, PARSE_CONTINUES when the
  /// line ends before it, or PARSE_SYNTAX_ERROR when something else stands there.
  int expect(std::string_view sign) {
    if (!skipWhiteSpace()) return PARSE_CONTINUES;
    return take(sign) ? PARSE_DONE : PARSE_SYNTAX_ERROR;
  }

 private:
  std::string_view line_;
  uint32_t number_;
  RecordMemory& memory_;
  size_t column_ = 0;
};

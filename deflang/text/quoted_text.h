// Quoted text: a text between two signs, which may go on over any number of lines.
#pragma once

#include <string>
#include <string_view>

#include "deflang/text/cursor.h"

/// Everything between the signs belongs to the text as it stands, but for the newline at the end of
/// a line on which the text goes on.
class QuotedText {
 public:
  QuotedText() = default;
  QuotedText(char opening, char closing) : opening_(opening), closing_(closing) {}

  /// Goes past the opening sign. Returns false, without going on, when it does not come next.
  bool open(Cursor& cursor);
  /// Whether the closing sign is still to come. White space then belongs to the text.
  [[nodiscard]] bool isOpen() const { return open_; }
  /// Reads an open text. Returns PARSE_DONE after the closing sign, PARSE_CONTINUES when the line
  /// ends before it, and PARSE_SYNTAX_ERROR, without going on, for more than MAX_VALUE_BYTES.
  int read(Cursor& cursor);
  /// Hands over the text that was read.
  std::string_view take();
  void reset();

 private:
  char opening_ = '"';
  char closing_ = '"';
  bool open_ = false;
  std::string earlier_;  // what stands on earlier lines
  std::string_view text_;
};

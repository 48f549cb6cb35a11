// Text scan: the words, signs and quoted texts of a text from any place on, whatever is wrong with
// it.
//
// The grammar stops at a fault and says no more than where. The scan finds what is around it: the
// quote that is open, the parenthesis without a partner, the next statement.
#pragma once

#include <string_view>

#include "check/text/source_text.h"

enum TextPartKind {
  PART_WORD,    ///< what is between white space, signs and quotes
  PART_SIGN,    ///< one of ( ) { } ,
  PART_QUOTED,  ///< a quoted text, with its quotes
  /// A quote that most likely misses its partner, and the rest of its line up to the signs that
  /// close the statement.
  PART_OPEN_QUOTE,
  /// From a "#", "//" or "/*" behind code to the end of the line, or to a "*/" on it.
  PART_COMMENT,
  PART_END,  ///< the end of the text
};

/// One part of a text.
struct TextPart {
  TextPartKind kind = PART_END;
  size_t at = 0;          ///< the byte of the text
  std::string_view text;  ///< a view of the text
  /// Whether nothing but white space is before it on its line.
  bool isFirstOnLine = false;

  [[nodiscard]] size_t end() const { return at + text.size(); }
  [[nodiscard]] bool isSign(char sign) const { return kind == PART_SIGN && text.front() == sign; }
};

/// Gives the parts in their order, in linear time for all of them. Lines that are comments are
/// passed over, and pieces are lines, as the daemon sees them.
class TextScan {
 public:
  /// From the byte `from` of `text`, whose lines are those of `source`; both have to outlive it.
  TextScan(const SourceText& source, std::string_view text, size_t from);
  /// The next part; PART_END again and again behind the last one.
  TextPart next();
  /// The part that next() will give.
  [[nodiscard]] TextPart peek() const;

 private:
  void enterPieces(size_t start);
  bool skipWhiteSpace();
  TextPart take(TextPartKind kind, size_t size);
  TextPart takeQuoted();

  std::string_view text_;
  size_t at_;
  size_t pieceEnd_ = 0;
  bool isFirst_ = false;  // nothing of the line has been given yet
};

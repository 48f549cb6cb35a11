#include "deflang/text/text_cursor.h"

#include <algorithm>
#include <utility>

#include "deflang/text/text_pieces.h"

namespace {

bool isComment(std::string_view line) { return line.substr(firstWord(line)).starts_with('#'); }

}  // namespace

bool TextCursor::pullLine() {
  do {
    column_ = 0;
    const Position last = std::exchange(start_, {start_.line + 1, 0});
    if (!nextLine_(line_)) {
      line_ = {};
      start_ = {last.line, 0};
      return false;
    }
  } while (isComment(line_));
  const size_t nul = line_.find('\0');
  if (nul == std::string_view::npos) return true;
  column_ = nul;
  return fail(PARSE_SYNTAX_ERROR);
}

bool TextCursor::failAt(Position at, ParseResult result) {
  const bool isHere = at.line == start_.line && at.column >= start_.column;
  column_ = isHere ? at.column - start_.column : firstWord(line_);
  return fail(result);
}

size_t firstWord(std::string_view line) {
  return static_cast<size_t>(std::find_if_not(line.begin(), line.end(), isWhiteSpace) -
                             line.begin());
}

TextCursor::NextLine linesIn(std::string_view text) {
  return [text](std::string_view& line) mutable {
    const size_t newline = text.find('\n');
    line = text.substr(0, newline == std::string_view::npos ? newline : newline + 1);
    text.remove_prefix(line.size());
    return !line.empty();
  };
}

TextCursor::NextLine piecesIn(std::string_view text) {
  if (text.starts_with(BYTE_ORDER_MARK)) text.remove_prefix(BYTE_ORDER_MARK.size());
  return [text](std::string_view& line) mutable {
    line = firstPiece(text);
    text.remove_prefix(line.size());
    return !line.empty();
  };
}

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && isWhiteSpace(text.back())) text.remove_suffix(1);
  return text.substr(firstWord(text));
}

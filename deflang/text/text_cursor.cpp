#include "deflang/text/text_cursor.h"

#include <utility>

#include "deflang/text/text_pieces.h"

bool TextCursor::pullLine() {
  cutExcerpt(line_.ends_with('\n') ? line_.size() - 1 : line_.size());
  excerptFrom_ = 0;
  do {
    column_ = 0;
    const Position last = std::exchange(start_, {start_.line + 1, 0});
    if (!nextLine_(line_)) {
      line_ = {};
      start_ = {last.line, 0};
      return false;
    }
    word_ = firstWord(line_);
  } while (word_ < line_.size() && line_[word_] == '#');
  const size_t nul = line_.find('\0');
  if (nul == std::string_view::npos) return true;
  column_ = nul;
  return fail(PARSE_SYNTAX_ERROR);
}

// As skipWhiteSpace(), which has gone on from `begin` to the end of the white space on the line.
bool TextCursor::skipFrom(size_t begin) {
  cutExcerpt(begin);
  excerptFrom_ = line_.size();
  bool isSkipped = column_ > begin;
  while (column_ == line_.size() && pullLine()) {
    column_ = word_;
    excerptFrom_ = column_;  // nothing of a blank line
    isSkipped = isSkipped || column_ > 0;
  }
  // Where one piece of a long line ends and the next begins there is no white space.
  if (isSkipped && isExcerpting_) excerpt_ += ' ';
  excerptFrom_ = column_;
  return column_ < line_.size() && result_ == PARSE_DONE;
}

// Takes what is on this line before `end` into the excerpt.
void TextCursor::cutExcerpt(size_t end) {
  if (!isExcerpting_ || end <= excerptFrom_) return;
  excerpt_ += line_.substr(excerptFrom_, end - excerptFrom_);
}

std::string_view TextCursor::endExcerpt() {
  isExcerpting_ = false;
  const std::string_view last = line_.substr(excerptFrom_, column_ - excerptFrom_);
  return excerpt_.empty() ? last : excerpt_ += last;
}

bool TextCursor::failAt(Position at, ParseResult result) {
  const bool isHere = at.line == start_.line && at.column >= start_.column;
  column_ = isHere ? at.column - start_.column : word_;
  return fail(result);
}

size_t firstWord(std::string_view line) {
  size_t first = 0;
  while (first < line.size() && isWhiteSpace(line[first])) ++first;
  return first;
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

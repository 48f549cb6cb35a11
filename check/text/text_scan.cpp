#include "check/text/text_scan.h"

#include <algorithm>

#include "deflang/text/text_cursor.h"
#include "deflang/text/text_pieces.h"

namespace {

constexpr std::string_view SIGNS = "(){},";
constexpr StopSet WORD_STOPS("(){},\"");

bool isComment(std::string_view piece) { return piece.substr(firstWord(piece)).starts_with('#'); }

bool startsComment(std::string_view rest) {
  return rest.starts_with('#') || rest.starts_with("//") || rest.starts_with("/*");
}

}  // namespace

TextScan::TextScan(const SourceText& source, std::string_view text, size_t from)
    : text_(text), at_(from) {
  const size_t column = source.positionOf(from).column;
  const size_t start = from - column % MAX_PIECE_LENGTH;
  pieceEnd_ = start + firstPiece(text_.substr(start)).size();
  const std::string_view before = text_.substr(from - column, column);
  isFirst_ = firstWord(before) == before.size();
  if (column == 0) enterPieces(from);
}

// Goes to the first piece from `start` on that is no comment.
void TextScan::enterPieces(size_t start) {
  at_ = start;
  for (;;) {
    const std::string_view piece = firstPiece(text_.substr(at_));
    pieceEnd_ = at_ + piece.size();
    if (piece.empty() || !isComment(piece)) break;
    at_ = pieceEnd_;
  }
  isFirst_ = at_ == 0 || text_[at_ - 1] == '\n';
}

bool TextScan::skipWhiteSpace() {
  for (;;) {
    while (at_ < pieceEnd_ && isWhiteSpace(text_[at_])) ++at_;
    if (at_ < pieceEnd_) return true;
    if (at_ >= text_.size()) return false;
    enterPieces(pieceEnd_);
  }
}

TextPart TextScan::take(TextPartKind kind, size_t size) {
  const TextPart part = {kind, at_, text_.substr(at_, size), isFirst_};
  isFirst_ = false;
  at_ += size;
  return part;
}

TextPart TextScan::next() {
  if (!skipWhiteSpace()) return {PART_END, text_.size(), {}, false};
  const std::string_view rest = text_.substr(at_, pieceEnd_ - at_);
  if (rest.front() == '"') return takeQuoted();
  if (SIGNS.find(rest.front()) != std::string_view::npos) return take(PART_SIGN, 1);
  const size_t blockEnd = rest.starts_with("/*") ? rest.find("*/", 2) : std::string_view::npos;
  if (blockEnd != std::string_view::npos) return take(PART_COMMENT, blockEnd + 2);
  if (startsComment(rest)) {
    return take(PART_COMMENT, rest.ends_with('\n') ? rest.size() - 1 : rest.size());
  }
  size_t size = 0;
  while (size < rest.size() && !WORD_STOPS.contains(rest[size])) ++size;
  return take(PART_WORD, size);
}

// A text may go on over lines. With a brace in it, it is rather the next lines that were swallowed.
TextPart TextScan::takeQuoted() {
  const std::string_view rest = text_.substr(at_, pieceEnd_ - at_);
  const size_t end = rest.find('"', 1);
  if (end != std::string_view::npos) return take(PART_QUOTED, end + 1);
  TextScan ahead = *this;
  bool hasBraces = rest.find_first_of("{}") != std::string_view::npos;
  while (!hasBraces && ahead.pieceEnd_ < text_.size()) {
    ahead.enterPieces(ahead.pieceEnd_);
    const std::string_view line = text_.substr(ahead.at_, ahead.pieceEnd_ - ahead.at_);
    const size_t closing = line.find('"');
    hasBraces = line.substr(0, closing).find_first_of("{}") != std::string_view::npos;
    if (hasBraces || closing == std::string_view::npos) continue;
    TextPart part = take(PART_QUOTED, 0);
    const size_t after = ahead.at_ + closing + 1;
    part.text = text_.substr(part.at, after - part.at);
    pieceEnd_ = ahead.pieceEnd_;
    at_ = after;
    return part;
  }
  // What closes the statement, at the end of the line, is no part of the text.
  return take(PART_OPEN_QUOTE, rest.find_last_not_of(" \t\r\n})") + 1);
}

TextPart TextScan::peek() const {
  TextScan ahead = *this;
  return ahead.next();
}

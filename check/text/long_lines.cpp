#include "check/text/long_lines.h"

#include <string>

#include "deflang/text/text_cursor.h"
#include "deflang/text/text_pieces.h"

namespace {

bool isComment(std::string_view line) { return line.substr(firstWord(line)).starts_with('#'); }

// A line that ends with the text needs no room for a newline.
bool isLong(const SourceText& source, uint32_t number) {
  const bool isLast = number == source.lineCount() && !source.text().ends_with('\n');
  return source.line(number).size() + (isLast ? 0 : 1) > MAX_PIECE_LENGTH;
}

bool isCutWithin(std::string_view line, size_t cut) {
  constexpr StopSet signs("(){},\"");
  return cut < line.size() && !signs.contains(line[cut - 1]) && !signs.contains(line[cut]);
}

}  // namespace

bool LongLines::isToBlame(size_t at) {
  const Position place = source_.positionOf(at);
  if (!isLong(source_, place.line)) return false;
  const std::string_view line = source_.line(place.line);
  const size_t cut = (place.column + 1) / MAX_PIECE_LENGTH * MAX_PIECE_LENGTH;
  const size_t nextCut = (place.column / MAX_PIECE_LENGTH + 1) * MAX_PIECE_LENGTH;
  const bool isRest = place.column >= MAX_PIECE_LENGTH && isComment(line);
  const bool isBehindCut = cut > 0 && place.column == cut && isCutWithin(line, cut);
  const bool isBeforeCut =
      isCutWithin(line, nextCut) &&
      line.substr(place.column, nextCut - place.column).find_first_of(" \t(){},\"") ==
          std::string_view::npos;
  if (!isRest && !isBehindCut && !isBeforeCut) return false;
  blamed_.insert(place.line);
  return true;
}

void LongLines::report(Findings& findings) const {
  for (uint32_t number = 1; number <= source_.lineCount(); ++number) {
    if (!isLong(source_, number)) continue;
    const std::string_view line = source_.line(number);
    std::string text = "a line of " + std::to_string(line.size()) +
                       " bytes is read in pieces of 1024 bytes, each as a line of its own";
    if (isComment(line)) {
      text += ", and the rest of this comment as definitions";
    } else if (isCutWithin(line, MAX_PIECE_LENGTH)) {
      text += ", and a word or text is cut in two here";
    }
    Finding finding = {"long-line", {number, MAX_PIECE_LENGTH, 0}, text};
    if (blamed_.contains(number)) finding.level = LEVEL_ERROR;
    findings.add(std::move(finding));
  }
}

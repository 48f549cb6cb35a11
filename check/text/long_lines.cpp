#include "check/text/long_lines.h"

#include <algorithm>
#include <string>

#include "check/text/text_scan.h"
#include "deflang/expression/operators.h"
#include "deflang/text/text_cursor.h"
#include "deflang/text/text_pieces.h"

namespace {

bool isComment(std::string_view line) { return line.substr(firstWord(line)).starts_with('#'); }

// A line that ends with the text needs no room for a newline.
bool isLong(const SourceText& source, uint32_t number) {
  const bool isLast = number == source.lineCount() && !source.text().ends_with('\n');
  return source.line(number).size() + (isLast ? 0 : 1) > MAX_PIECE_LENGTH;
}

bool isOperatorSign(char c) { return operatorAt(std::string_view(&c, 1)).has_value() || c == '='; }

// Whether `before` and `behind`, with nothing between them, are one word of an expression or of
// anything else.
bool isOneWord(std::string_view before, std::string_view behind, bool isExpression) {
  const bool isSign = isOperatorSign(before.back());
  if (isExpression && isSign != isOperatorSign(behind.front())) return false;
  if (isExpression && isSign) {
    const std::string both = {before.back(), behind.front()};
    const std::optional<OperatorText> sign = operatorAt(both);
    return sign && sign->text.size() == both.size();
  }
  const auto isSeparator = [](std::string_view sign) { return sign == ".." || sign == "->"; };
  const size_t last = before.size() - std::min<size_t>(before.size(), 2);
  return !isSeparator(before.substr(last)) && !isSeparator(behind.substr(0, 2));
}

// Where the pieces of lines cut words.
std::set<size_t> cutsIn(const SourceText& source, std::string_view text) {
  std::set<size_t> cuts;
  TextScan scan(source, text, 0);
  size_t depth = 0;
  TextPart last;
  for (TextPart part = scan.next(); part.kind != PART_END; part = scan.next()) {
    if (part.isSign('(')) ++depth;
    if (part.isSign(')') && depth > 0) --depth;
    if (part.isSign('{') || part.isSign('}')) depth = 0;
    const bool areAdjacent =
        last.kind == PART_WORD && part.kind == PART_WORD && last.end() == part.at;
    if (areAdjacent && isOneWord(last.text, part.text, depth > 0)) cuts.insert(part.at);
    last = part;
  }
  return cuts;
}

}  // namespace

LongLines::LongLines(const SourceText& source, std::string_view text)
    : source_(source), text_(text) {
  for (uint32_t number = 1; number <= source.lineCount(); ++number) {
    if (isLong(source, number)) lines_.push_back(number);
  }
  if (!lines_.empty()) cuts_ = cutsIn(source, text);
}

// Whether the byte `at` is in a word with a cut at one of its ends.
bool LongLines::isAtCut(size_t at) const {
  if (cuts_.contains(at)) return true;
  const auto next = cuts_.upper_bound(at);
  return next != cuts_.end() &&
         text_.substr(at, *next - at).find_first_of(" \t\n(){},\"") == std::string_view::npos;
}

bool LongLines::isToBlame(size_t at) {
  const Position place = source_.positionOf(at);
  if (!std::ranges::binary_search(lines_, place.line)) return false;
  const bool isRest = place.column >= MAX_PIECE_LENGTH && isComment(source_.line(place.line));
  if (!isRest && !isAtCut(at)) return false;
  blamed_.insert(place.line);
  return true;
}

void LongLines::report(Findings& findings) const {
  for (const uint32_t number : lines_) {
    const size_t start = source_.offsetOf({number, 0});
    const std::string_view line = source_.line(number);
    std::string text = "a line of " + std::to_string(line.size()) +
                       " bytes is read in pieces of 1024 bytes, each as a line of its own";
    Finding finding = {"long-line", {number, MAX_PIECE_LENGTH, 0}, text};
    const auto cut = cuts_.lower_bound(start);
    const bool isCut = cut != cuts_.end() && *cut < start + line.size();
    if (isComment(line)) {
      finding.text += ", and the rest of this comment as definitions";
    } else if (isCut) {
      finding.text += ", and a word is cut in two here";
      finding.at.column = static_cast<uint32_t>(*cut - start);
    }
    // A word that is cut never fits.
    if (isCut || blamed_.contains(number)) finding.level = LEVEL_ERROR;
    findings.add(std::move(finding));
  }
}

#include "check/text/fault_view.h"

#include <algorithm>

#include "deflang/text/text_cursor.h"

std::string_view FaultView::lineFrom(size_t from) const {
  return text_.substr(from, text_.find('\n', from) - from);
}

TextPlace FaultView::place(size_t from, size_t length) const {
  const Position at = source_.positionOf(from);
  const auto lineSize = static_cast<uint32_t>(source_.line(at.line).size());
  return {at.line, std::min(at.column, lineSize),
          static_cast<uint32_t>(std::min(length, lineFrom(from).size()))};
}

TextPlace FaultView::placeOf(const TextPart& part) const {
  return place(part.at, part.text.size());
}

size_t FaultView::nextLine(size_t at) const {
  const size_t newline = text_.find('\n', at);
  return newline == std::string_view::npos ? text_.size() : newline + 1;
}

ReadingCause commentAfterCode(const FaultView& view, size_t at, ResumePoint next) {
  std::string_view comment = trimmed(view.lineFrom(at));
  if (comment.starts_with("/*")) {
    const size_t end = view.text().find("*/", at + 2);
    if (end != std::string_view::npos) comment = comment.substr(0, end + 2 - at);
    // The rest of a definition is not within the comment.
    const size_t behind = end == std::string_view::npos ? 0 : end + 2;
    next.at = std::max(next.at, behind);
  }
  const bool isOwnSign = comment.starts_with('#');
  return {{"comment-after-code", view.place(at, comment.size()),
           isOwnSign ? "a comment has to be on a line of its own"
                     : "a comment begins with \"#\" and has to be on a line of its own"},
          next};
}

namespace {

// The brace that most likely was meant to close the definition, though it closes its last
// statement: one that is under the name of the definition, where the statement began further in.
std::optional<RelatedPlace> closingBraceTakenByStatement(const FaultView& view) {
  const ReadingFault& fault = view.fault;
  if (fault.statementEnd == 0) return {};
  const TextPlace brace = view.place(fault.statementEnd - 1, 1);
  const TextPlace statement = view.place(fault.statementAt, 0);
  const TextPlace name = view.namePlace();
  const size_t lineStart = fault.statementEnd - 1 - brace.column;
  const std::string_view before = view.text().substr(lineStart, brace.column);
  const bool isAlone = firstWord(before) == before.size();
  if (!isAlone || brace.line == statement.line || brace.column > name.column ||
      statement.column <= name.column) {
    return {};
  }
  const std::string keyword(view.partAt(fault.statementAt).text);
  return RelatedPlace{brace, "this brace closes \"" + keyword + "\""};
}

}  // namespace

ReadingCause openDefinition(const FaultView& view, const TextPart& at) {
  const bool isEnd = at.kind == PART_END;
  Finding finding = {"open-definition", isEnd ? view.namePlace() : view.placeOf(at),
                     "the definition of " + quoted(view.name()) +
                         " is not closed: a \"}\" is missing " +
                         (isEnd ? "at the end of the text" : "before " + quoted(at.text))};
  if (!isEnd) finding.related.push_back({view.namePlace(), quoted(view.name()) + " begins here"});
  if (auto brace = closingBraceTakenByStatement(view)) finding.related.push_back(*std::move(brace));
  return {std::move(finding), {RESUME_DEFINITION, at.at}};
}

#include "check/text/recovery.h"

#include <algorithm>

#include "deflang/text/definition_grammar.h"

namespace {

bool isAmong(std::span<const std::string_view> words, const TextPart& part) {
  return part.kind == PART_WORD && std::ranges::find(words, part.text) != words.end();
}

// Follows the signs of one statement.
class StatementWalk {
 public:
  // Whether the statement is over with `part`.
  bool isOverWith(const TextPart& part) {
    if (part.isSign('(')) ++parentheses_;
    if (part.isSign(')') && parentheses_ > 0) --parentheses_;
    if (part.isSign('{')) ++braces_;
    if (part.isSign('}')) return --braces_ <= 0;
    return false;
  }
  [[nodiscard]] bool hasBrace() const { return braces_ > 0; }
  [[nodiscard]] bool isClosed() const { return parentheses_ == 0 && braces_ == 0; }

 private:
  int parentheses_ = 0;
  int braces_ = 0;
};

bool isControl(const TextPart& keyword) {
  return keyword.text == "ctrlRO" || keyword.text == "ctrlValid";
}

}  // namespace

bool beginsStatement(const TextPart& part, const TextScan& scan) {
  if (!isAmong(statementKeywords(), part)) return false;
  const TextPart next = scan.peek();
  return next.isSign('(') || next.isSign('{');
}

bool beginsDefinition(const TextPart& part, const TextScan& scan) {
  if (part.kind != PART_WORD) return false;
  TextScan ahead = scan;
  return isAmong(accessWords(), ahead.next()) && ahead.next().isSign('{');
}

ResumePoint behindStatement(TextScan scan) {
  StatementWalk walk;
  const TextPart keyword = scan.next();
  if (keyword.isSign('}')) return {RESUME_STATEMENT, keyword.at};
  walk.isOverWith(keyword);
  for (;;) {
    const TextPart part = scan.next();
    if (part.kind == PART_END) return {RESUME_DEFINITION, part.at};
    if (beginsDefinition(part, scan)) return {RESUME_DEFINITION, part.at};
    if (beginsStatement(part, scan)) return {RESUME_STATEMENT, part.at};
    if (part.isSign('}') && !walk.hasBrace()) return {RESUME_STATEMENT, part.at};
    if (walk.isOverWith(part)) return {RESUME_STATEMENT, part.end()};
    const bool isCondition = part.isSign(')') && isControl(keyword) && walk.isClosed();
    if (isCondition && !scan.peek().isSign('{')) return {RESUME_STATEMENT, part.end()};
  }
}

ResumePoint nextStatement(TextScan scan) {
  for (;;) {
    const TextPart part = scan.next();
    if (part.kind == PART_END || beginsDefinition(part, scan)) return {RESUME_DEFINITION, part.at};
    if (part.isSign('}') || beginsStatement(part, scan)) return {RESUME_STATEMENT, part.at};
  }
}

ResumePoint nextDefinition(TextScan scan) {
  for (;;) {
    const TextPart part = scan.next();
    if (part.kind == PART_END || beginsDefinition(part, scan)) return {RESUME_DEFINITION, part.at};
  }
}

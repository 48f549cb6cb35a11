#include "check/text/statement_causes.h"

#include <algorithm>
#include <array>
#include <vector>

#include "base/number.h"
#include "base/value_limit.h"
#include "check/text/bare_words.h"
#include "check/text/name_words.h"
#include "deflang/text/text_cursor.h"

namespace {

struct StatementForm {
  std::string_view keyword;
  std::string_view form;
  bool hasCondition;
  bool isList;
};

constexpr StatementForm FORMS[] = {
    {"rangeValid", "rangeValid (condition) { item, ... }", true, true},
    {"rangeDoc", "rangeDoc (condition) { item, ... }", true, true},
    {"ctrlRO", "ctrlRO (expression)", false, false},
    {"ctrlValid", "ctrlValid (expression)", false, false},
    {"default", "default (condition) { value }", true, false},
    {"valueChange", "valueChange { source -> target }", false, false},
    {"index", "index { name, ... }", false, true},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNameByte(char c) {
  return isDigit(c) || c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isOperatorSign(char c) {
  return std::string_view("+-*/%&|^<>=!$").find(c) != std::string_view::npos;
}

bool isNumber(std::string_view word) { return !word.empty() && wholeNumber(word).has_value(); }

// What is between the keyword and the fault.
class StatementCause {
 public:
  explicit StatementCause(const FaultView& view)
      : view_(view),
        form_(*std::ranges::find(FORMS, view.fault.keyword, &StatementForm::keyword)),
        next_(behindStatement(view.scanFrom(view.fault.keywordAt))) {}

  ReadingCause find() {
    if (view_.fault.result == PARSE_INVALID_ACCESS) return writeOnly();
    TextScan scan = view_.scanFrom(view_.fault.keywordAt + form_.keyword.size());
    for (;;) {
      const TextPart part = scan.next();
      if (std::optional<ReadingCause> cause = suspicious(part, scan)) return *std::move(cause);
      if (part.kind == PART_END || part.end() > view_.fault.at) return atFault(part, scan);
      follow(part);
    }
  }

 private:
  // ---- On the way to the fault

  void follow(const TextPart& part) {
    if (part.isSign('(')) open_.push_back(part);
    if (part.isSign(')') && !open_.empty()) open_.pop_back();
    if (part.isSign('{')) hasBrace_ = true;
    hasArrow_ = hasArrow_ || (hasBrace_ && part.text.find("->") != std::string_view::npos);
    hasSpanInCondition_ =
        hasSpanInCondition_ || (!open_.empty() && part.text.find("..") != std::string_view::npos);
    last_ = part;
  }

  // What is wrong whatever the grammar says behind it.
  std::optional<ReadingCause> suspicious(const TextPart& part, const TextScan& scan) const {
    if (part.kind == PART_OPEN_QUOTE) return openQuote(part);
    if (part.kind == PART_COMMENT) return commentAfterCode(view_, part.at, next_);
    const bool isEnd = part.kind == PART_END;
    const bool isNext = beginsDefinition(part, scan) || beginsStatement(part, scan);
    if (!open_.empty() && (isEnd || isNext || part.isSign('{') || part.isSign('}'))) {
      return openParenthesis(part, scan);
    }
    if (isEnd || beginsDefinition(part, scan)) return unfinished(part);
    if (isNext) return openStatement(part);
    return {};
  }

  [[nodiscard]] ReadingCause openQuote(const TextPart& part) const {
    TextPlace at = view_.placeOf(part);
    const size_t escape = part.text.find("\\\"");
    if (escape != std::string_view::npos) {
      return cause("open-quote", view_.place(part.at + escape, 2),
                   "a text goes up to the next quote, and none can be written in it");
    }
    return cause("open-quote", {at.line, at.column, 1},
                 "the quote that opens here is not closed on line " + std::to_string(at.line));
  }

  [[nodiscard]] ReadingCause openParenthesis(const TextPart& part, const TextScan& scan) const {
    const bool isEnd = part.kind == PART_END;
    const TextPart& open = open_.back();
    const bool isControl = form_.form.ends_with(')');
    TextScan ahead = scan;
    const TextPart next = ahead.next();
    const bool goesOn = next.isSign('}') || beginsStatement(next, ahead);
    if (isControl && part.isSign('}') && goesOn) {
      ReadingCause found = cause(
          "syntax", view_.placeOf(part),
          "a \")\" closes the condition of \"" + std::string(form_.keyword) + "\", and no \"}\"",
          Proposal{view_.placeOf(part), ")"});
      found.next = {RESUME_STATEMENT, part.end()};
      return found;
    }
    ReadingCause found = cause(
        "syntax", isEnd ? view_.placeOf(open) : view_.placeOf(part),
        isEnd ? "this \"(\" is not closed" : "a \")\" is missing before " + quoted(part.text));
    if (!isEnd) found.finding.related.push_back({view_.placeOf(open), "this \"(\" is not closed"});
    if (!isEnd) found.finding.proposal = insertBehind(last_, ")");
    return found;
  }

  [[nodiscard]] ReadingCause unfinished(const TextPart& part) const {
    ReadingCause found = openDefinition(view_, part);
    found.finding.related.push_back(
        {keywordPlace(), quoted(form_.keyword) + " is not complete, either"});
    return found;
  }

  [[nodiscard]] ReadingCause openStatement(const TextPart& part) const {
    const bool isControl = form_.form.ends_with(')');
    if (!hasBrace_ && last_.isSign(')') && form_.hasCondition) return valuesInParentheses(part);
    ReadingCause found =
        isControl || !hasBrace_
            ? incomplete(part)
            : cause("syntax", view_.placeOf(part), "a \"}\" is missing before " + quoted(part.text),
                    insertBehind(last_, "}"));
    found.finding.related.push_back({keywordPlace(), quoted(form_.keyword) + " begins here"});
    return found;
  }

  [[nodiscard]] ReadingCause incomplete(const TextPart& part) const {
    const size_t behind = view_.fault.keywordAt + form_.keyword.size();
    const bool isRepeated = part.text == form_.keyword && !part.isFirstOnLine &&
                            view_.scanFrom(behind).peek().at == part.at;
    if (isRepeated) {
      const TextPlace place = view_.place(behind, part.end() - behind);
      return cause("syntax", view_.placeOf(part), "the keyword is written twice",
                   Proposal{place, ""});
    }
    return cause("syntax", view_.placeOf(part),
                 quoted(form_.keyword) + " is not complete: its form is " + formText());
  }

  [[nodiscard]] ReadingCause writeOnly() const {
    ReadingCause found =
        cause("write-only-condition", keywordPlace(),
              quoted(view_.name()) + " is a wo parameter, which cannot have a \"ctrlRO\"");
    const TextPart access = view_.partAt(view_.fault.nameAt + view_.name().size());
    found.finding.related.push_back({view_.placeOf(access), "the access word is here"});
    return found;
  }

  // ---- At the fault

  ReadingCause atFault(const TextPart& part, const TextScan& scan) const {
    if (last_.kind == PART_QUOTED && part.kind == PART_WORD && hasOddQuotes(scan)) {
      return openQuote(last_);
    }
    if (part.text.size() > MAX_VALUE_BYTES) {
      return cause("syntax", view_.placeOf(part), "a text has at most 1 MiB");
    }
    if (!open_.empty()) return inExpression();
    if (!hasBrace_) return beforeBrace(part);
    if (part.isSign('}')) return atClosingBrace(part);
    if (part.isSign(',')) return atComma(part);
    if (part.isSign(')') || part.text.starts_with(']')) return wrongClosing(part);
    if (form_.keyword == "index") return inIndexList(part);
    if (part.kind == PART_QUOTED || part.isSign('(')) return secondValue(part);
    if (part.isSign('{') && last_.isSign(')') && form_.hasCondition) {
      return plain(part, "the condition belongs before the braces: " + formText());
    }
    if (part.isSign('{')) return plain(part, "a \"{\" cannot come here");
    return form_.keyword == "valueChange" ? inTranslation(part, scan) : inItems(part, scan);
  }

  // Whether the quotes on the line of the fault have no pairs.
  [[nodiscard]] bool hasOddQuotes(TextScan scan) const {
    for (;;) {
      const TextPart part = scan.next();
      if (part.kind == PART_END || part.isFirstOnLine) return false;
      if (part.kind == PART_OPEN_QUOTE) return true;
    }
  }

  [[nodiscard]] ReadingCause inExpression() const {
    const size_t at = view_.fault.at;
    const char sign = view_.byteAt(at);
    const char before = view_.byteAt(at - 1);
    const char behind = view_.byteAt(at + 1);
    if (sign == '=' && before == '=') {
      return operatorCause({at - 2, 3}, view_.byteAt(at - 2) == '!' ? "!=" : "==", "syntax");
    }
    if (sign == '=' && (behind == '>' || behind == '<')) {
      return operatorCause({at, 2}, behind == '>' ? ">=" : "<=", "syntax");
    }
    if (sign == '=' && before == ':') return operatorCause({at - 1, 2}, "==", "syntax");
    if (sign == '=') {
      const TextPlace place = view_.place(at, 1);
      return cause("single-equals", place, "\"=\" does not compare: write \"==\"",
                   Proposal{place, "=="});
    }
    if (sign == '!') {
      return cause("syntax", view_.place(at, 1),
                   "there is no operator \"!\": compare with 0, as in \"(a == 0)\"");
    }
    if (sign == '[') {
      return cause("syntax", view_.place(at, 1),
                   "index values belong directly behind the name of a parameter");
    }
    if (sign == ']') return cause("syntax", view_.place(at, 1), "this \"]\" closes nothing");
    return cause("syntax", view_.place(at, 1),
                 quoted(std::string_view(&sign, 1)) + " does not fit in an expression");
  }

  struct Span {
    size_t at;
    size_t length;
  };

  [[nodiscard]] ReadingCause operatorCause(Span span, const std::string& right,
                                           std::string_view code) const {
    const TextPlace place = view_.place(span.at, span.length);
    return cause(code, place,
                 "there is no operator " + quoted(view_.text().substr(span.at, span.length)) +
                     ": write \"" + right + "\"",
                 Proposal{place, right});
  }

  [[nodiscard]] ReadingCause beforeBrace(const TextPart& part) const {
    const std::string keyword(form_.keyword);
    constexpr std::array<std::string_view, 5> signs = {"=", ":", ":=", "->", "=>"};
    if (std::ranges::find(signs, part.text) != signs.end()) {
      return cause(
          "syntax", view_.placeOf(part),
          "there is no " + quoted(part.text) + " behind a keyword: the form is " + formText(),
          withoutSign(part));
    }
    if (part.isSign(')')) {
      return cause("syntax", view_.placeOf(part), "this \")\" closes nothing",
                   Proposal{view_.placeOf(part), ""});
    }
    if (form_.form.ends_with(')')) return bareCondition(part);
    if (form_.hasCondition && (part.text == "if" || part.text == "when")) {
      return cause("syntax", view_.placeOf(part),
                   "a condition comes directly behind the keyword, without " + quoted(part.text),
                   Proposal{view_.placeOf(part), ""});
    }
    const bool isParenthesis = part.isSign('(');
    if (isParenthesis && form_.hasCondition) {
      return cause("syntax", view_.placeOf(part),
                   "a statement has one condition: join two of them with \"&&\"");
    }
    if (isParenthesis) {
      return cause("syntax", view_.placeOf(part),
                   "\"" + keyword + "\" has no condition: its form is " + formText());
    }
    if (last_.isSign(')')) return valuesInParentheses(part);
    if (form_.hasCondition && reachesBrace(part)) return bareCondition(part);
    return bareValues(part);
  }

  // What is right in the place of a sign behind the keyword, and of a value behind it without
  // braces.
  [[nodiscard]] Proposal withoutSign(const TextPart& sign) const {
    const TextPart value = view_.scanFrom(sign.end()).peek();
    const bool isBare = value.kind == PART_WORD || value.kind == PART_QUOTED;
    std::optional<Proposal> braces;
    if (isBare && !value.isFirstOnLine && !isMissing(value) && !form_.form.ends_with(')')) {
      braces = enclosed(value, endOfRest(value), "{ ", " }");
    }
    if (!braces) return {view_.placeOf(sign), ""};
    return {view_.place(sign.at, value.at + braces->at.length - sign.at), braces->text};
  }

  // The end of what is on the line from `part` on, before a brace or a statement; without what
  // closes the definition.
  [[nodiscard]] size_t endOfRest(const TextPart& part) const {
    TextScan scan = view_.scanFrom(part.at);
    size_t end = part.at;
    for (TextPart next = scan.next(); next.kind != PART_END; next = scan.next()) {
      const bool isNext = next.isFirstOnLine && next.at != part.at;
      if (isNext || next.isSign('{') || next.isSign('}') || next.kind == PART_COMMENT ||
          next.kind == PART_OPEN_QUOTE || beginsStatement(next, scan)) {
        break;
      }
      end = next.end();
    }
    return end;
  }

  // Whether a brace opens on the line, behind what could be a condition without parentheses.
  [[nodiscard]] bool reachesBrace(const TextPart& part) const {
    return part.kind == PART_WORD && view_.scanFrom(endOfRest(part)).peek().isSign('{');
  }

  // What is between `part` and `end`, between `opening` and `closing` instead.
  [[nodiscard]] std::optional<Proposal> enclosed(const TextPart& part, size_t end,
                                                 const std::string& opening,
                                                 const std::string& closing) const {
    if (end <= part.at) return {};
    const std::string_view all = view_.text().substr(part.at, end - part.at);
    std::string_view inner = all;
    const bool isBracketed = inner.size() > 2 && ((inner.front() == '[' && inner.back() == ']') ||
                                                  (inner.front() == '<' && inner.back() == '>'));
    if (isBracketed) inner = trimmed(inner.substr(1, inner.size() - 2));
    const bool isClean = inner.find_first_of("[]{};=") == std::string_view::npos ||
                         (opening == "(" && inner.find_first_of("[]{};") == std::string_view::npos);
    if (!isClean || inner.find('\n') != std::string_view::npos) return {};
    return Proposal{view_.place(part.at, all.size()), opening + std::string(inner) + closing};
  }

  // A condition that is not in parentheses, perhaps in braces.
  [[nodiscard]] ReadingCause bareCondition(const TextPart& part) const {
    std::optional<Proposal> proposal;
    if (part.kind == PART_WORD) proposal = enclosed(part, endOfRest(part), "(", ")");
    const TextPart inner = view_.scanFrom(part.end()).peek();
    const size_t end = part.isSign('{') && inner.kind == PART_WORD ? endOfRest(inner) : 0;
    if (end != 0 && view_.scanFrom(end).peek().isSign('}')) {
      proposal = enclosed(inner, end, "(", ")");
      const size_t behind = view_.scanFrom(end).peek().end();
      if (proposal) proposal->at = view_.place(part.at, behind - part.at);
    }
    ReadingCause found = cause("syntax", view_.placeOf(part),
                               "the condition of \"" + std::string(form_.keyword) +
                                   "\" has to be in parentheses: " + formText(),
                               std::move(proposal));
    if (form_.form.ends_with(')')) goOnBehindProposal(found);
    return found;
  }

  // Where a whole statement is mended, the next one is read.
  void goOnBehindProposal(ReadingCause& found) const {
    const std::optional<Proposal>& proposal = found.finding.proposal;
    const TextPlace keyword = keywordPlace();
    if (!proposal || proposal->at.line != keyword.line) return;
    const size_t line = view_.fault.keywordAt - keyword.column;
    found.next = {RESUME_STATEMENT, line + proposal->at.column + proposal->at.length};
  }

  // Values that are not in braces.
  [[nodiscard]] ReadingCause bareValues(const TextPart& part) const {
    const bool areMissing = isMissing(part);
    ReadingCause found =
        cause("syntax", view_.placeOf(part),
              "the braces of \"" + std::string(form_.keyword) + "\" are missing: its form is " +
                  formText(),
              areMissing ? bracesForParentheses() : enclosed(part, endOfRest(part), "{ ", " }"));
    if (areMissing && found.finding.proposal) found.finding.at = found.finding.proposal->at;
    goOnBehindProposal(found);
    return found;
  }

  // Whether `part` is what comes behind the statement.
  [[nodiscard]] bool isMissing(const TextPart& part) const {
    return part.isSign('}') || part.kind == PART_END ||
           beginsStatement(part, view_.scanFrom(part.end()));
  }

  // Behind parentheses without braces: mostly the values are in them.
  [[nodiscard]] ReadingCause valuesInParentheses(const TextPart& part) const {
    if (!hasSpanInCondition_) return bareValues(part);
    ReadingCause found =
        cause("syntax", view_.placeOf(part),
              "the items of \"" + std::string(form_.keyword) +
                  "\" belong in braces, the parentheses hold a condition: " + formText());
    found.finding.proposal = bracesForParentheses();
    if (found.finding.proposal) found.finding.at = found.finding.proposal->at;
    goOnBehindProposal(found);
    return found;
  }

  // Braces in the place of the parentheses, unless a condition is in these.
  [[nodiscard]] std::optional<Proposal> bracesForParentheses() const {
    const TextPart opening = view_.scanFrom(view_.fault.keywordAt + form_.keyword.size()).peek();
    if (!opening.isSign('(') || !last_.isSign(')') || last_.at < opening.end()) return {};
    const std::string_view inner =
        trimmed(view_.text().substr(opening.end(), last_.at - opening.end()));
    if (inner.find_first_of("(){}=<>&|\n") != std::string_view::npos) return {};
    const bool isPlain = isNumber(inner) || inner.starts_with('"') || hasSpanInCondition_;
    return Proposal{
        view_.place(opening.at, last_.end() - opening.at),
        isPlain ? "{ " + std::string(inner) + " }" : "{ (" + std::string(inner) + ") }"};
  }

  [[nodiscard]] ReadingCause atClosingBrace(const TextPart& part) const {
    if (last_.isSign(',')) return extraComma(last_);
    if (last_.text.ends_with("->")) return plain(part, "the target is missing behind \"->\"");
    if (last_.text.ends_with("..")) return plain(part, "the upper end is missing behind \"..\"");
    if (last_.isSign('{')) {
      return plain(part, "\"" + std::string(form_.keyword) + "\" cannot be empty: its form is " +
                             formText());
    }
    if (form_.keyword == "valueChange") return missingArrow(part);
    return plain(part, "\"}\" cannot come here: the form is " + formText());
  }

  // A sign that closes something else, in the place of the "}" or beside it.
  [[nodiscard]] ReadingCause wrongClosing(const TextPart& part) const {
    const TextPart sign = {PART_SIGN, part.at, part.text.substr(0, 1)};
    TextScan scan = view_.scanFrom(sign.end());
    const TextPart brace = scan.next();
    const TextPart behind = scan.next();
    const bool isClosedAnyway =
        brace.isSign('}') && (behind.isSign('}') || beginsStatement(behind, scan));
    if (isClosedAnyway) {
      return cause("syntax", view_.placeOf(sign), "this " + quoted(sign.text) + " closes nothing",
                   Proposal{view_.placeOf(sign), ""});
    }
    ReadingCause found = cause("syntax", view_.placeOf(sign),
                               "a \"}\" closes the braces of \"" + std::string(form_.keyword) +
                                   "\", and no " + quoted(sign.text),
                               Proposal{view_.placeOf(sign), "}"});
    found.next = {RESUME_STATEMENT, sign.end()};
    return found;
  }

  [[nodiscard]] ReadingCause atComma(const TextPart& part) const {
    if (last_.isSign('{') || last_.isSign(',')) return extraComma(part);
    if (form_.keyword == "default") {
      const TextPart group = view_.scanFrom(part.end()).peek();
      const bool isGroup = group.at == part.end() && group.text.size() == 3 &&
                           std::ranges::all_of(group.text, isDigit);
      if (isGroup && isNumber(last_.text)) {
        const TextPlace whole = view_.place(last_.at, group.end() - last_.at);
        return cause("syntax", whole, "a number has no separators",
                     Proposal{whole, std::string(last_.text) + std::string(group.text)});
      }
      return plain(part,
                   "a default has one value: write further ones in statements with conditions");
    }
    if (form_.keyword == "valueChange" && hasArrow_) {
      return plain(part, "a statement has one translation: write another \"valueChange\"");
    }
    return plain(part, "\",\" cannot come here: the form is " + formText());
  }

  [[nodiscard]] ReadingCause extraComma(const TextPart& comma) const {
    return cause("syntax", view_.placeOf(comma), "there is nothing to separate with this \",\"",
                 Proposal{view_.placeOf(comma), ""});
  }

  [[nodiscard]] ReadingCause inIndexList(const TextPart& part) const {
    return missingComma(part, "names");
  }

  // A text or an expression where a sign has to be.
  [[nodiscard]] ReadingCause secondValue(const TextPart& part) const {
    if (form_.keyword == "valueChange") {
      if (!hasArrow_) return missingArrow(part);
      if (!part.isSign('(')) return plain(part, "\"valueChange\" has one target");
      return plain(part,
                   "a translation has no expressions: source and target are quoted texts or "
                   "numbers");
    }
    if (form_.keyword == "default") return plain(part, "a default has one value");
    if (last_.text.ends_with("..")) return spanOfTexts(part);
    return missingComma(part, "items");
  }

  [[nodiscard]] ReadingCause missingComma(const TextPart& part, const std::string& what) const {
    ReadingCause found = plain(part, "a \",\" is missing between two " + what);
    const bool isName = what == "names" && isNameByte(part.text.front());
    const bool isWord =
        part.kind == PART_QUOTED || part.isSign('(') || isNumber(part.text) || isName;
    if (isWord) found.finding.proposal = insertBehind(last_, ",");
    return found;
  }

  [[nodiscard]] ReadingCause missingArrow(const TextPart& part) const {
    return plain(part, "a \"->\" is missing between source and target");
  }

  [[nodiscard]] ReadingCause inTranslation(const TextPart& part, const TextScan& scan) const {
    constexpr std::array<std::string_view, 9> arrows = {"=>",  "=",  ":",      ">",     "-",
                                                        "-->", "to", "\u2192", "\u21D2"};
    const bool isStart = last_.isSign('{') || last_.text.ends_with("->");
    const std::string_view word = wordAtFault(part);
    if (word.find("..") != std::string_view::npos) {
      return plain(part, "a translation has one source, and no span");
    }
    if (!isStart && part.at == view_.fault.at && !hasArrow_) {
      ReadingCause found = missingArrow(part);
      const bool isWrongArrow = std::ranges::find(arrows, part.text) != arrows.end();
      if (isWrongArrow) found.finding.proposal = Proposal{view_.placeOf(part), "->"};
      return found;
    }
    if (word.starts_with('-') && isNumber(word)) {
      return quotesFor(word, "a negative number has to be in quotes here: ");
    }
    if (!word.empty() && !isDigit(word.front())) return bareText(word);
    if (hasArrow_ && part.at == view_.fault.at) return secondValue(part);
    return badNumber(part, scan);
  }

  // In the braces of rangeValid, rangeDoc or default.
  [[nodiscard]] ReadingCause inItems(const TextPart& part, const TextScan& scan) const {
    const std::string_view word = part.text;
    const bool isSeparator = word == ";" || (word == "|" && last_.kind == PART_QUOTED);
    if (form_.isList && isSeparator) {
      return cause("syntax", view_.placeOf(part), "items are separated by \",\"",
                   Proposal{view_.placeOf(part), ","});
    }
    if (word.starts_with(';')) {
      return plain({PART_SIGN, part.at, word.substr(0, 1)},
                   form_.isList ? "items are separated by \",\"" : "there is no \";\" here");
    }
    if (word.starts_with('[')) return plain(part, "there are no brackets around items");
    if (word.starts_with("->")) return plain(part, "a translation belongs in a \"valueChange\"");
    const size_t dots = last_.text.find("..");
    const bool isBehindValue =
        last_.kind == PART_QUOTED || last_.isSign(')') || isNumber(last_.text) ||
        (dots != std::string_view::npos && isNumber(last_.text.substr(dots + 2)));
    if (const std::optional<ReadingCause> cause = strangeSigns(part)) return *cause;
    if (isBehindValue && part.at == view_.fault.at) return behindValue(part, scan);
    if (form_.isList && word.ends_with(';')) {
      return plain({PART_SIGN, part.end() - 1, word.substr(word.size() - 1)},
                   "items are separated by \",\"");
    }
    if (isDigit(word.front()) || (word.size() > 1 && word.front() == '-' && isDigit(word[1]))) {
      return badNumber(part, scan);
    }
    return bareName(part, scan);
  }

  // A number or a sign in characters of other languages.
  [[nodiscard]] std::optional<ReadingCause> strangeSigns(const TextPart& part) const {
    const std::string_view word = part.text;
    if (word == "*" && last_.isSign('{')) {
      return plain(part, "there is no \"*\": a definition without a range takes every value");
    }
    const TextPart next = view_.scanFrom(part.end()).peek();
    const bool isFirst = last_.isSign('{') || last_.isSign(',');
    if (isFirst && word == "-" && isNumber(next.text) && !next.isFirstOnLine) {
      const TextPlace whole = view_.place(part.at, next.end() - part.at);
      return cause("syntax", whole, "the sign is directly before its number",
                   Proposal{whole, "-" + std::string(next.text)});
    }
    const std::string plainSigns = withPlainSigns(word);
    const size_t dots = plainSigns.find("..");
    const bool isNumeric = isNumber(plainSigns) ||
                           (dots != std::string::npos && isNumber(plainSigns.substr(0, dots)) &&
                            isNumber(plainSigns.substr(dots + 2)));
    const std::string right = isNumeric ? plainSigns : hexadecimalMeant(word);
    if (right.empty()) return {};
    return cause("syntax", view_.placeOf(part), quoted(word) + " is written otherwise: " + right,
                 Proposal{view_.placeOf(part), right});
  }

  [[nodiscard]] ReadingCause behindValue(const TextPart& part, const TextScan& scan) const {
    const std::string_view word = part.text;
    if (form_.isList && (word == "step" || word == "by")) {
      return plain(part, "a span has no step: write the numbers as items");
    }
    if (last_.kind == PART_QUOTED && word.starts_with("..")) return spanOfTexts(part);
    if (isSpanSign(word)) return spanForm(part);
    if (form_.keyword == "default" && word.starts_with("..")) {
      return plain(part, "a default has one value, no span");
    }
    if (isOperatorSign(word.front())) {
      return plain(part, "the whole expression has to be in parentheses");
    }
    if (word.starts_with("..")) return badNumber(part, scan);
    return form_.isList ? missingComma(part, "items") : plain(part, "a default has one value");
  }

  [[nodiscard]] ReadingCause spanOfTexts(const TextPart& part) const {
    return plain(part, "a span goes from number to number: write each text as an item");
  }

  static bool isSpanSign(std::string_view word) {
    constexpr std::array<std::string_view, 8> signs = {
        "-", "to", ":", "...", "~", "\xE2\x80\xA6", "\xE2\x80\x93", "."};
    return std::ranges::find(signs, word) != signs.end();
  }

  [[nodiscard]] ReadingCause spanForm(const TextPart& part) const {
    if (form_.keyword == "default") return plain(part, "a default has one value, no span");
    return cause(
        "syntax", view_.placeOf(part), "a span is written with two dots, as in 0..100",
        part.text == "." ? std::nullopt : std::optional(Proposal{view_.placeOf(part), ".."}));
  }

  // A word that begins with digits.
  [[nodiscard]] ReadingCause badNumber(const TextPart& part, const TextScan& scan) const {
    const std::string_view word = part.text;
    size_t digits = numberLength(word);
    const std::string_view rest = word.substr(digits);
    for (const std::string_view sign : {"...", "-", ":", "~", "\xE2\x80\xA6", "\xE2\x80\x93"}) {
      const std::string_view upper = rest.substr(std::min(sign.size(), rest.size()));
      if (!form_.isList || !rest.starts_with(sign) || !isNumber(upper)) continue;
      const bool isRatio = sign == ":" && wholeNumber(word.substr(0, digits)) > wholeNumber(upper);
      if (isRatio) return bareText(word);
      const TextPart wrong = {PART_WORD, part.at + digits, rest.substr(0, sign.size())};
      return spanForm(wrong);
    }
    const bool isLeadingZero =
        word.size() > 1 && word[0] == '0' && !rest.empty() && std::ranges::all_of(word, isDigit);
    if (isLeadingZero) {
      std::string_view decimal = word.substr(std::min(word.find_first_not_of('0'), word.size()));
      return cause("syntax", view_.placeOf(part),
                   quoted(word) + " is no number: with a leading 0 it is octal",
                   Proposal{view_.placeOf(part), std::string(decimal)});
    }
    if (!numberBeforeUnit(word).empty()) return numberWithUnit(word);
    const size_t dots = rest.find("..");
    const bool isHexadecimal = word.starts_with("0x") || word.starts_with("0X");
    if (isHexadecimal && dots != 0) {
      return badEnd({PART_WORD, part.at, word.substr(0, word.find(".."))});
    }
    if (const std::string right = spanWithoutUnits(word); !right.empty()) {
      return cause("syntax", view_.placeOf(part), "a number has no unit",
                   Proposal{view_.placeOf(part), right});
    }
    if (dots == 0) return badUpper(part, part.at + digits + 2, scan);
    if (rest.starts_with('.')) {
      return plain(part, quoted(word) + " is no number: numbers are whole" +
                             (form_.isList ? ", and a span has two dots, as in 0..100" : ""));
    }
    if (dots != std::string_view::npos || continuesAsExpression(part, scan) ||
        isOperatorSign(rest.empty() ? ' ' : rest.front())) {
      return plain(part, quoted(word) + " is no number: an expression has to be in parentheses");
    }
    return bareText(word);
  }

  // A span without the unit of its lower end and perhaps of its upper one; empty where `word` is
  // something else.
  static std::string spanWithoutUnits(std::string_view word) {
    const size_t dots = word.find("..");
    if (dots == std::string_view::npos) return {};
    const std::string_view lower = numberBeforeUnit(word.substr(0, dots));
    const std::string_view end = word.substr(dots + 2);
    const std::string_view upper = isNumber(end) ? end : numberBeforeUnit(end);
    if (lower.empty() || upper.empty()) return {};
    return std::string(lower) + ".." + std::string(upper);
  }

  // A number or, among items, perhaps a text.
  [[nodiscard]] ReadingCause numberWithUnit(std::string_view word) const {
    const auto at = static_cast<size_t>(word.data() - view_.text().data());
    const std::string number(numberBeforeUnit(word));
    return cause("unquoted-text", view_.place(at, word.size()),
                 inQuotes(word) + " is no number, as a number has no unit: write " + number +
                     ", or the text in quotes");
  }

  // What is behind the dots of a span.
  [[nodiscard]] ReadingCause badUpper(const TextPart& part, size_t at, const TextScan& scan) const {
    const TextPart upper = {PART_WORD, at, part.text.substr(at - part.at)};
    if (form_.keyword == "default") return plain(part, "a default has one value, no span");
    if (upper.text.starts_with('.')) {
      return spanForm({PART_WORD, at - 2, view_.text().substr(at - 2, 3)});
    }
    if (upper.text.empty() && scan.peek().kind == PART_QUOTED) return spanOfTexts(scan.peek());
    if (upper.text.empty()) return plain(scan.peek(), "the upper end is missing behind \"..\"");
    if (upper.text.find("..") != std::string_view::npos) return plain(part, "a span has two ends");
    if (isDigit(upper.text.front())) return badEnd(upper);
    return parenthesesFor(upper, scan);
  }

  // A number that is none at the end of a span.
  [[nodiscard]] ReadingCause badEnd(const TextPart& end) const {
    const bool isHexadecimal = end.text.starts_with("0x") || end.text.starts_with("0X");
    const bool isOctal = end.text.front() == '0' && std::ranges::all_of(end.text, isDigit);
    const bool isDecimal = end.text.find('.') != std::string_view::npos;
    if (const std::string_view number = numberBeforeUnit(end.text); !number.empty()) {
      return cause("syntax", view_.placeOf(end),
                   quoted(end.text) + " has a unit, and a number has none",
                   Proposal{view_.placeOf(end), std::string(number)});
    }
    std::string joined(end.text);
    std::erase_if(joined, [](char c) { return c == '_' || c == '\''; });
    if (joined != end.text && isNumber(joined)) {
      return cause("syntax", view_.placeOf(end), "a number has no separators",
                   Proposal{view_.placeOf(end), joined});
    }
    return plain(end, quoted(end.text) + " is no number" +
                          (isHexadecimal ? ": hexadecimal digits are 0 to 9 and A to F"
                           : isOctal     ? ": with a leading 0 it is octal"
                           : isDecimal   ? ": numbers are whole"
                                         : ""));
  }

  // A word that is no number where a value has to be.
  [[nodiscard]] ReadingCause bareName(const TextPart& part, const TextScan& scan) const {
    const std::string_view word = part.text;
    const size_t dots = word.find("..");
    if (dots == 0) return plain(part, "the lower end is missing before \"..\"");
    if (last_.text.ends_with("..")) return parenthesesFor(part, scan);
    if (dots != std::string_view::npos) {
      const bool isUpper = view_.fault.at >= part.at + dots + 2;
      if (isUpper) return badUpper(part, part.at + dots + 2, scan);
      return parenthesesFor({PART_WORD, part.at, word.substr(0, dots)}, scan);
    }
    if (scan.peek().text.starts_with("..")) return parenthesesFor(part, scan);
    if (continuesAsExpression(part, scan)) return wholeExpression(part, scan);
    return bareText(word);
  }

  // Whether the word is a part of an expression without parentheses.
  [[nodiscard]] bool continuesAsExpression(const TextPart& part, const TextScan& scan) const {
    const TextPart next = scan.peek();
    const std::string_view word = part.text;
    const bool hasSign = std::ranges::any_of(
        word.substr(1), [](char c) { return isOperatorSign(c) && c != '-' && c != '/'; });
    return hasSign || next.isSign('(') ||
           (next.kind == PART_WORD && !next.isFirstOnLine && isOperatorSign(next.text.front()));
  }

  [[nodiscard]] ReadingCause wholeExpression(const TextPart& part, const TextScan& scan) const {
    TextScan ahead = scan;
    TextPart last = part;
    for (TextPart next = ahead.next(); next.kind == PART_WORD && !next.isFirstOnLine;
         next = ahead.next()) {
      last = next;
    }
    const std::string_view all = view_.text().substr(part.at, last.end() - part.at);
    const TextPlace place = view_.place(part.at, all.size());
    return cause("syntax", place, "an expression has to be in parentheses",
                 ahead.peek().isSign('(')
                     ? std::nullopt
                     : std::optional(Proposal{place, "(" + std::string(all) + ")"}));
  }

  [[nodiscard]] ReadingCause parenthesesFor(const TextPart& part, const TextScan& scan) const {
    if (const std::string number = hexadecimalMeant(part.text); !number.empty()) {
      return cause("syntax", view_.placeOf(part), "a hexadecimal number begins with 0x",
                   Proposal{view_.placeOf(part), number});
    }
    if (scan.peek().isSign('(')) return plain(part, "there is no function " + quoted(part.text));
    if (continuesAsExpression(part, scan)) return wholeExpression(part, scan);
    const std::string right = "(" + std::string(part.text) + ")";
    return cause("syntax", view_.placeOf(part),
                 "a name as the end of a span has to be in parentheses: " + right,
                 Proposal{view_.placeOf(part), right});
  }

  // A word that is most likely a text, and further ones behind it. In a range or a default it may
  // be a name, too.
  [[nodiscard]] ReadingCause bareText(std::string_view word) const {
    const auto at = static_cast<size_t>(word.data() - view_.text().data());
    const bool areNames = form_.keyword != "valueChange" && !isDigit(word.front());
    ReadingCause found = quotesFor(word, "a text has to be in quotes: ");
    found.bareWords = bareWordsFrom(view_, at, areNames);
    const bool isSigns =
        std::ranges::none_of(word, [](char c) { return (c & 0x80) != 0 || isNameByte(c); });
    if (found.bareWords.empty() && (isSigns || isOperatorSign(word.front()))) {
      found.finding = {"syntax", found.finding.at,
                       quoted(word) + " is neither a number nor a text in quotes"};
    }
    return found;
  }

  [[nodiscard]] ReadingCause quotesFor(std::string_view word, const std::string& why) const {
    const TextPlace place =
        view_.place(static_cast<size_t>(word.data() - view_.text().data()), word.size());
    const std::string right = "\"" + std::string(word) + "\"";
    return cause("unquoted-text", place, why + right, Proposal{place, right});
  }

  // The word at the fault, up to an arrow.
  [[nodiscard]] std::string_view wordAtFault(const TextPart& part) const {
    const size_t behindArrow = part.text.rfind("->", view_.fault.at - part.at);
    const size_t start = behindArrow == std::string_view::npos ? 0 : behindArrow + 2;
    const std::string_view word = part.text.substr(start);
    return word.substr(0, word.find("->"));
  }

  // ---- Making causes

  [[nodiscard]] std::string formText() const { return std::string(form_.form); }
  [[nodiscard]] TextPlace keywordPlace() const {
    return view_.place(view_.fault.keywordAt, form_.keyword.size());
  }
  [[nodiscard]] Proposal insertBehind(const TextPart& part, const std::string& text) const {
    return {view_.place(part.end(), 0), text};
  }
  [[nodiscard]] ReadingCause plain(const TextPart& part, const std::string& text) const {
    return cause("syntax", view_.placeOf(part), text);
  }
  [[nodiscard]] ReadingCause cause(std::string_view code, TextPlace at, const std::string& text,
                                   std::optional<Proposal> proposal = {}) const {
    return {{code, at, text, {}, std::move(proposal)}, next_};
  }

  const FaultView& view_;
  const StatementForm& form_;
  ResumePoint next_;
  std::vector<TextPart> open_;  // parentheses
  bool hasBrace_ = false;
  bool hasArrow_ = false;
  bool hasSpanInCondition_ = false;
  TextPart last_;
};

}  // namespace

ReadingCause causeInStatement(const FaultView& view) { return StatementCause(view).find(); }

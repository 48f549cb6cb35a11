#include "check/text/definition_causes.h"

#include <algorithm>

#include "base/nearest_word.h"
#include "check/text/name_words.h"
#include "check/text/odd_names.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/text_cursor.h"

namespace {

bool isAmong(std::span<const std::string_view> words, std::string_view word) {
  return std::ranges::find(words, word) != words.end();
}

bool startsComment(std::string_view word) {
  return word.starts_with('#') || word.starts_with("//") || word.starts_with("/*");
}

struct Synonym {
  std::string_view word;
  std::string_view meant;
};

// What other languages, and people who remember a page roughly, call these things.
constexpr Synonym ACCESS_SYNONYMS[] = {
    {"read", "ro"},      {"readonly", "ro"},   {"read-only", "ro"},
    {"readwrite", "rw"}, {"read-write", "rw"}, {"write", "wo"},
    {"writeonly", "wo"}, {"write-only", "wo"}, {"trigger", "wo"},
};
constexpr Synonym KEYWORD_SYNONYMS[] = {
    {"range", "rangeValid"},    {"valid", "ctrlValid"}, {"readonly", "ctrlRO"},
    {"ro", "ctrlRO"},           {"doc", "rangeDoc"},    {"value", "default"},
    {"init", "default"},        {"indices", "index"},   {"translate", "valueChange"},
    {"available", "ctrlValid"},
};

// The word of `allowed` that `word` stands for most likely.
std::optional<std::string> meantWord(std::string_view word, std::span<const Synonym> synonyms,
                                     std::span<const std::string_view> allowed) {
  const auto synonym = std::ranges::find(synonyms, word, &Synonym::word);
  if (synonym != synonyms.end()) return std::string(synonym->meant);
  NearestWord nearest(word);
  nearest.offer(allowed);
  if (!nearest.found()) return {};
  return std::string(*nearest.found());
}

// The place behind an opening brace that comes on the line of `at`, or behind the next line end;
// else the next definition.
ResumePoint bodyBehind(const FaultView& view, size_t at) {
  TextScan scan = view.scanFrom(at);
  for (;;) {
    const TextPart part = scan.next();
    const bool isFirst = part.isFirstOnLine && part.at > at;
    if (part.isSign('{')) return {RESUME_STATEMENT, part.end()};
    if (beginsStatement(part, scan)) return {RESUME_STATEMENT, part.at};
    if (part.kind == PART_END || isFirst) return nextDefinition(view.scanFrom(at));
  }
}

ReadingCause wrongAccess(const FaultView& view, const TextPart& word) {
  const std::optional<std::string> meant = meantWord(word.text, ACCESS_SYNONYMS, accessWords());
  Finding finding = {"unknown-access", view.placeOf(word),
                     (word.kind == PART_QUOTED ? std::string(word.text) : quoted(word.text)) +
                         " is no access word: " + listOf(accessWords()) + " belongs behind " +
                         quoted(view.name())};
  if (meant) finding.proposal = {finding.at, *meant};
  return {std::move(finding), bodyBehind(view, word.end())};
}

ReadingCause missingAccess(const FaultView& view, std::string_view name, ResumePoint next) {
  return {{"unknown-access", view.place(view.fault.nameAt, name.size()),
           quoted(name) + " has no access word: " + listOf(accessWords()) + " belongs behind it"},
          next};
}

// A brace behind one word: the name has no access word, has it behind the brace, or is missing.
ReadingCause bodyWithoutAccess(const FaultView& view, const TextPart& brace) {
  const ResumePoint next = {RESUME_STATEMENT, brace.end()};
  if (isAmong(accessWords(), view.name())) {
    return {{"unknown-access", view.namePlace(),
             "a name is missing before the access word " + quoted(view.name())},
            next};
  }
  const TextPart first = view.scanFrom(brace.end()).peek();
  const TextPart behind = view.scanFrom(first.end()).peek();
  const bool isAccess =
      isAmong(accessWords(), first.text) && !behind.isSign('{') && !behind.isSign('(');
  if (!isAccess) return missingAccess(view, view.name(), next);
  if (first.isFirstOnLine) {
    return {{"unknown-access", view.placeOf(first), "the access word is before the brace"},
            {RESUME_STATEMENT, first.end()}};
  }
  const TextPlace both = view.place(brace.at, first.end() - brace.at);
  return {{"unknown-access",
           both,
           "the access word is before the brace",
           {},
           Proposal{both, std::string(first.text) + " {"}},
          {RESUME_STATEMENT, first.end()}};
}

ReadingCause extraBrace(const FaultView& view) {
  const bool isEnd = view.fault.result == PARSE_DONE;
  Finding finding = {"syntax", view.place(view.fault.nameAt, 1),
                     "this \"}\" closes nothing: no definition is open here"};
  // The daemon takes one at the very end for a name without a definition, and is content.
  if (isEnd && view.name() == "}") finding.level = LEVEL_WARNING;
  if (view.fault.closed) finding.related.push_back(*view.fault.closed);
  return {std::move(finding), {RESUME_DEFINITION, view.fault.nameAt + 1}};
}

// A sign between definitions. The daemon takes one at the very end for a name, and is content.
ReadingCause separator(const FaultView& view) {
  const TextPlace at = view.namePlace();
  Finding finding = {
      "syntax",
      at,
      "there is nothing to separate with " + quoted(view.name()) + " between definitions",
      {},
      Proposal{at, ""}};
  if (view.fault.result == PARSE_DONE) finding.level = LEVEL_WARNING;
  return {std::move(finding), {RESUME_DEFINITION, view.fault.nameAt + 1}};
}

ReadingCause statementOutside(const FaultView& view, std::string_view keyword) {
  Finding finding = {"syntax", view.place(view.fault.nameAt, keyword.size()),
                     quoted(keyword) + " is outside of a definition"};
  if (view.fault.closed) finding.related.push_back(*view.fault.closed);
  return {std::move(finding), {RESUME_STATEMENT, view.fault.nameAt}};
}

ReadingCause swapped(const FaultView& view, const TextPart& name) {
  const std::string right = std::string(name.text) + " " + view.name();
  const size_t length = name.end() - view.fault.nameAt;
  const TextPlace at = view.place(view.fault.nameAt, length);
  return {{"unknown-access",
           at,
           "the name comes before the access word: " + quoted(right),
           {},
           Proposal{at, right}},
          bodyBehind(view, name.end())};
}

// Two words before the access word.
ReadingCause nameWithBlank(const FaultView& view, const TextPart& second) {
  const TextPlace at = view.place(view.fault.nameAt, second.end() - view.fault.nameAt);
  if (plainName(second.text).empty()) {
    const TextPlace sign = view.placeOf(second);
    return {{"unknown-access",
             sign,
             "there is no " + quoted(second.text) + " between the name and the access word",
             {},
             Proposal{sign, ""}},
            bodyBehind(view, second.end())};
  }
  constexpr std::string_view TYPES[] = {"int",   "integer", "bool",      "boolean", "string",
                                        "enum",  "float",   "param",     "number",  "var",
                                        "const", "define",  "parameter", "def",     "text"};
  if (isAmong(TYPES, view.name())) {
    const TextPlace word = view.place(view.fault.nameAt, second.at - view.fault.nameAt);
    return {{"unknown-access",
             view.namePlace(),
             "a definition begins with its name, and has no " + quoted(view.name()),
             {},
             Proposal{word, ""}},
            bodyBehind(view, second.end())};
  }
  const std::string both = view.name() + "_" + std::string(second.text);
  const std::string right(plainName(both));
  return {{"unknown-access", at, "a name has no blank: " + quoted(right), {}, Proposal{at, right}},
          bodyBehind(view, second.end())};
}

// A name of several words in quotes. Returns nothing for any other.
std::optional<ReadingCause> nameInQuotes(const FaultView& view) {
  const size_t at = view.fault.nameAt;
  const std::string_view line = view.lineFrom(at);
  const size_t closing = line.find('"', 1);
  if (!line.starts_with('"') || closing == std::string_view::npos) return {};
  const std::string_view whole = line.substr(0, closing + 1);
  std::string right(plainName(whole));
  std::ranges::replace_if(right, isWhiteSpace, '_');
  const TextPlace place = view.place(at, whole.size());
  return ReadingCause{{"unknown-access",
                       place,
                       "a name has no quotes and no blanks: " + quoted(right),
                       {},
                       Proposal{place, right}},
                      bodyBehind(view, at + whole.size())};
}

// Whether a word "index" begins the statement, which has names in braces, and is no access word.
bool isIndexStatement(const FaultView& view, const TextPart& word) {
  if (word.text != "index") return false;
  const TextPart brace = view.partAt(word.end());
  return brace.isSign('{') && !isAmong(statementKeywords(), view.partAt(brace.end()).text);
}

// Behind a name and an access word, where the brace has to be.
ReadingCause missingBrace(const FaultView& view, const TextPart& found) {
  if (isAmong(accessWords(), found.text) && !isIndexStatement(view, found)) {
    return {{"syntax", view.placeOf(found),
             "a definition has one access word: " + quoted(found.text) + " is a second one"},
            bodyBehind(view, found.end())};
  }
  const bool isStatement = isAmong(statementKeywords(), found.text) || found.isSign('}');
  return {{"syntax", view.placeOf(found),
           "a \"{\" is missing before " + quoted(found.text) + ", behind the access word"},
          isStatement ? ResumePoint{RESUME_STATEMENT, found.at} : bodyBehind(view, found.at)};
}

// A name that cannot be one, whatever comes behind it. Returns nothing where it can.
std::optional<ReadingCause> wrongName(const FaultView& view) {
  const size_t at = view.fault.nameAt;
  const std::string name = view.name();
  if (startsComment(name)) {
    const TextPart comment = view.partAt(at);
    const bool isBlock = comment.text.ends_with("*/");
    return commentAfterCode(view, at,
                            {RESUME_DEFINITION, isBlock ? comment.end() : view.nextLine(at)});
  }
  const std::string plain = withPlainSigns(name);
  if (plain.find(' ') != std::string::npos && view.fault.result != PARSE_DONE) {
    const TextPlace place = view.namePlace();
    return ReadingCause{{"syntax",
                         place,
                         "the white space in this word is none for the daemon: write a blank",
                         {},
                         Proposal{place, plain}},
                        bodyBehind(view, at + name.size())};
  }
  if (name.starts_with('}')) return extraBrace(view);
  if (name == ";" || name == ",") return separator(view);
  const std::string word = name.substr(0, name.find_first_of("({"));
  const TextPart found = view.partAt(view.fault.at);
  const bool isGlued = word.size() < name.size();
  const bool opens = isGlued || found.isSign('(') || found.isSign('{');
  if (opens && isAmong(statementKeywords(), word)) return statementOutside(view, word);
  if (!isGlued || word.empty()) return {};
  return missingAccess(view, word, bodyBehind(view, at + word.size()));
}

// Behind what a word that is no keyword begins: the block on its line, if there is one.
ResumePoint behindUnknown(const TextScan& behind) {
  TextScan scan = behind;
  for (;;) {
    const TextScan before = scan;
    const TextPart part = scan.next();
    if (part.isSign('(') || part.isSign('{')) return behindStatement(before);
    const bool isWord = part.kind == PART_WORD && !part.isFirstOnLine;
    if (!isWord || beginsStatement(part, scan)) return nextStatement(before);
  }
}

// Words of languages in which a condition is in front of what it decides.
constexpr std::string_view CONDITION_WORDS[] = {"if",     "else", "elif",   "elsif", "elseif",
                                                "unless", "when", "switch", "case",  "otherwise"};

// Behind the block that a word begins, with the statements in it; where the block has no end of its
// own, as behindUnknown().
ResumePoint behindBlock(const FaultView& view, size_t from) {
  TextScan scan = view.scanFrom(from);
  size_t depth = 0;
  for (;;) {
    const TextPart part = scan.next();
    const bool isOpen = depth > 0;
    if (part.kind == PART_END || beginsDefinition(part, scan) || (!isOpen && part.isSign('}'))) {
      break;
    }
    if (part.isSign('{')) ++depth;
    if (part.isSign('}') && --depth == 0) {
      TextScan behind = scan;
      const TextPart next = behind.next();
      if (next.kind == PART_END || beginsDefinition(next, behind)) break;
      return {RESUME_STATEMENT, part.end()};
    }
  }
  return behindUnknown(view.scanFrom(from));
}

ReadingCause conditionWord(const FaultView& view, const TextPart& word) {
  const bool isRest = word.text.starts_with("el") || word.text == "otherwise";
  return {{"unknown-keyword", view.placeOf(word),
           "there is no " + quoted(word.text) + ": " +
               (isRest ? "a statement for all other cases has a condition of its own, as in "
                       : "a condition is a part of each statement, behind its keyword, as in ") +
               "rangeValid (condition) { item, ... }"},
          behindBlock(view, word.end())};
}

ReadingCause unknownKeyword(const FaultView& view, const TextPart& word) {
  if (const std::string plain = withPlainSigns(word.text); !plain.empty()) {
    const TextPlace at = view.placeOf(word);
    return {{"unknown-keyword",
             at,
             quoted(word.text) + " has a character that looks like another one, or like none",
             {},
             Proposal{at, plain}},
            behindBlock(view, word.end())};
  }
  if (isAmong(CONDITION_WORDS, word.text)) return conditionWord(view, word);
  const std::optional<std::string> meant =
      meantWord(word.text, KEYWORD_SYNONYMS, statementKeywords());
  Finding finding = {"unknown-keyword", view.placeOf(word),
                     "there is no statement " + quoted(word.text) + ": " +
                         listOf(statementKeywords()) + " is expected, or \"}\""};
  if (meant) finding.proposal = {finding.at, *meant};
  return {std::move(finding), behindBlock(view, word.end())};
}

// Whether `part` looks like an item of a range: a number, a span or a text.
bool looksLikeItem(const TextPart& part) {
  const char first = part.text.front();
  const bool isNegative = first == '-' && part.text.size() > 1;
  const char digit = isNegative ? part.text[1] : first;
  return part.kind == PART_QUOTED || (digit >= '0' && digit <= '9');
}

// The items up to the closing brace.
ReadingCause itemsWithoutKeyword(const FaultView& view, const TextPart& first, TextScan scan) {
  TextPart last = first;
  TextPart next = scan.next();
  while (next.kind == PART_WORD || next.kind == PART_QUOTED || next.isSign(',')) {
    if (next.isFirstOnLine || beginsStatement(next, scan)) break;
    last = next;
    next = scan.next();
  }
  const std::string_view items = view.text().substr(first.at, last.end() - first.at);
  const TextPlace at = view.place(first.at, items.size());
  Finding finding = {
      "unknown-keyword", at,
      "there is no statement " +
          (first.kind == PART_QUOTED ? std::string(first.text) : quoted(first.text)) +
          ": the values of a range belong in a \"rangeValid\""};
  const bool areItems = !last.isSign(',') && items.find_first_of(":[]=;") == std::string_view::npos;
  if (areItems) finding.proposal = {at, "rangeValid { " + std::string(items) + " }"};
  return {std::move(finding), nextStatement(view.scanFrom(last.end()))};
}

ReadingCause strayBlock(const FaultView& view, const TextPart& sign) {
  const bool isCondition = sign.isSign('(');
  return {{"syntax", view.placeOf(sign),
           isCondition ? "a condition belongs behind the keyword, before the braces"
                       : "a statement begins with a keyword: " + listOf(statementKeywords())},
          behindStatement(view.scanFrom(sign.at))};
}

ReadingCause straySign(const FaultView& view, const TextPart& part) {
  const char sign = part.text.front();
  const TextPlace at = view.place(part.at, 1);
  const std::string text = sign == ')' ? "this \")\" closes nothing"
                                       : "there is nothing to separate with \"" +
                                             std::string(1, sign) + "\" between statements";
  return {{"syntax", at, text, {}, Proposal{at, ""}}, {RESUME_STATEMENT, part.at + 1}};
}

}  // namespace

ReadingCause causeInHead(const FaultView& view) {
  if (auto cause = wrongName(view)) return *std::move(cause);
  if (auto cause = nameInQuotes(view)) return *std::move(cause);
  const TextPart found = view.partAt(view.fault.at);
  if (found.kind == PART_END) {
    ReadingCause cause = openDefinition(view, found);
    cause.finding.text = "the definition of " + quoted(view.name()) +
                         " is not complete: it needs an access word and \"{ ... }\"";
    return cause;
  }
  if (view.fault.result == PARSE_SYNTAX_ERROR) return missingBrace(view, found);
  if (found.isSign('{')) return bodyWithoutAccess(view, found);
  if (view.byteAt(view.fault.at) == '[') {
    return {{"syntax", view.place(found.at, found.text.size()),
             "a definition has a name without index values; an index statement gives its indices"},
            bodyBehind(view, found.end())};
  }
  if (found.kind == PART_COMMENT) {
    return commentAfterCode(view, found.at, bodyBehind(view, found.end()));
  }
  const TextScan behind = view.scanFrom(found.end());
  if (beginsDefinition(found, behind)) {
    if (!found.isFirstOnLine) return nameWithBlank(view, found);
    return missingAccess(view, view.name(), {RESUME_DEFINITION, found.at});
  }
  if (isAmong(statementKeywords(), found.text)) {
    return missingAccess(view, view.name(), {RESUME_STATEMENT, found.at});
  }
  const bool isSwapped = isAmong(accessWords(), view.name()) && behind.peek().isSign('{');
  return isSwapped ? swapped(view, found) : wrongAccess(view, found);
}

ReadingCause causeInBody(const FaultView& view) {
  TextScan scan = view.scanFrom(view.fault.at);
  const TextPart part = scan.next();
  const bool isName = part.kind == PART_WORD && !isAmong(statementKeywords(), part.text) &&
                      isAmong(accessWords(), scan.peek().text);
  if (part.kind == PART_END || isName) return openDefinition(view, part);
  if (part.kind == PART_COMMENT) {
    return commentAfterCode(view, part.at, {RESUME_STATEMENT, part.end()});
  }
  if (part.isSign('(') || part.isSign('{')) return strayBlock(view, part);
  const char first = part.text.front();
  if (first == ',' || first == ';' || first == ')') return straySign(view, part);
  if (looksLikeItem(part)) return itemsWithoutKeyword(view, part, scan);
  if (part.kind == PART_WORD) return unknownKeyword(view, part);
  return {{"syntax", view.placeOf(part),
           quoted(part.text) + " belongs to no statement: a statement begins with a keyword"},
          nextStatement(scan)};
}

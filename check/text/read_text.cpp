#include "check/text/read_text.h"

#include <algorithm>

#include "check/text/bare_words.h"
#include "check/text/foreign_bytes.h"
#include "check/text/long_lines.h"
#include "check/text/name_words.h"
#include "check/text/reading_causes.h"
#include "check/text/repeated_findings.h"
#include "check/text/rewindable_lines.h"
#include "deflang/text/definition_grammar.h"
#include "deflang/text/text_pieces.h"

namespace {

// How many times the bytes of the text may be read again in all. A sign that is missing may let the
// grammar run to the end of the text, so a text full of such faults would take the square of its
// length.
constexpr size_t MOST_READ_AGAIN = 50;

class LayoutObserver final : public ReadingObserver {
 public:
  LayoutObserver(const SourceText& source, std::string_view bytes, RewindableLines& lines,
                 ReadText& text, Findings& findings)
      : source_(source),
        bytes_(bytes),
        lines_(lines),
        text_(text),
        findings_(findings),
        longLines_(source, bytes) {
    text.cuts = longLines_.cuts();
    text.isBroken = text.isBroken || !text.cuts.empty();
  }

  void onDefinition(const ParameterRecord& record, Position at) override {
    text_.layout.definitions.push_back({&record, at, {at, at}});
    open_ = {};
    isBraceMissing_ = false;
    open_.record = &record;
    open_.nameAt = source_.offsetOf(at);
  }
  void onKeyword(const ParameterRecord& /*record*/, std::string_view keyword,
                 Position at) override {
    open_.isBodyOpen = true;
    open_.keyword = keyword;
    open_.keywordAt = source_.offsetOf(at);
  }
  void onStatement(const ParameterRecord& /*record*/, std::string_view keyword, Position at,
                   Position end) override {
    text_.layout.definitions.back().statements.push_back({keyword, {at, end}});
    open_.keyword = {};
    open_.statementAt = open_.keywordAt;
    open_.statementEnd = source_.offsetOf(end);
  }
  void onDefinitionEnd(const ParameterRecord& record, Position end) override {
    text_.layout.definitions.back().extent.to = end;
    closed_ = &record;
    closedBy_ = {end.line, end.column - 1, 1};
  }
  Resumption onError(TextCursor& cursor, const ParameterRecord* record) override {
    const bool isAtEnd = hasResumed_ && resumedAt_ == bytes_.size();
    if (record == nullptr || isAtEnd) return RESUME_NOWHERE;
    const ReadingFault fault = faultAt(cursor);
    ReadingCause cause = causeOf(fault, source_, bytes_);
    noteDoubts(fault, cause);
    const ResumePoint next = placeToGoOn(fault, cause.next);
    report(fault, std::move(cause));
    const bool isBraceRead = fault.isBodyOpen || (next.at > 0 && bytes_[next.at - 1] == '{');
    isBraceMissing_ = next.what == RESUME_STATEMENT && (isBraceMissing_ || !isBraceRead);
    open_.keyword = {};
    open_.isBodyOpen = next.what == RESUME_STATEMENT;
    cursor.recover();
    lines_.bring(cursor, next.at);
    return next.what;
  }

  // What is known only when all is read.
  void finish() {
    for (const std::vector<BareWord>& words : bareWords_) explainBareWords(words);
    longLines_.report(findings_);
  }

 private:
  ReadingFault faultAt(const TextCursor& cursor) {
    ReadingFault fault = open_;
    fault.result = cursor.result();
    fault.at = fault.result == PARSE_DONE ? bytes_.size() : source_.offsetOf(cursor.position());
    fault.isBodyOpen = fault.isBodyOpen || isBodyBefore(fault);
    if (closed_ != nullptr) {
      fault.closed = RelatedPlace{closedBy_, "\"" + std::string(closed_->name) + "\" ends here"};
    }
    return fault;
  }

  void explainBareWords(const std::vector<BareWord>& words) {
    const auto isDefined = [this](std::string_view name) {
      const ParameterRecord* const record = text_.definitions.records.find(name);
      return record != nullptr && record->access != ACCESS_NONE;
    };
    for (const BareWord& word : words) {
      if (word.isText || !isDefined(word.word) || isNameOfExpressions(word.word)) continue;
      return findings_.add({"syntax", word.at, unusableNameText(word.word)});
    }
    findings_.add(findingOfBareWords(source_, words, [&](std::string_view word) {
      const std::string name = withUnderscores(word);
      return isDefined(name) ? std::optional(name) : std::nullopt;
    }));
  }

  // Whether the brace behind name and access word is before the fault.
  [[nodiscard]] bool isBodyBefore(const ReadingFault& fault) const {
    if (fault.result == PARSE_INVALID_ACCESS) return false;
    TextScan scan(source_, bytes_, fault.nameAt + fault.record->name.size());
    const TextPart access = scan.next();
    const TextPart brace = scan.next();
    return access.kind == PART_WORD && brace.isSign('{') && brace.at < fault.at;
  }

  void noteDoubts(const ReadingFault& fault, const ReadingCause& cause) {
    text_.isBroken = true;
    text_.brokenRecords.insert(fault.record);
    if (fault.isBodyOpen) return;
    if (closed_ != nullptr) text_.brokenRecords.insert(closed_);
    TextScan scan(source_, bytes_, fault.nameAt);
    for (TextPart part = scan.next(); part.kind != PART_END && part.at < cause.next.at;
         part = scan.next()) {
      if (part.kind == PART_WORD) text_.strayWords.emplace(part.text);
    }
  }

  // Each place is behind the one before, so that the reading comes to an end.
  ResumePoint placeToGoOn(const ReadingFault& fault, ResumePoint next) {
    if (next.at < fault.at) {
      readAgain_ += fault.at - next.at;
      if (readAgain_ > MOST_READ_AGAIN * bytes_.size()) {
        next = nextDefinition({source_, bytes_, fault.at});
      }
    }
    if (hasResumed_ && next.at <= resumedAt_) next.at = resumedAt_ + 1;
    next.at = std::min(next.at, bytes_.size());
    hasResumed_ = true;
    resumedAt_ = next.at;
    return next;
  }

  void report(const ReadingFault& fault, ReadingCause cause) {
    const size_t start = fault.isBodyOpen ? fault.at : fault.nameAt;
    if (longLines_.isToBlame(start) || longLines_.isToBlame(fault.at)) return;
    if (text_.linesWithNul.contains(cause.finding.at.line)) return;
    if (isBraceMissing_ && cause.finding.code == "open-definition") return;
    if (cause.bareWords.empty()) {
      findings_.add(std::move(cause.finding));
    } else {
      bareWords_.push_back(std::move(cause.bareWords));
    }
  }

  const SourceText& source_;
  std::string_view bytes_;
  RewindableLines& lines_;
  ReadText& text_;
  Findings& findings_;
  LongLines longLines_;
  ReadingFault open_;
  const ParameterRecord* closed_ = nullptr;
  TextPlace closedBy_;
  std::vector<std::vector<BareWord>> bareWords_;  // of each statement
  size_t readAgain_ = 0;
  size_t resumedAt_ = 0;
  bool hasResumed_ = false;
  bool isBraceMissing_ = false;  // the open definition has been reported to lack its "{"
};

// The text with other bytes for its NUL bytes, which are reported here: the cursor would refuse the
// whole line.
std::string withoutNuls(const SourceText& source, ReadText& text, Findings& findings) {
  RepeatedFindings found("here, too");
  std::string bytes = source.text();
  size_t start = 0;
  for (;;) {
    const std::string_view piece = firstPiece(std::string_view(source.text()).substr(start));
    if (piece.empty()) break;
    const bool isComment = piece.substr(firstWord(piece)).starts_with('#');
    const size_t nul = piece.find('\0');
    if (!isComment && nul != std::string_view::npos) {
      const Position at = source.positionOf(start + nul);
      found.add("NUL", {"syntax", {at.line, at.column, 1}, "a text cannot hold a NUL byte"});
      text.isBroken = true;
      text.linesWithNul.insert(at.line);
      std::replace(bytes.begin() + static_cast<ptrdiff_t>(start),
                   bytes.begin() + static_cast<ptrdiff_t>(start + piece.size()), '\0', '?');
    }
    start += piece.size();
  }
  found.forEach([&](Finding finding, size_t) { findings.add(std::move(finding)); });
  return bytes;
}

// Whether the daemon reads `bytes` to the end.
bool isRead(std::string_view bytes) {
  ParameterRecords records;
  const auto nextLine = [&bytes](std::string_view& line) {
    line = firstPiece(bytes);
    bytes.remove_prefix(line.size());
    return !line.empty();
  };
  TextCursor cursor(nextLine, records.arena());
  return readDefinitions(cursor, records) == PARSE_DONE;
}

void readBytes(const SourceText& source, std::string_view bytes, ReadText& text,
               Findings& findings) {
  RewindableLines lines(source, bytes);
  TextCursor* self = nullptr;
  const auto nextLine = [&](std::string_view& line) { return lines.next(*self, line); };
  TextCursor cursor(nextLine, text.definitions.records.arena());
  self = &cursor;
  LayoutObserver observer(source, bytes, lines, text, findings);
  static_cast<void>(readDefinitions(cursor, text.definitions.records, &observer));
  observer.finish();
}

}  // namespace

bool ReadText::isDoubtful(std::string_view baseName) const {
  if (!isBroken) return false;
  const ParameterRecord* const record = definitions.records.find(baseName);
  return strayWords.contains(baseName) || brokenRecords.contains(record);
}

void readText(const SourceText& source, ReadText& text, Findings& findings) {
  const std::string kind = kindOfForeignBytes(source.text());
  if (!kind.empty() && !isRead(source.text())) {
    text.isBroken = true;
    findings.add({"syntax", {}, kind});
  } else if (source.text().find('\0') != std::string::npos) {
    readBytes(source, withoutNuls(source, text, findings), text, findings);
  } else {
    readBytes(source, source.text(), text, findings);
  }
}

#include "deflang/text/definition_grammar.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>
#include <utility>

#include "deflang/text/caret_line.h"
#include "deflang/text/expression_grammar.h"
#include "deflang/text/statement_grammar.h"

namespace {

constexpr StopSet NAME_STOPS("[]");
constexpr StopSet ACCESS_STOPS("{");
constexpr StopSet KEYWORD_STOPS("({");

struct AccessWord {
  std::string_view word;
  AccessCode code;
};

constexpr AccessWord ACCESS_WORDS[] = {
    {"index", ACCESS_INDEX}, {"ro", ACCESS_RO}, {"rostrict", ACCESS_ROSTRICT},
    {"wo", ACCESS_WO},       {"rw", ACCESS_RW},
};

// A statement of which the keyword was read.
struct Keyed {
  Position keyword;
  uint32_t source;  // that it will have
  [[nodiscard]] StatementPlace place() const { return {keyword.line, source}; }
};

// Reads a statement by `READ` and adds it to `LIST` of the record. A statement that is not complete
// is dropped.
template <auto READ, auto LIST, typename Statement>
bool readInto(TextCursor& cursor, const Keyed& keyed, ParameterRecord& record) {
  Statement statement;
  if (!READ(cursor, statement)) return false;
  (record.*LIST).push_back(cursor.arena().keep(Listed<Statement>(statement, keyed.place())));
  return true;
}

// As readInto() for ctrlRO. A "wo" record is refused only once its condition is complete, so that a
// fault in the condition is told first.
bool readCtrlRO(TextCursor& cursor, const Keyed& keyed, ParameterRecord& record) {
  Expression condition;
  if (!readExpression(cursor, condition)) return false;
  if (record.access == ACCESS_WO) return cursor.failAt(keyed.keyword, PARSE_INVALID_ACCESS);
  record.ctrlRO.push_back(cursor.arena().keep(Listed<Expression>(condition, keyed.place())));
  return true;
}

struct Keyword {
  std::string_view word;
  bool (*read)(TextCursor& cursor, const Keyed& keyed, ParameterRecord& record);
};

constexpr Keyword KEYWORDS[] = {
    {"rangeValid", readInto<readRange, &ParameterRecord::rangeValid, RangeStatement>},
    {"rangeDoc", readInto<readRange, &ParameterRecord::rangeDoc, RangeStatement>},
    {"ctrlRO", readCtrlRO},
    {"ctrlValid", readInto<readExpression, &ParameterRecord::ctrlValid, Expression>},
    {"default", readInto<readDefault, &ParameterRecord::defaults, DefaultStatement>},
    {"valueChange", readInto<readTranslation, &ParameterRecord::valueChange, Translation>},
    {"index", readInto<readIndexList, &ParameterRecord::indices, IndexStatement>},
};

// The row of `table` for `word`, or null.
template <typename T, size_t N>
const T* findWord(const T (&table)[N], std::string_view word) {
  const T* const found = std::find_if(std::begin(table), std::end(table),
                                      [word](const T& row) { return row.word == word; });
  return found == std::end(table) ? nullptr : found;
}

bool readAccess(TextCursor& cursor, AccessCode& access) {
  if (!cursor.skipWhiteSpace()) return false;
  const std::string_view word = cursor.word(ACCESS_STOPS);
  const AccessWord* const found = findWord(ACCESS_WORDS, word);
  if (found == nullptr) return cursor.fail(PARSE_INVALID_ACCESS);
  access = found->code;
  cursor.advance(word.size());
  return true;
}

// Reads the definitions of one text. Each function returns where the reading is to go on.
class DefinitionReader {
 public:
  DefinitionReader(TextCursor& cursor, ParameterRecords& records, ReadingObserver* observer)
      : cursor_(cursor), records_(records), sources_(*records.sources()), observer_(observer) {}

  ParseResult read() {
    Resumption next = RESUME_DEFINITION;
    while (next != RESUME_NOWHERE) {
      next = cursor_.skipWhiteSpace() ? readDefinition() : resume(nullptr);
    }
    return cursor_.result();
  }

 private:
  // A name may come again: its statements are then added to its record, and the later access word
  // counts.
  Resumption readDefinition() {
    const std::string_view name = cursor_.word(NAME_STOPS);
    ParameterRecord& record = records_.findOrAdd(name, cursor_.position().line);
    if (record.source == 0) {
      record.source = sources_.beginDefinition(record.line);
    } else {
      sources_.beginAgain(record.source);
    }
    if (observer_ != nullptr) observer_->onDefinition(record, cursor_.position());
    cursor_.advance(name.size());
    if (readAccess(cursor_, record.access) && cursor_.expect("{")) return readBody(record);
    const Resumption next = resume(&record);
    return next == RESUME_STATEMENT ? readBody(record) : next;
  }

  Resumption readBody(ParameterRecord& record) {
    Resumption next = RESUME_STATEMENT;
    while (next == RESUME_STATEMENT) {
      const bool isMore = cursor_.skipWhiteSpace();
      if (isMore && cursor_.take("}")) {
        if (observer_ != nullptr) observer_->onDefinitionEnd(record, cursor_.position());
        return RESUME_DEFINITION;
      }
      if (!isMore || !readStatement(record)) next = resume(&record);
    }
    return next;
  }

  bool readStatement(ParameterRecord& record) {
    const std::string_view word = cursor_.word(KEYWORD_STOPS);
    const Keyword* const keyword = findWord(KEYWORDS, word);
    if (keyword == nullptr) return cursor_.fail(PARSE_SYNTAX_ERROR);
    const Position at = cursor_.position();
    if (observer_ != nullptr) observer_->onKeyword(record, keyword->word, at);
    cursor_.beginExcerpt();
    cursor_.advance(word.size());
    if (!keyword->read(cursor_, {at, sources_.nextNumber()}, record)) return false;
    sources_.add(at.line - record.line, cursor_.endExcerpt());
    if (observer_ != nullptr) observer_->onStatement(record, keyword->word, at, cursor_.position());
    return true;
  }

  // After a function that found nothing more to read: the text has ended, or something is wrong.
  Resumption resume(const ParameterRecord* record) {
    const bool isCutShort = cursor_.result() != PARSE_DONE || record != nullptr;
    return isCutShort && observer_ != nullptr ? observer_->onError(cursor_, record)
                                              : RESUME_NOWHERE;
  }

  TextCursor& cursor_;
  ParameterRecords& records_;
  StatementSources& sources_;
  ReadingObserver* observer_;
};

// Whether a diagnostic may name something in a line that was accepted.
bool hasWords(std::string_view line) {
  const size_t first = firstWord(line);
  return first < line.size() && line[first] != '#';
}

template <typename T, size_t N>
constexpr std::array<std::string_view, N> wordsOf(const T (&table)[N]) {
  std::array<std::string_view, N> words;
  for (size_t i = 0; i < N; ++i) words[i] = table[i].word;
  return words;
}

constexpr std::array ALL_ACCESS_WORDS = wordsOf(ACCESS_WORDS);
constexpr std::array ALL_KEYWORDS = wordsOf(KEYWORDS);

}  // namespace

std::span<const std::string_view> accessWords() { return ALL_ACCESS_WORDS; }

std::span<const std::string_view> statementKeywords() { return ALL_KEYWORDS; }

ParseResult readDefinitions(TextCursor& cursor, ParameterRecords& records,
                            ReadingObserver* observer) {
  return DefinitionReader(cursor, records, observer).read();
}

ParseResult readDefinitionText(TextCursor::NextLine nextLine, DefinitionText& text,
                               std::FILE* report) {
  uint32_t number = 0;
  const auto nextKept = [&, nextLine = std::move(nextLine)](std::string_view& line) {
    if (!nextLine(line)) return false;
    ++number;
    if (hasWords(line)) text.lines.add(number, line);
    return true;
  };
  TextCursor cursor(nextKept, text.records.arena());
  const ParseResult result = readDefinitions(cursor, text.records);
  if (result != PARSE_DONE && report != nullptr) {
    fprintf(report, "Error on line %u\n%s\n", number, parseResultMessage(result));
    printCaretLine(report, cursor.line(), cursor.position().column);
  }
  return result;
}

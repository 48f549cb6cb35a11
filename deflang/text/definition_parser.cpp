#include "deflang/text/definition_parser.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <string>
#include <utility>

#include "deflang/text/caret_line.h"
#include "deflang/text/cursor.h"
#include "deflang/text/default_reader.h"
#include "deflang/text/expression_reader.h"
#include "deflang/text/index_list_reader.h"
#include "deflang/text/range_reader.h"
#include "deflang/text/translation_reader.h"

namespace {

constexpr StopSet NAME_STOPS("[]");
constexpr StopSet ACCESS_STOPS("{");
constexpr StopSet KEYWORD_STOPS("({");

struct AccessWord {
  std::string_view word;
  accessCode_t code;
};

constexpr AccessWord ACCESS_WORDS[] = {
    {"index", ACCESS_INDEX}, {"ro", ACCESS_RO}, {"rostrict", ACCESS_ROSTRICT},
    {"wo", ACCESS_WO},       {"rw", ACCESS_RW},
};

// The statement that is being read.
struct Statement {
  Position keyword;
  ExpressionReader control;
  RangeReader range;
  DefaultReader defaultValue;
  TranslationReader translation;
  IndexListReader indexList;
};

template <auto READER>
void resetReader(Statement& statement) {
  (statement.*READER).reset();
}

// Reads on; a complete statement goes to the end of the record's list.
template <auto READER, auto LIST>
int readInto(Statement& statement, Cursor& cursor, ParameterRecord& record) {
  const int result = (statement.*READER).read(cursor);
  if (result == PARSE_DONE) (record.*LIST).add((statement.*READER).take(), cursor.memory());
  return result;
}

// The condition may end on a later line than its keyword's; the caret then marks the line.
void moveToStatement(const Statement& statement, Cursor& cursor) {
  const bool sameLine = cursor.position().line == statement.keyword.line;
  cursor.moveTo(sameLine ? statement.keyword.column : 0);
  cursor.skipWhiteSpace();
}

int readCtrlRO(Statement& statement, Cursor& cursor, ParameterRecord& record) {
  const int result = statement.control.read(cursor);
  if (result != PARSE_DONE) return result;
  if (record.access == ACCESS_WO) {
    moveToStatement(statement, cursor);
    return PARSE_INVALID_ACCESS;
  }
  record.ctrlRO.add(statement.control.take(), cursor.memory());
  return PARSE_DONE;
}

struct Keyword {
  std::string_view word;
  void (*reset)(Statement& statement);
  int (*read)(Statement& statement, Cursor& cursor, ParameterRecord& record);
};

constexpr Keyword KEYWORDS[] = {
    {"rangeValid", resetReader<&Statement::range>,
     readInto<&Statement::range, &ParameterRecord::rangeValid>},
    {"rangeDoc", resetReader<&Statement::range>,
     readInto<&Statement::range, &ParameterRecord::rangeDoc>},
    {"ctrlRO", resetReader<&Statement::control>, readCtrlRO},
    {"ctrlValid", resetReader<&Statement::control>,
     readInto<&Statement::control, &ParameterRecord::ctrlValid>},
    {"default", resetReader<&Statement::defaultValue>,
     readInto<&Statement::defaultValue, &ParameterRecord::defaults>},
    {"valueChange", resetReader<&Statement::translation>,
     readInto<&Statement::translation, &ParameterRecord::valueChange>},
    {"index", resetReader<&Statement::indexList>,
     readInto<&Statement::indexList, &ParameterRecord::indices>},
};

// The row of `word`, or null.
template <typename T, size_t N>
const T* findWord(const T (&table)[N], std::string_view word) {
  const T* const found = std::find_if(std::begin(table), std::end(table),
                                      [word](const T& row) { return row.word == word; });
  return found == std::end(table) ? nullptr : found;
}

// The first character that is no white space; NUL where there is none.
char firstCharacter(std::string_view line) {
  const auto first = std::find_if_not(line.begin(), line.end(), isWhiteSpace);
  return first == line.end() ? '\0' : *first;
}

bool isComment(std::string_view line) { return firstCharacter(line) == '#'; }

// Whether a diagnostic may point at something in a line that was accepted.
bool hasWords(std::string_view line) {
  const char first = firstCharacter(line);
  return first != '#' && first != '\0';
}

}  // namespace

// The place in the grammar. A record is known by its name between lines, as the records are the
// caller's.
struct DefinitionParser::State {
  // What comes next.
  enum stage_t { NAME, ACCESS, OPENING, BODY, STATEMENT };

  stage_t stage = NAME;
  std::string name;
  const Keyword* keyword = nullptr;
  Statement statement;

  int readLine(ParameterRecords& records, Cursor& cursor);
  int readStage(ParameterRecords& records, ParameterRecord*& record, Cursor& cursor);
  int readName(ParameterRecords& records, ParameterRecord*& record, Cursor& cursor);
  int readAccess(ParameterRecord& record, Cursor& cursor);
  int readOpening(Cursor& cursor);
  int readBody(Cursor& cursor);
  int readStatement(ParameterRecord& record, Cursor& cursor);
};

int DefinitionParser::State::readLine(ParameterRecords& records, Cursor& cursor) {
  const size_t nul = cursor.line().find('\0');
  if (nul != std::string_view::npos) {
    cursor.moveTo(nul);
    return PARSE_SYNTAX_ERROR;
  }
  ParameterRecord* record = stage == NAME ? nullptr : records.find(name);
  if (stage != NAME && record == nullptr) return PARSE_INTERNAL_ERROR;
  int result = PARSE_DONE;
  while (result == PARSE_DONE) result = readStage(records, record, cursor);
  return result;
}

int DefinitionParser::State::readStage(ParameterRecords& records, ParameterRecord*& record,
                                       Cursor& cursor) {
  switch (stage) {
    case NAME:
      return readName(records, record, cursor);
    case ACCESS:
      return readAccess(*record, cursor);
    case OPENING:
      return readOpening(cursor);
    case BODY:
      return readBody(cursor);
    default:
      return readStatement(*record, cursor);
  }
}

int DefinitionParser::State::readName(ParameterRecords& records, ParameterRecord*& record,
                                      Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  name = cursor.word(NAME_STOPS);
  record = &records.findOrAdd(name, cursor.position().line);
  cursor.advance(name.size());
  stage = ACCESS;
  return PARSE_DONE;
}

int DefinitionParser::State::readAccess(ParameterRecord& record, Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  const std::string_view word = cursor.word(ACCESS_STOPS);
  const AccessWord* const access = findWord(ACCESS_WORDS, word);
  if (access == nullptr) return PARSE_INVALID_ACCESS;
  record.access = access->code;
  cursor.advance(word.size());
  stage = OPENING;
  return PARSE_DONE;
}

int DefinitionParser::State::readOpening(Cursor& cursor) {
  const int result = cursor.expect("{");
  if (result == PARSE_DONE) stage = BODY;
  return result;
}

int DefinitionParser::State::readBody(Cursor& cursor) {
  if (!cursor.skipWhiteSpace()) return PARSE_CONTINUES;
  if (cursor.take("}")) {
    stage = NAME;
    return PARSE_DONE;
  }
  const std::string_view word = cursor.word(KEYWORD_STOPS);
  keyword = findWord(KEYWORDS, word);
  if (keyword == nullptr) return PARSE_SYNTAX_ERROR;
  keyword->reset(statement);
  statement.keyword = cursor.position();
  cursor.advance(word.size());
  stage = STATEMENT;
  return PARSE_DONE;
}

int DefinitionParser::State::readStatement(ParameterRecord& record, Cursor& cursor) {
  const int result = keyword->read(statement, cursor, record);
  if (result == PARSE_DONE) stage = BODY;
  return result;
}

DefinitionParser::DefinitionParser() : state_(std::make_unique<State>()) {}

DefinitionParser::~DefinitionParser() = default;

int DefinitionParser::parseLine(ParameterRecords& records, std::string_view line,
                                uint32_t lineNumber, size_t& column) {
  Cursor cursor(line, lineNumber, records.memory());
  const int result = isComment(line) ? PARSE_DONE : state_->readLine(records, cursor);
  column = cursor.column();
  return result == PARSE_CONTINUES ? PARSE_DONE : result;
}

void DefinitionParser::reset() { *state_ = {}; }

int acceptLine(DefinitionParser& parser, DefinitionText& text, std::string_view line,
               uint32_t lineNumber) {
  if (hasWords(line)) text.lines.add(lineNumber, line);
  size_t column = 0;
  const int result = parser.parseLine(text.records, line, lineNumber, column);
  if (result != PARSE_DONE) {
    fprintf(stderr, "Error on line %u\n%s\n", lineNumber, parseResultMessage(result));
    printCaretLine(stderr, line, column);
  }
  return result;
}

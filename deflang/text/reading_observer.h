// Reading observer: who follows the reading of a definition text.
//
// The records say what a text says, and no more. Whoever explains a text to its author also wants
// to know where each thing is, and goes on after an error.
#pragma once

#include "deflang/text/record.h"
#include "deflang/text/text_cursor.h"

/// Where the reading goes on after an error.
enum Resumption {
  RESUME_NOWHERE,     ///< it is over
  RESUME_STATEMENT,   ///< with the next statement of the definition, or its closing brace
  RESUME_DEFINITION,  ///< with the next definition
};

/// Told of each thing when it has been read. The references are valid as long as the records.
/// Whatever these functions raise ends the reading.
class ReadingObserver {
 public:
  ReadingObserver() = default;
  virtual ~ReadingObserver() = default;
  ReadingObserver(const ReadingObserver&) = delete;
  ReadingObserver& operator=(const ReadingObserver&) = delete;

  /// A definition begins: its name, which may have a record already, is at `at`. Its access word
  /// has not been read yet.
  virtual void onDefinition(const ParameterRecord& record, Position at) = 0;
  /// A statement of `record` begins: its keyword is at `at`.
  virtual void onKeyword(const ParameterRecord& record, std::string_view keyword, Position at) = 0;
  /// A statement of `record` is complete, from its keyword at `at` to the byte behind it.
  virtual void onStatement(const ParameterRecord& record, std::string_view keyword, Position at,
                           Position end) = 0;
  /// The definition is complete; its closing brace ends at `end`. Not called for one that the text
  /// leaves unfinished.
  virtual void onDefinitionEnd(const ParameterRecord& record, Position end) = 0;
  /// Something is wrong where the cursor is; or the text has ended within a definition, which is no
  /// fault to the grammar: the cursor's result is then PARSE_DONE. `record` is the definition that
  /// is open, or null.
  /// Whoever wants the reading to go on calls cursor.recover(), brings the cursor to the place
  /// where it is to go on, and says what comes there. RESUME_STATEMENT needs an open definition.
  virtual Resumption onError(TextCursor& cursor, const ParameterRecord* record) = 0;
};

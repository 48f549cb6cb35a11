// Definition grammar: a definition text into parameter records.
//
//   text       = { definition }
//   definition = NAME ACCESS "{" { statement } "}"
//   statement  = KEYWORD and what belongs to it, see statement_grammar.h
#pragma once

#include <cstdio>
#include <span>
#include <string_view>

#include "deflang/text/definition_text.h"
#include "deflang/text/reading_observer.h"
#include "deflang/text/text_cursor.h"

/// The words that may come behind a name, and those that a statement begins with; valid for good.
std::span<const std::string_view> accessWords();
std::span<const std::string_view> statementKeywords();

/// Reads definitions up to the end of the text, or up to the first error, into `records`. The
/// cursor has to be one on `records.arena()`. A definition that the text leaves unfinished keeps
/// its complete statements: from `gain rw { default { 1 } ctrlRO ( x` comes a record with the
/// default alone.
/// Returns the cursor's result: PARSE_DONE at the end of the text, also within a definition;
/// PARSE_INVALID_ACCESS for an unknown word after a name, and for "ctrlRO" in a "wo" record;
/// PARSE_SYNTAX_ERROR for everything else. After an error the cursor is where the caret belongs.
///
/// `observer`, where there is one, is told of what is read and asked how to go on after an error.
/// Once it has recovered, the result is that of the last part.
ParseResult readDefinitions(TextCursor& cursor, ParameterRecords& records,
                            ReadingObserver* observer = nullptr);

/// As readDefinitions(), from the lines that `nextLine` gives, into `text`, which is empty before.
/// Keeps the texts of the lines with words (not those that are blank or a comment). No line behind
/// the one with the error is asked for. Prints an error to `report`, unless that is null: the
/// line's number, the message, and the line with a caret under the column.
ParseResult readDefinitionText(TextCursor::NextLine nextLine, DefinitionText& text,
                               std::FILE* report = stderr);

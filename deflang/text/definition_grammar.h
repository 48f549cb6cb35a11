// Definition grammar: a definition text into parameter records.
//
//   text       = { definition }
//   definition = NAME ACCESS "{" { statement } "}"
//   statement  = KEYWORD and what belongs to it, see statement_grammar.h
#pragma once

#include "deflang/text/definition_text.h"
#include "deflang/text/text_cursor.h"

/// Reads definitions up to the end of the text, or up to what is wrong, into `records`, whose
/// memory is the cursor's. A definition that the text leaves unfinished keeps its complete
/// statements. Returns the cursor's result: PARSE_DONE; PARSE_INVALID_ACCESS for an unknown word
/// after a name or "ctrlRO" in a "wo" record; PARSE_SYNTAX_ERROR.
ParseResult readDefinitions(TextCursor& cursor, ParameterRecords& records);

/// As readDefinitions(), from the lines that `nextLine` gives; keeps the text of the lines with
/// words. Prints an error to standard error: the line's number, what is wrong, and the line with a
/// caret under the column.
ParseResult readDefinitionText(TextCursor::NextLine nextLine, DefinitionText& text);

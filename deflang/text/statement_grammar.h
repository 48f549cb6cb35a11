// Statement grammar: the statements of a definition, each from behind its keyword.
//
// Each function reads one statement up to and with its closing brace; white space and line ends may
// come between any two words. It returns true with the statement, whose texts and lists are in the
// cursor's memory; false where the text ends before (the cursor's result is PARSE_DONE) or where
// something does not fit (PARSE_SYNTAX_ERROR, the cursor at it). The statement is then of no use.
// The statement passed in is a fresh one.
#pragma once

#include "deflang/text/record.h"
#include "deflang/text/text_cursor.h"

/// { NAME, ... }: at least one name. Only white space, "," and "}" end a name. Whether it names an
/// index is for the builder.
bool readIndexList(TextCursor& cursor, IndexStatement& statement);

/// [ (CONDITION) ] { [ ITEM, ... ] }, for rangeValid and rangeDoc. An item is a quoted text, a
/// value, or two values with ".." between them; a value is a bare number or an expression in
/// parentheses: { 0..9, "auto", (width / 2)..(width) }. Whether a span goes upwards is for the
/// builder.
bool readRange(TextCursor& cursor, RangeStatement& statement);

/// [ (CONDITION) ] { VALUE }: a quoted text, a bare number or an expression in parentheses.
bool readDefault(TextCursor& cursor, DefaultStatement& statement);

/// { SOURCE -> TARGET }, each a quoted text or a bare number, which is kept in decimal: from
/// { 0x10 -> "off" } come "16" and "off". A negative number has to be quoted, because "-" ends a
/// bare one.
bool readTranslation(TextCursor& cursor, Translation& translation);

// Statement grammar: the statements of a definition, each from behind its keyword.
#pragma once

#include "deflang/text/record.h"
#include "deflang/text/text_cursor.h"

/// { NAME, ... }
bool readIndexList(TextCursor& cursor, IndexStatement& statement);

/// (CONDITION) { ITEM, ... }, for rangeValid and rangeDoc; without a condition, and without items.
/// An item is a quoted text, a value, or two values with ".." between them.
bool readRange(TextCursor& cursor, RangeStatement& statement);

/// (CONDITION) { VALUE }, also without a condition; the value may be a quoted text.
bool readDefault(TextCursor& cursor, DefaultStatement& statement);

/// { SOURCE -> TARGET }, each a quoted text or a bare number.
bool readTranslation(TextCursor& cursor, Translation& translation);

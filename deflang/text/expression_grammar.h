// Expression grammar: an expression in parentheses, and what is in quotes.
#pragma once

#include <string_view>

#include "deflang/expression/token.h"
#include "deflang/text/text_cursor.h"

/// Reads what is before `closing`, behind an opening sign that has been taken. It may go on
/// over any number of lines; everything belongs to it as it stands, but for the newline at the end
/// of a line on which it goes on. More than MAX_VALUE_BYTES are a syntax error.
bool readQuoted(TextCursor& cursor, char closing, std::string_view& text);

/// Reads from the opening parenthesis to its partner. It is a syntax error where no parenthesis
/// opens, or where something is neither operator nor operand. Whether operators and operands make
/// an expression is not looked at. A minus sign that can only belong to the number after it is part
/// of that number.
bool readExpression(TextCursor& cursor, Expression& expression);

// Expression grammar: an expression in parentheses, and what is in quotes.
#pragma once

#include <string_view>

#include "deflang/expression/token.h"
#include "deflang/text/text_cursor.h"

/// Reads up to `closing` and goes past it; the caller has taken the opening sign. The text may go
/// on over any number of lines: every byte belongs to it as it is written, except the newline at
/// the end of each line but the last. From `"one ` and `  two"` comes `one   two`. There is no
/// escape sign. Lines that are comments are passed over, as everywhere.
/// Returns true with `text` in the cursor's memory. Returns false where the definition text ends
/// before, with the cursor's result PARSE_DONE; and with PARSE_SYNTAX_ERROR for more than
/// MAX_VALUE_BYTES and for a NUL byte.
bool readQuoted(TextCursor& cursor, char closing, std::string_view& text);

/// Reads from the opening parenthesis to its partner; white space may come before it. Whether the
/// operators and operands make an expression is not looked at: Program::compile() does that.
///
///   (mode == -3)           the tokens mode, == and -3
///   (x - 3)                the tokens x, - and 3
///   (gain[ 2 ] * (a + 1))  the tokens gain[2], *, (, a, +, 1 and ); the outer pair is left out
///
/// A minus sign is part of the number behind it at the start and after an operator.
/// Returns true with `expression` in the cursor's memory. Returns false where the text ends before,
/// with the cursor's result PARSE_DONE; and with PARSE_SYNTAX_ERROR where no parenthesis opens,
/// something is neither operator nor operand, or a quoted text or an index value has more than
/// MAX_VALUE_BYTES. The expression has no limit of length or depth; the time is linear.
bool readExpression(TextCursor& cursor, Expression& expression);

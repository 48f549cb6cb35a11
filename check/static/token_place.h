// Token places: which bytes of a text a token or a value has.
#pragma once

#include <string_view>

#include "check/text/finding.h"
#include "check/text/source_text.h"
#include "deflang/text/record.h"

/// The bytes of a token: a quoted text with its quotes, a name with its index values, a number with
/// its sign. Only those of the line where it begins.
TextPlace tokenPlace(const SourceText& source, const Token& token);

/// The bytes of a bare number or a quoted text that begins at `at`; of an expression in parentheses
/// its opening one.
TextPlace valuePlace(const SourceText& source, Position at);

/// The bytes of a range item, a span with both ends where the upper one is one token.
TextPlace itemPlace(const SourceText& source, const RangeItem& item);

/// The bytes of the target of `translation`; of its source where the target is on another line.
TextPlace targetPlace(const SourceText& source, const Translation& translation);

/// The text at a place.
std::string_view textAt(const SourceText& source, const TextPlace& place);

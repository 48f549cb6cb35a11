// Devices of any size, to measure on.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "database/database.h"
#include "deflang/text/definition_text.h"

/// `count` parameters of the kinds that devices have: texts, numbers, ranges and conditions that
/// follow others, translations.
std::string mixedText(int64_t count);

/// The parameter "limit" and `count` others whose ranges follow it.
std::string fanText(int64_t count);

/// The parameter "limit" and one other with `count` instances whose ranges follow it.
std::string indexText(int64_t count);

/// The records of a text without mistakes.
DefinitionText read(std::string_view text);

/// Builds a text without mistakes.
void build(const DefinitionText& text, Database& database);

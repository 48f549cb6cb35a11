// Statement numbers: what the builder makes of each statement of a text, with given constants.
#pragma once

#include <map>
#include <string>
#include <string_view>

#include "coverage/text_coverage.h"
#include "sw/parm/build/definition_registry.h"
#include "sw/parm/statement_lines.h"

/// By name, the lists of a definition: in place of lines the numbers of TextCoverage::numbered().
using StatementNumbers = std::map<std::string, StatementLines, std::less<>>;

/// Builds the text of `coverage` once more, with the constants of `constants`, with which it can be
/// built. Each list is one for one that of a definition that was built from the text itself.
StatementNumbers statementNumbers(const TextCoverage& coverage,
                                  const DefinitionRegistry& constants);

// Definition statements: all that a definition holds, as statements of a definition text.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sw/parm/statement_lines.h"

/// A statement, and where its keyword is in the text.
struct DefinitionStatement {
  uint32_t line = 0;  ///< from 1
  std::string text;   ///< as statement_text.h writes it
};

/// The statements of an index: ctrlValid, then rangeValid in the order in which they are asked,
/// that without a condition last, then valueChange.
std::vector<DefinitionStatement> definitionStatements(const IndexDef& index,
                                                      const LinesOfDefinition& lines);
/// As of an index, and then rangeDoc, ctrlRO (that of the access word left out) and default.
std::vector<DefinitionStatement> definitionStatements(const ParmDef& parm,
                                                      const LinesOfDefinition& lines);

// Source statements: a statement of a definition text, as its author wrote it.
#pragma once

#include <cstdint>
#include <string>

/// A statement as it is written, but that white space between words is one blank, and that comments
/// are left out, and the line ends within a quoted text.
struct SourceStatement {
  uint32_t line = 0;  ///< of its keyword, from 1; 0 for no statement
  std::string text;
  bool operator==(const SourceStatement& other) const = default;
};

/// Where a statement is.
struct StatementPlace {
  uint32_t line = 0;    ///< of its keyword, from 1
  uint32_t source = 0;  ///< where StatementSources has it
};

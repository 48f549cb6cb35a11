// Text layout: where each definition and statement of a text is.
#pragma once

#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "deflang/text/record.h"

/// From the first byte to the one behind the last.
struct TextExtent {
  Position from;
  Position to;
};

/// One statement.
struct StatementLayout {
  std::string_view keyword;  ///< "rangeValid"
  TextExtent extent;         ///< from its keyword to its closing brace
};

/// One definition of a name; a name may have several.
struct DefinitionLayout {
  const ParameterRecord* record = nullptr;
  Position name;
  TextExtent extent;  ///< from the name to the closing brace; empty where the text has none
  std::vector<StatementLayout> statements = {};  ///< in the order of the text
};

/// What the reading of a text tells of places.
struct TextLayout {
  std::vector<DefinitionLayout> definitions;  ///< in the order of the text

  /// Where the name of `record` first is.
  [[nodiscard]] Position nameOf(const ParameterRecord& record) const;
};

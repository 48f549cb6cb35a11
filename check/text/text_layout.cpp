#include "check/text/text_layout.h"

#include <cassert>

const StatementLayout& TextLayout::statement(const ParameterRecord& record,
                                             std::string_view keyword, size_t place) const {
  const StatementLayout* found = nullptr;
  for (const DefinitionLayout& definition : definitions) {
    if (definition.record != &record) continue;
    for (const StatementLayout& statement : definition.statements) {
      if (statement.keyword == keyword && place-- == 0) found = &statement;
    }
  }
  assert(found != nullptr);
  return *found;
}

Position TextLayout::nameOf(const ParameterRecord& record) const {
  for (const DefinitionLayout& definition : definitions) {
    if (definition.record == &record) return definition.name;
  }
  return {};
}

#include "check/text/text_layout.h"

Position TextLayout::nameOf(const ParameterRecord& record) const {
  for (const DefinitionLayout& definition : definitions) {
    if (definition.record == &record) return definition.name;
  }
  return {};
}

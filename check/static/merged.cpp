#include "check/static/static_checks.h"

namespace {

TextPlace nameOf(const DefinitionLayout& layout) {
  const auto length = static_cast<uint32_t>(layout.record->name.size());
  return {layout.name.line, layout.name.column, length};
}

}  // namespace

void checkMerged(StaticContext& context) {
  for (const DefinitionLayout& layout : context.checked().text.layout.definitions) {
    const NamedDefinition* const definition = context.find(layout.record->name);
    if (definition == nullptr || definition->name == nameOf(layout)) continue;
    context.add({"merged",
                 nameOf(layout),
                 inQuotes(layout.record->name) +
                     " is defined already, and the statements of both definitions count, and the "
                     "last access word; write "
                     "them as one, or choose another name",
                 {{definition->name, "defined here"}}});
  }
}

#include "sw/parm/build/definition_draft.h"

#include <utility>

DefinitionDraft::DefinitionDraft(BuildContext& context, const ParameterRecord& record)
    : context_(context), record_(record) {
  parts.name = record.name;
  lines.definition = {record.line, record.source};
}

std::string DefinitionDraft::recordText() const {
  return "Parameter is \"" + std::string(record_.name) + '"';
}

Program DefinitionDraft::keep(const Expression& expression, Compiled compiled) {
  compiled.program.rebase(compiled.variables, parts.variables);
  kept_.push_back(&expression);
  return std::move(compiled.program);
}

void DefinitionDraft::report(Severity severity, uint32_t code, Position at, std::string text) {
  if (at.line == NO_POSITION) text = recordText();
  context_.report(severity, code, at, std::move(text));
}

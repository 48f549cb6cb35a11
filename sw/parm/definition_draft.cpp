#include "sw/parm/definition_draft.h"

#include <cassert>
#include <utility>

DefinitionDraft::DefinitionDraft(BuildContext& context, const ParameterRecord& record)
    : context_(context), record_(record) {
  parts.name = record.name;
}

std::string DefinitionDraft::recordText() const { return "Parameter is \"" + record_.name + '"'; }

Program DefinitionDraft::keep(const Expression& expression) {
  Program program;
  const int failed = Program::compile(expression, parts.variables, program);
  assert(failed == 0);
  kept_.push_back(&expression);
  return program;
}

void DefinitionDraft::report(severity_t severity, uint32_t code, Position at, std::string text) {
  if (at.line == NO_POSITION) text = recordText();
  context_.report(severity, code, at, std::move(text));
}

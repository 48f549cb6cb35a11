#include "sw/parm/build/build_indices.h"

#include <string>

namespace {

// The definition of a named index, or null.
const IndexDef* resolve(const IndexName& index, DefinitionDraft& draft) {
  const ParameterRecord* const named = draft.context().findRecord(index.name);
  if (named == nullptr) {
    draft.error(DIAG_UNDEFINED_INDEX, index.at, std::string(index.name));
    return nullptr;
  }
  if (named->access != ACCESS_INDEX) {
    draft.error(DIAG_INVALID_INDEX, index.at);
    return nullptr;
  }
  return draft.context().registry().findIndex(index.name);
}

void reportMissing(const IndexName& index, BuildContext& context) {
  if (context.checkOnly()) return;
  context.reportLine("Internal error: Could not find index \"" + std::string(index.name) + '"');
  context.note(-1);
}

}  // namespace

void buildIndices(DefinitionDraft& draft) {
  const StatementList<IndexStatement>& statements = draft.record().indices;
  if (statements.empty()) return;
  for (const IndexName& index : statements.front()) {
    const IndexDef* const definition = resolve(index, draft);
    if (definition != nullptr) {
      draft.parm.indices.push_back(definition);
    } else {
      reportMissing(index, draft.context());
    }
  }
  const auto second = std::next(statements.begin());
  if (second != statements.end()) draft.warn(DIAG_MULTIPLE_INDEX_STATEMENTS, second->front().at);
}

void warnAboutIndices(DefinitionDraft& draft) {
  const StatementList<IndexStatement>& statements = draft.record().indices;
  if (!statements.empty()) draft.warn(DIAG_INDEX_WITH_INDICES, statements.front().front().at);
}

// Definition drafts: one record on its way to a definition.
#pragma once

#include <string>
#include <vector>

#include "deflang/expression/program.h"
#include "deflang/text/record.h"
#include "sw/parm/build/build_context.h"
#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"
#include "sw/parm/statement_lines.h"

/// Filled by the builder's steps, each of which takes one kind of the record's statements:
///
///   DefinitionDraft draft(context, record);
///   buildRangeValid(draft);  // and the other steps
///   checkReferences(record, draft.kept(), context);
///   ParmDef parm(std::move(draft.parts), std::move(draft.parm));
///
/// `context` and `record` have to outlive it.
class DefinitionDraft {
 public:
  /// An empty draft with the name of `record`.
  DefinitionDraft(BuildContext& context, const ParameterRecord& record);
  DefinitionDraft(const DefinitionDraft&) = delete;
  DefinitionDraft& operator=(const DefinitionDraft&) = delete;

  /// What all drafts of a build share.
  [[nodiscard]] BuildContext& context() { return context_; }
  /// The record that the definition is made of.
  [[nodiscard]] const ParameterRecord& record() const { return record_; }

  /// Raises a warning about the record at a place in the text. Where there is no place (NO_POSITION
  /// as line), the text of the diagnostic is recordText().
  void warn(uint32_t code, Position at) { report(SEVERITY_WARNING, code, at, {}); }
  /// Raises an error in the same way; where there is a place, `text` is the text of the diagnostic.
  /// The build then fails with -1 unless it had failed before.
  void error(uint32_t code, Position at, std::string text = {}) {
    report(SEVERITY_ERROR, code, at, std::move(text));
  }
  /// The text that says which record a diagnostic is about: `Parameter is "gain"`, also for an
  /// index.
  [[nodiscard]] std::string recordText() const;

  /// Takes the program of `expression`, which is evaluated in each situation anew. Its names become
  /// variables of the definition: a new name gets the next slot. Returns the program with the slots
  /// of `parts.variables`, for the caller to put where it belongs.
  Program keep(const Expression& expression, Compiled compiled);
  /// Every expression that was kept, in that order; checkReferences() then looks at its names. The
  /// expressions are those of the record.
  [[nodiscard]] const std::vector<const Expression*>& kept() const { return kept_; }

  DefinitionParts parts;  ///< what an index and a parameter have; moved out at the end
  ParmParts parm;         ///< what only a parameter has; of no use for an index
  StatementLines lines;   ///< of what `parts` and `parm` have

 private:
  void report(Severity severity, uint32_t code, Position at, std::string text);

  BuildContext& context_;
  const ParameterRecord& record_;
  std::vector<const Expression*> kept_;
};

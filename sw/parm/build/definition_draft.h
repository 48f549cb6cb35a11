// Definition drafts: one record on its way to a definition.
#pragma once

#include <string>
#include <vector>

#include "deflang/expression/program.h"
#include "deflang/text/record.h"
#include "sw/parm/build/build_context.h"
#include "sw/parm/index_def.h"
#include "sw/parm/parm_def.h"

/// Filled by the builder's steps, each of which takes one kind of the record's statements.
class DefinitionDraft {
 public:
  DefinitionDraft(BuildContext& context, const ParameterRecord& record);
  DefinitionDraft(const DefinitionDraft&) = delete;
  DefinitionDraft& operator=(const DefinitionDraft&) = delete;

  [[nodiscard]] BuildContext& context() { return context_; }
  [[nodiscard]] const ParameterRecord& record() const { return record_; }

  /// Raises a diagnostic about the record. One without a line names the record instead.
  void warn(uint32_t code, Position at) { report(SEVERITY_WARNING, code, at, {}); }
  void error(uint32_t code, Position at, std::string text = {}) {
    report(SEVERITY_ERROR, code, at, std::move(text));
  }
  /// The text that says which record a diagnostic is about.
  [[nodiscard]] std::string recordText() const;

  /// Takes the program of `expression`, which is decided in each situation anew. Its names become
  /// variables of the definition.
  Program keep(const Expression& expression, Compiled compiled);
  /// Every expression that was kept.
  [[nodiscard]] const std::vector<const Expression*>& kept() const { return kept_; }

  DefinitionParts parts;
  ParmParts parm;

 private:
  void report(Severity severity, uint32_t code, Position at, std::string text);

  BuildContext& context_;
  const ParameterRecord& record_;
  std::vector<const Expression*> kept_;
};

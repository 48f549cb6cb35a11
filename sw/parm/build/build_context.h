// The build context: what all steps of the definition builder share.
#pragma once

#include <string>
#include <string_view>

#include "deflang/text/diagnostics.h"
#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"
#include "sw/parm/build/definition_registry.h"

/// One for each run of buildDefinitions(). The steps reach it through DefinitionDraft::context().
/// It owns none of what it is given; all of that has to outlive it.
class BuildContext {
 public:
  /// `checkOnly` tells that the definitions are made for their diagnostics alone; `registry` is
  /// then a CheckOnlyRegistry.
  BuildContext(DiagnosticCollector& diagnostics, const ParameterRecords& records,
               const LineTexts& lines, DefinitionRegistry& registry, bool checkOnly)
      : diagnostics_(diagnostics),
        records_(records),
        lines_(lines),
        registry_(registry),
        checkOnly_(checkOnly) {}

  /// The records of the text; they do not change while definitions are built.
  [[nodiscard]] const ParameterRecords& records() const { return records_; }
  /// What the definitions are registered with.
  [[nodiscard]] DefinitionRegistry& registry() { return registry_; }
  /// Whether only the diagnostics are wanted.
  [[nodiscard]] bool checkOnly() const { return checkOnly_; }

  /// The record that defines the base name `name`, or null. A record without an access word, which
  /// only the end of a text leaves behind, defines no name and is not found.
  [[nodiscard]] const ParameterRecord* findRecord(std::string_view name) const;
  /// The value of the command-line constant `name`, valid as long as the registry; or null where
  /// `name` is no constant. The text wins over the command line: a name that the text defines, with
  /// index values or without, is no constant. Neither is a video standard name or sw::this.
  [[nodiscard]] const std::string* findConstant(std::string_view name) const;

  /// Raises a diagnostic at a place in the text (NO_POSITION as line and column for none); `text`
  /// is printed behind the message of `code`. An error is also noted as the result -1. A step that
  /// has a draft calls DefinitionDraft::warn() or error() instead.
  void report(Severity severity, uint32_t code, Position at, std::string text);
  /// Adds a line about the text as a whole, which is printed before all diagnostics.
  void reportLine(std::string line) { diagnostics_.addLine(std::move(line)); }
  /// Notes the result of a step: 0, or why it failed. Later steps are done all the same, so that
  /// one run reports everything that is wrong; only the first failure is kept.
  void note(int stepResult) {
    if (result_ == 0) result_ = stepResult;
  }
  /// The first result that was noted and was not 0; 0 where all steps succeeded.
  [[nodiscard]] int result() const { return result_; }

 private:
  DiagnosticCollector& diagnostics_;
  const ParameterRecords& records_;
  const LineTexts& lines_;
  DefinitionRegistry& registry_;
  bool checkOnly_;
  int result_ = 0;
};

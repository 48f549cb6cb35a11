// The build context: what all steps of the definition builder share.
#pragma once

#include <string>
#include <string_view>

#include "deflang/text/diagnostics.h"
#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"
#include "sw/parm/build/definition_registry.h"

class BuildContext {
 public:
  /// `checkOnly` tells that the definitions are made for their diagnostics alone.
  BuildContext(DiagnosticCollector& diagnostics, const ParameterRecords& records,
               const LineTexts& lines, DefinitionRegistry& registry, bool checkOnly)
      : diagnostics_(diagnostics),
        records_(records),
        lines_(lines),
        registry_(registry),
        checkOnly_(checkOnly) {}

  [[nodiscard]] const ParameterRecords& records() const { return records_; }
  [[nodiscard]] DefinitionRegistry& registry() { return registry_; }
  [[nodiscard]] bool checkOnly() const { return checkOnly_; }

  /// The record that defines `name`, or null. A record that never got its access word defines
  /// nothing.
  [[nodiscard]] const ParameterRecord* findRecord(std::string_view name) const;
  /// The value of a name that is a command-line constant, or null. A name that the text defines,
  /// with or without index values, is none, nor is a video standard name or the value under test.
  [[nodiscard]] const std::string* findConstant(std::string_view name) const;

  /// Raises a diagnostic; an error is also a failed step.
  void report(Severity severity, uint32_t code, Position at, std::string text);
  /// Notes the result of a step.
  void note(int stepResult) {
    if (result_ == 0) result_ = stepResult;
  }
  /// The first result of a step that was not 0, or 0.
  [[nodiscard]] int result() const { return result_; }

 private:
  DiagnosticCollector& diagnostics_;
  const ParameterRecords& records_;
  const LineTexts& lines_;
  DefinitionRegistry& registry_;
  bool checkOnly_;
  int result_ = 0;
};

// Diagnostics: what is wrong with a definition text, collected while it is built, printed at once.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "deflang/expression/token.h"
#include "deflang/text/line_texts.h"

/// The codes that the builder raises.
enum DiagnosticCode : uint32_t {
  DIAG_MULTIPLE_INDEX_STATEMENTS = 3,
  DIAG_UNDEFINED_INDEX = 4,
  DIAG_INVALID_INDEX = 5,
  DIAG_UNDEFINED_VARIABLE = 6,
  DIAG_INDEX_MISMATCH = 7,
  DIAG_CONDITION_ZERO = 8,
  DIAG_CONDITIONS_ZERO = 9,
  DIAG_CONDITIONS_NON_ZERO = 10,
  DIAG_CONFLICTING_CONDITIONS = 11,
  DIAG_INDEX_WITH_INDICES = 12,
  DIAG_MULTIPLE_TRANSLATIONS = 13,
  DIAG_INVALID_RANGE = 14,
  DIAG_INVALID_EXPRESSION = 15,
  DIAG_DUPLICATE_CONDITIONS = 16,
};

/// The message of a code; "Unknown error." for a code that is not in the table.
const char* diagnosticMessage(uint32_t code);

enum Severity { SEVERITY_ERROR, SEVERITY_WARNING };

/// Stands for a line or column that a diagnostic does not have.
constexpr uint32_t NO_POSITION = UINT32_MAX;

/// The place of the token at `position` (from 1; 0 is where the check of an empty expression fails)
/// of `expression`, or NO_POSITION twice where it has no such token.
Position tokenPosition(const Expression& expression, size_t position);

struct Diagnostic {
  Severity severity;
  uint32_t code;
  Position at;  ///< NO_POSITION twice for a report without a line
  std::string text;
};

/// The diagnostics of one text in the order raised, with the text of each line that they name.
class DiagnosticCollector {
 public:
  /// Raises `code` at the token at `position` of `expression`, see tokenPosition().
  void add(Severity severity, uint32_t code, const Expression& expression, size_t position,
           const LineTexts& lines, std::string text = {});
  /// Raises `code` at a place in the text.
  void add(Severity severity, uint32_t code, Position at, const LineTexts& lines,
           std::string text = {});
  [[nodiscard]] const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }
  /// Writes every diagnostic: severity and line, message and extra text, the line with a caret
  /// under the column.
  void print(FILE* out) const;

 private:
  std::vector<Diagnostic> diagnostics_;
  std::map<uint32_t, std::string> lines_;
};

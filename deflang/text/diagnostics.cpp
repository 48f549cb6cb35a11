#include "deflang/text/diagnostics.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "deflang/text/caret_line.h"

namespace {

struct DiagnosticMessage {
  DiagnosticCode code;
  const char* message;
};

constexpr DiagnosticMessage MESSAGES[] = {
    {DIAG_MULTIPLE_INDEX_STATEMENTS,
     "Mulitple index definitions. Only first index definition will be used."},
    {DIAG_UNDEFINED_INDEX, "Undefined index."},
    {DIAG_INVALID_INDEX, "Invalid index."},
    {DIAG_UNDEFINED_VARIABLE, "Undefined variable."},
    {DIAG_INDEX_MISMATCH, "Index mismatch."},
    {DIAG_CONDITION_ZERO, "Conditional evaluates to 0."},
    {DIAG_CONDITIONS_ZERO, "Multiple instances of conditional evaluating to 0."},
    {DIAG_CONDITIONS_NON_ZERO, "Multiple instances of conditional evaluating to non-0."},
    {DIAG_CONFLICTING_CONDITIONS, "Conflicting conditionals."},
    {DIAG_INDEX_WITH_INDICES, "An index has defined indices."},
    {DIAG_MULTIPLE_TRANSLATIONS, "A value has multiple translations."},
    {DIAG_INVALID_RANGE, "Invalid range specifier."},
    {DIAG_INVALID_EXPRESSION, "Invalid expression."},
    {DIAG_DUPLICATE_CONDITIONS, "Duplicate conditionals."},
};

constexpr Position NOWHERE = {NO_POSITION, NO_POSITION};

}  // namespace

Position tokenPosition(const Expression& expression, size_t number) {
  const size_t token = std::max<size_t>(number, 1) - 1;
  return token < expression.tokens.size() ? expression.tokens[token].at : NOWHERE;
}

const char* diagnosticMessage(uint32_t code) {
  for (const DiagnosticMessage& entry : MESSAGES) {
    if (entry.code == code) return entry.message;
  }
  return "Unknown error.";
}

void DiagnosticCollector::add(Severity severity, uint32_t code, const Expression& expression,
                              size_t number, const LineTexts& lines, std::string text) {
  add(severity, code, tokenPosition(expression, number), lines, std::move(text));
}

void DiagnosticCollector::add(Severity severity, uint32_t code, Position at, const LineTexts& lines,
                              std::string text) {
  diagnostics_.push_back({severity, code, at, std::move(text)});
  if (const std::optional<std::string_view> line = lines.find(at.line)) {
    lines_.try_emplace(at.line, *line);
  }
}

void DiagnosticCollector::print(FILE* out) const {
  for (const std::string& line : textLines_) fprintf(out, "%s\n", line.c_str());
  for (const Diagnostic& diagnostic : diagnostics_) {
    fputs(diagnostic.severity == SEVERITY_WARNING ? "Warning" : "Error", out);
    if (diagnostic.at.line != NO_POSITION) fprintf(out, " on line %u", diagnostic.at.line);
    fprintf(out, "\n%s", diagnosticMessage(diagnostic.code));
    if (!diagnostic.text.empty()) fprintf(out, " %s", diagnostic.text.c_str());
    fputc('\n', out);
    const auto line = lines_.find(diagnostic.at.line);
    if (line != lines_.end()) printCaretLine(out, line->second, diagnostic.at.column);
  }
}

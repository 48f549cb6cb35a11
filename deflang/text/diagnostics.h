// Diagnostics: what is wrong with a definition text, collected while it is built, printed at once.
#pragma once

#include <cstdint>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "deflang/expression/token.h"
#include "deflang/text/line_texts.h"

/// The codes that the builder raises, as ostrel-definitions(5) numbers them. W marks a warning, E
/// an error.
enum DiagnosticCode : uint32_t {
  DIAG_MULTIPLE_INDEX_STATEMENTS = 3,  ///< W: a parameter has a second index statement
  DIAG_UNDEFINED_INDEX = 4,            ///< E: the text does not define the index
  DIAG_INVALID_INDEX = 5,              ///< E: an index statement names a parameter
  DIAG_UNDEFINED_VARIABLE = 6,         ///< E: nothing defines a name of an expression
  DIAG_INDEX_MISMATCH = 7,             ///< E: index values or an index do not fit
  DIAG_CONDITION_ZERO = 8,             ///< W: a condition is never true
  DIAG_CONDITIONS_ZERO = 9,            ///< W: two of a kind are never true
  DIAG_CONDITIONS_NON_ZERO = 10,       ///< W: two of a kind are always true; E: two such defaults
  DIAG_CONFLICTING_CONDITIONS = 11,    ///< E: one is always true, another never
  DIAG_INDEX_WITH_INDICES = 12,        ///< W: an index has an index statement
  DIAG_MULTIPLE_TRANSLATIONS = 13,     ///< E: one source has two targets
  DIAG_INVALID_RANGE = 14,             ///< E: an item is neither value nor span
  DIAG_INVALID_EXPRESSION = 15,        ///< E: an expression is malformed or never has a value
  DIAG_DUPLICATE_CONDITIONS = 16,      ///< E: two defaults have the same run-time condition
};

/// The message of a code, as it is printed; "Unknown error." for a number that is no
/// DiagnosticCode. Never null, valid for good.
const char* diagnosticMessage(uint32_t code);

/// An error fails the build. A warning does not, but the step that raises it may: see
/// buildRangeValid().
enum Severity { SEVERITY_ERROR, SEVERITY_WARNING };

/// The line and the column of a diagnostic that has no place in the text.
constexpr uint32_t NO_POSITION = UINT32_MAX;

/// Where the token `number` of `expression` is in the text. Tokens count from 1, as
/// Program::compile() counts them; 0 means the first one. NO_POSITION as line and column where
/// there is no such token, as in an empty expression.
Position tokenPosition(const Expression& expression, size_t number);

/// One report about a text.
struct Diagnostic {
  Severity severity;
  uint32_t code;     ///< a DiagnosticCode
  Position at;       ///< NO_POSITION as line and column for a report without a place
  std::string text;  ///< printed behind the message; may be empty
};

/// The diagnostics of one text in the order raised. Keeps a copy of each line that they name, so
/// that the LineTexts may go before print(). Adding raises std::bad_alloc where memory is
/// exhausted. What is printed for an error with a text:
///
///   Error on line 3
///   Undefined variable. nobody
///     ctrlRO (nobody)
///             ^
class DiagnosticCollector {
 public:
  /// Raises `code` at the token `number` of `expression`, see tokenPosition().
  void add(Severity severity, uint32_t code, const Expression& expression, size_t number,
           const LineTexts& lines, std::string text = {});
  /// Raises `code` at a place in the text, or without one (NO_POSITION as line and column).
  /// `lines` gives the text of that line; where it has none, no line and no caret are printed.
  void add(Severity severity, uint32_t code, Position at, const LineTexts& lines,
           std::string text = {});
  /// Adds a line about the text as a whole, which is printed before all diagnostics.
  void addLine(std::string line) { textLines_.push_back(std::move(line)); }
  /// The lines of addLine(), in that order; valid until the next one.
  [[nodiscard]] const std::vector<std::string>& textLines() const { return textLines_; }
  /// All diagnostics in the order raised; valid until the next add().
  [[nodiscard]] const std::vector<Diagnostic>& diagnostics() const { return diagnostics_; }
  /// Writes the lines of addLine(), and every diagnostic: severity and line, message and text, the
  /// line with a caret under the column. A failed write is not reported.
  void print(FILE* out) const;

 private:
  std::vector<std::string> textLines_;
  std::vector<Diagnostic> diagnostics_;
  std::map<uint32_t, std::string> lines_;  // by number: each line once, however many name it
};

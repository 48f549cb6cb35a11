#include "deflang/text/diagnostics.h"

#include <gtest/gtest.h>

#include "deflang/expression/operators.h"
#include "tests/support/print.h"

namespace {

constexpr Position NOWHERE = {NO_POSITION, NO_POSITION};

std::string printedText(const DiagnosticCollector& diagnostics) {
  return printed([&diagnostics](FILE* out) { diagnostics.print(out); });
}

LineTexts sampleLines() {
  LineTexts lines;
  lines.add(1, "gain rw {\n");
  lines.add(2, "  ctrlRO ( mode ==\n");
  lines.add(3, "2 ) }");
  return lines;
}

// The condition in the sample lines.
Expression sampleExpression() {
  static constexpr Token tokens[] = {
      {.at = {2, 11}, .kind = TOKEN_VARIABLE, .number = 0, .text = "mode"},
      {.at = {2, 16}, .kind = OP_EQUAL, .number = 0, .text = ""},
      {.at = {3, 0}, .kind = TOKEN_NUMBER, .number = 2, .text = ""}};
  return {tokens};
}

TEST(DiagnosticMessage, IsThereForEveryCode) {
  struct Case {
    uint32_t code;
    const char* message;
  };
  const Case cases[] = {
      {0, "Unknown error."},
      {1, "Unknown error."},
      {2, "Unknown error."},
      {3, "Mulitple index definitions. Only first index definition will be used."},
      {4, "Undefined index."},
      {5, "Invalid index."},
      {6, "Undefined variable."},
      {7, "Index mismatch."},
      {8, "Conditional evaluates to 0."},
      {9, "Multiple instances of conditional evaluating to 0."},
      {10, "Multiple instances of conditional evaluating to non-0."},
      {11, "Conflicting conditionals."},
      {12, "An index has defined indices."},
      {13, "A value has multiple translations."},
      {14, "Invalid range specifier."},
      {15, "Invalid expression."},
      {16, "Duplicate conditionals."},
      {17, "Unknown error."},
      {UINT32_MAX, "Unknown error."},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.code);
    EXPECT_STREQ(diagnosticMessage(c.code), c.message);
  }
}

TEST(Diagnostics, NameTheLineAndMarkTheColumn) {
  const LineTexts lines = sampleLines();
  DiagnosticCollector diagnostics;
  diagnostics.add(SEVERITY_ERROR, DIAG_INVALID_EXPRESSION, {2, 11}, lines);
  EXPECT_EQ(printedText(diagnostics),
            "Error on line 2\n"
            "Invalid expression.\n"
            "  ctrlRO ( mode ==\n"
            "           ^\n");
}

TEST(Diagnostics, AddTheNewlineThatALineLacks) {
  const LineTexts lines = sampleLines();
  DiagnosticCollector diagnostics;
  diagnostics.add(SEVERITY_WARNING, DIAG_CONDITION_ZERO, {3, 0}, lines);
  EXPECT_EQ(printedText(diagnostics),
            "Warning on line 3\n"
            "Conditional evaluates to 0.\n"
            "2 ) }\n"
            "^\n");
}

TEST(Diagnostics, WithoutALineHaveOnlyTheirSeverity) {
  const LineTexts lines = sampleLines();
  DiagnosticCollector diagnostics;
  diagnostics.add(SEVERITY_ERROR, DIAG_DUPLICATE_CONDITIONS, NOWHERE, lines,
                  "Parameter is \"gain\"");
  diagnostics.add(SEVERITY_WARNING, 99, NOWHERE, lines);
  EXPECT_EQ(printedText(diagnostics),
            "Error\n"
            "Duplicate conditionals. Parameter is \"gain\"\n"
            "Warning\n"
            "Unknown error.\n");
}

TEST(Diagnostics, OfAnUnknownLineHaveNoCaret) {
  DiagnosticCollector diagnostics;
  diagnostics.add(SEVERITY_ERROR, DIAG_INVALID_INDEX, {7, 3}, sampleLines(), "chan");
  EXPECT_EQ(printedText(diagnostics),
            "Error on line 7\n"
            "Invalid index. chan\n");
}

TEST(Diagnostics, TakeTheirPlaceFromATokenOfAnExpression) {
  struct Case {
    Expression expression;
    size_t position;
    Position at;
  };
  const Case cases[] = {
      {sampleExpression(), 1, {2, 11}},
      {sampleExpression(), 3, {3, 0}},
      {sampleExpression(), 4, NOWHERE},
      {sampleExpression(), SIZE_MAX, NOWHERE},
      {sampleExpression(), 0, {2, 11}},
      {{}, 0, NOWHERE},
      {{}, 1, NOWHERE},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.position);
    DiagnosticCollector diagnostics;
    diagnostics.add(SEVERITY_ERROR, DIAG_INVALID_EXPRESSION, c.expression, c.position,
                    sampleLines(), "text");
    ASSERT_EQ(diagnostics.diagnostics().size(), 1U);
    const Diagnostic& diagnostic = diagnostics.diagnostics().front();
    EXPECT_EQ(diagnostic.severity, SEVERITY_ERROR);
    EXPECT_EQ(diagnostic.code, DIAG_INVALID_EXPRESSION);
    EXPECT_EQ(diagnostic.at.line, c.at.line);
    EXPECT_EQ(diagnostic.at.column, c.at.column);
    EXPECT_EQ(diagnostic.text, "text");
  }
}

TEST(Diagnostics, AreKeptAndPrintedInTheOrderRaised) {
  DiagnosticCollector diagnostics;
  EXPECT_EQ(printedText(diagnostics), "");
  {
    // The collector keeps the lines that it will print.
    const LineTexts lines = sampleLines();
    diagnostics.add(SEVERITY_WARNING, DIAG_CONDITIONS_ZERO, sampleExpression(), 3, lines);
    diagnostics.add(SEVERITY_ERROR, DIAG_INVALID_RANGE, {1, 0}, lines, "Parameter is \"gain\"");
    diagnostics.add(SEVERITY_ERROR, DIAG_INVALID_EXPRESSION, sampleExpression(), 3, lines);
  }
  EXPECT_EQ(printedText(diagnostics),
            "Warning on line 3\n"
            "Multiple instances of conditional evaluating to 0.\n"
            "2 ) }\n"
            "^\n"
            "Error on line 1\n"
            "Invalid range specifier. Parameter is \"gain\"\n"
            "gain rw {\n"
            "^\n"
            "Error on line 3\n"
            "Invalid expression.\n"
            "2 ) }\n"
            "^\n");
}

}  // namespace

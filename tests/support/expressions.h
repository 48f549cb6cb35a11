// Expressions for tests, written as a definition text has them between parentheses.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "deflang/expression/program.h"
#include "deflang/text/expression_grammar.h"
#include "tests/support/reader.h"

/// The tokens of `text`, which has no parentheses around it; valid for good. A text that is not
/// read fails the test.
inline Expression readExpression(const std::string& text) {
  const std::string line = "(" + text + ")";
  TextCursor cursor(linesIn(line), testArena());
  Expression expression;
  EXPECT_TRUE(readExpression(cursor, expression)) << text;
  return expression;
}

/// The program of `text`; its names get slots in `variables`. A text that is not well formed fails
/// the test.
inline Program programOf(const std::string& text, Variables& variables) {
  Program program;
  EXPECT_EQ(Program::compile(readExpression(text), variables, program), 0) << text;
  return program;
}

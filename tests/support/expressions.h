// Expressions for tests, written as a definition text has them between parentheses.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "deflang/expression/program.h"
#include "deflang/text/cursor.h"
#include "deflang/text/expression_reader.h"
#include "tests/support/reader.h"

/// The tokens of `text`. They stay for good.
inline Expression readExpression(const std::string& text) {
  const std::string line = "(" + text + ")";
  Cursor cursor(line, 1, testMemory());
  ExpressionReader reader;
  EXPECT_EQ(reader.read(cursor), PARSE_DONE) << text;
  return reader.take();
}

/// The program of `text`, which is well formed.
inline Program programOf(const std::string& text, Variables& variables) {
  Program program;
  EXPECT_EQ(Program::compile(readExpression(text), variables, program), 0) << text;
  return program;
}

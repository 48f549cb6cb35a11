#include "deflang/text/parse_result.h"

#include <gtest/gtest.h>

namespace {

TEST(ParseResult, HasAMessageForEveryError) {
  EXPECT_STREQ(parseResultMessage(PARSE_INTERNAL_ERROR), "Internal error");
  EXPECT_STREQ(parseResultMessage(PARSE_INVALID_ACCESS), "Invalid parameter access type");
  EXPECT_STREQ(parseResultMessage(PARSE_SYNTAX_ERROR), "Syntax error");
  EXPECT_STREQ(parseResultMessage(3), "Unknown error");
  EXPECT_STREQ(parseResultMessage(-3), "Unknown error");
}

}  // namespace

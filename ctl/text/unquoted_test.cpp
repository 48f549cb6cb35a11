#include "ctl/text/unquoted.h"

#include <gtest/gtest.h>

#include "ctl/text/quoted.h"

namespace {

TEST(Unquoted, IsWhatWasQuoted) {
  const Assignment assignments[] = {
      {"gain", "5"},        {"gain", ""},         {"gain", "a=b"},       {"gain[a=b]", "5"},
      {"gain[a\n]", "5\n"}, {"a=b", "5"},         {"a", " b "},          {"a", "\""},
      {"a", "\\"},          {"a", R"("b" \x41)"}, {"a", "\x1b[31m\x7f"}, {"a", "\xc2\x85\t\r"},
      {"a", "grün \u25b2"}, {"\"a", "b"},         {"a[", "b=c"},         {" a ", "\\n"},
  };
  for (const Assignment& each : assignments) {
    const std::string line = quotedAssignment(each.name, each.value);
    SCOPED_TRACE(line);
    EXPECT_EQ(line.find('\n'), std::string::npos);
    std::string_view fault;
    EXPECT_EQ(unquotedAssignment(line, fault), each);
  }
}

TEST(Unquoted, ReadsWhatAPersonWrites) {
  const struct {
    std::string line;
    std::optional<Assignment> assignment;
  } cases[] = {
      {R"(a="b")", Assignment{"a", "b"}},
      {R"("a"=b)", Assignment{"a", "b"}},
      {R"(a="\x41\X")", std::nullopt},
      {R"(a="\x4")", std::nullopt},
      {R"(a="\x4g")", std::nullopt},
      {R"(a="\)", std::nullopt},
      {R"(a="b)", std::nullopt},
      {R"(a="b"c)", std::nullopt},
      {R"("a"b=c)", std::nullopt},
      {R"("a"=)", Assignment{"a", ""}},
      {R"("a")", std::nullopt},
      {R"(""=b)", std::nullopt},
      {"a", std::nullopt},
      {"=b", std::nullopt},
      {"", std::nullopt},
      {R"(a="\x00")", std::nullopt},  // the bus has no such texts
      {R"(a="\xff")", std::nullopt},
      {"a=\xff", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.line);
    std::string_view fault;
    EXPECT_EQ(unquotedAssignment(c.line, fault), c.assignment);
  }
}

}  // namespace

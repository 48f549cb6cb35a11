#include "sw/parm/build/make_definitions.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

struct MakeCase {
  std::string_view text;
  bool checkOnly;
  int result;
  std::string errors;
  std::vector<std::string> registered;
};

TEST(MakeDefinitions, PrintsEverythingToStandardError) {
  const std::string warning =
      "Warning on line 1\n"
      "An index has defined indices.\n"
      "i index { index { j } }\n"
      "                  ^\n";
  const std::string undefined =
      "Error on line 1\n"
      "Undefined index. nobody\n"
      "p rw { index { nobody } }\n"
      "               ^\n";
  const MakeCase cases[] = {
      {"p rw { }", false, 0, "", {"parameter p", "finish"}},
      {"p rw { }", true, 0, "", {}},
      {"i index { index { j } }", false, 0, warning, {"index i", "finish"}},
      {"i index { index { j } }\n", true, 0, warning, {}},
      {"p rw { index { nobody } }",
       false,
       1,
       "Internal error: Could not find index \"nobody\"\n" + undefined,
       {"parameter p", "finish"}},
      {"p rw { index { nobody } }", true, 1, undefined, {}},
  };
  for (const MakeCase& c : cases) {
    SCOPED_TRACE(c.text);
    const DefinitionText text = parseText(c.text);
    TestRegistry registry;
    testing::internal::CaptureStderr();
    EXPECT_EQ(makeDefinitions(c.checkOnly, text, registry), c.result);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), c.errors);
    EXPECT_EQ(registry.registered, c.registered);
  }
}

// Exit statuses have no room for other codes.
TEST(MakeDefinitions, AnswersOneWhateverWentWrong) {
  const DefinitionText text = parseText("p rw { }\n");
  for (const int finishResult : {1, 3, -1}) {
    SCOPED_TRACE(finishResult);
    TestRegistry registry;
    registry.finishResult = finishResult;
    registry.finishName = "p";
    testing::internal::CaptureStderr();
    EXPECT_EQ(makeDefinitions(false, text, registry), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error creating parameter definitions: p\n");
  }
}

}  // namespace

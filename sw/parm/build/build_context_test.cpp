#include "sw/parm/build/build_context.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

class BuildContextTest : public testing::Test {
 protected:
  DefinitionText text_ = parseText("gain rw { }\nchannel index { }\nlate\n");
  TestRegistry registry_{TestRegistry::Constants{{"X", "1"},
                                                 {"X[1]", "2"},
                                                 {"late", "3"},
                                                 {"gain", "4"},
                                                 {"gain[1]", "5"},
                                                 {"channel", "6"},
                                                 {"sw::this", "7"},
                                                 {"vidStd::X::fr", "8"},
                                                 {"vidStd::X::no", "9"}}};
  DiagnosticCollector diagnostics_;
  BuildContext context_{diagnostics_, text_.records, text_.lines, registry_, false};
};

TEST_F(BuildContextTest, FindsTheRecordsThatDefineSomething) {
  EXPECT_EQ(context_.findRecord("gain"), text_.records.find("gain"));
  EXPECT_EQ(context_.findRecord("channel"), text_.records.find("channel"));
  EXPECT_EQ(context_.findRecord("late"), nullptr);  // without an access word
  EXPECT_EQ(context_.findRecord("nobody"), nullptr);
  EXPECT_EQ(context_.findRecord("gain[1]"), nullptr);
}

TEST_F(BuildContextTest, FindsTheNamesThatAreConstants) {
  struct Case {
    std::string_view name;
    const char* value;
  };
  const Case cases[] = {
      {"X", "1"},
      {"X[1]", "2"},
      {"late", "3"},
      {"gain", nullptr},
      {"gain[1]", nullptr},
      {"channel", nullptr},
      {"sw::this", nullptr},
      {"vidStd::X::fr", nullptr},
      {"vidStd::X::no", "9"},  // no figure, so an ordinary name
      {"Y", nullptr},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::string* const value = context_.findConstant(c.name);
    ASSERT_EQ(value == nullptr, c.value == nullptr);
    if (value != nullptr) {
      EXPECT_EQ(*value, c.value);
    }
  }
}

TEST_F(BuildContextTest, KeepsTheFirstResultOfAFailedStep) {
  EXPECT_EQ(context_.result(), 0);
  context_.report(SEVERITY_WARNING, DIAG_CONDITION_ZERO, {1, 0}, {});
  context_.note(0);
  EXPECT_EQ(context_.result(), 0);
  context_.note(3);
  context_.report(SEVERITY_ERROR, DIAG_INVALID_INDEX, {1, 0}, "more");
  EXPECT_EQ(context_.result(), 3);
  EXPECT_EQ(printed(diagnostics_),
            "Warning on line 1\nConditional evaluates to 0.\ngain rw { }\n^\n"
            "Error on line 1\nInvalid index. more\ngain rw { }\n^\n");
}

TEST_F(BuildContextTest, TakesAnErrorForAFailedStep) {
  context_.report(SEVERITY_ERROR, DIAG_INVALID_INDEX, {1, 0}, {});
  context_.note(3);
  EXPECT_EQ(context_.result(), -1);
}

}  // namespace

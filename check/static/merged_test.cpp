#include "check/static/static_test.h"

namespace {

TEST(Merged, TellsEachDefinitionAfterTheFirst) {
  const StaticCase cases[] = {
      {"gain rw { rangeValid { 0..9 } }\nmode rw { }\n"},
      {"gain rw { rangeValid { 0..9 } }\n gain ro { default { 5 } }\n", {"2:2 gain"}},
      {"gain rw { } gain rw { }\ngain rw { }\n", {"1:13 gain", "2:1 gain"}},
  };
  expectFound(checkMerged, cases);
}

TEST(Merged, NamesTheFirstDefinition) {
  const SourceText source("text", "gain rw { }\ngain rw { }\ngain rw { }\n");
  for (const Finding& finding : findingsOf(checkMerged, source)) {
    ASSERT_EQ(finding.related.size(), 1U);
    EXPECT_EQ(finding.related[0].at, (TextPlace{1, 0, 4}));
  }
}

TEST(Merged, IsWhatTheEngineDoes) {
  EXPECT_EQ(heldAfter("gain rw { rangeValid { 0..9 } } gain ro { }", {{"gain", "5"}}, "gain"), "");
  EXPECT_EQ(heldAfter("gain ro { rangeValid { 0..9 } } gain rw { }", {{"gain", "5"}}, "gain"), "5");
}

}  // namespace

#include "explore/vocabulary.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;
using Names = std::set<std::string>;

TEST(Vocabulary, HasWhatMakesADifference) {
  const TextCoverage coverage(R"(
mode rw { rangeValid { "film", "video" } default { "video" } valueChange { "v" -> "video" } }
level ro {
  index { i }
  rangeValid (mode == "film" && gain[1] > 7) { 0..(gain + 40), (LIMIT) }
  default (vidStd::mode::fr) { 3 }
  ctrlRO (i == 2)
}
gain rw { index { i } }
i index { rangeValid { 1..2 } }
)");
  const Vocabulary vocabulary(coverage);
  EXPECT_EQ(vocabulary.of("mode").values,
            (Texts{"6", "7", "8", "film", "v", "video"}));  // 7 is beside it in a condition
  EXPECT_TRUE(vocabulary.of("mode").isSelector);
  EXPECT_FALSE(vocabulary.of("mode").isStatus);
  EXPECT_EQ(vocabulary.of("level").values, (Texts{"-1", "0", "1", "2", "3", "4"}));
  EXPECT_TRUE(vocabulary.of("level").isStatus);
  EXPECT_EQ(vocabulary.of("gain").values, (Texts{"39", "40", "41", "6", "7", "8", "film"}));
  EXPECT_FALSE(vocabulary.of("gain").isSelector);
  EXPECT_EQ(vocabulary.of("i").values, (Texts{"0", "1", "2", "3"}));
  EXPECT_EQ(vocabulary.of("LIMIT").values, Texts{});

  const auto namesIn = [&](const std::string& name, std::string_view keyword) {
    for (size_t i = 0; i < coverage.statements().size(); ++i) {
      const StatementCoverage& statement = coverage.statements()[i];
      const std::string& definition = coverage.definitions()[statement.definition].name;
      if (definition == name && statement.keyword == keyword) return vocabulary.namesIn(i);
    }
    return Names{"none"};
  };
  EXPECT_EQ(namesIn("mode", "rangeValid"), Names{});
  EXPECT_EQ(namesIn("level", "index"), Names{"i"});
  EXPECT_EQ(namesIn("level", "rangeValid"), (Names{"gain", "mode"}));
  EXPECT_EQ(namesIn("level", "default"), Names{"mode"});
  EXPECT_EQ(namesIn("level", "ctrlRO"), Names{"i"});
}

TEST(Vocabulary, StaysWithinTheNumbers) {
  const TextCoverage coverage("a rw { rangeValid { -2147483648..2147483647 } }");
  EXPECT_EQ(Vocabulary(coverage).of("a").values,
            (Texts{"-2147483647", "-2147483648", "2147483646", "2147483647"}));
}

}  // namespace

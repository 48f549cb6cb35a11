#include "deflang/text/statement_sources.h"

#include <gtest/gtest.h>

namespace {

// More than a block holds, with a statement that is longer than one.
TEST(StatementSources, GoOnInFurtherBlocks) {
  StatementSources sources;
  const std::string filling(100'000, 'x');
  std::vector<uint32_t> definitions;
  std::vector<std::vector<uint32_t>> numbers;
  for (uint32_t i = 0; i < 30; ++i) {
    definitions.push_back(sources.beginDefinition(10 * i + 1));
    std::vector<uint32_t>& own = numbers.emplace_back();
    for (uint32_t k = 0; k < 3; ++k) {
      own.push_back(sources.nextNumber());
      const size_t copies = i == 7 && k == 1 ? 30 : 1;
      std::string text = std::to_string(k);
      for (size_t copy = 0; copy < copies; ++copy) text += filling;
      sources.add(k, text);
    }
  }
  for (uint32_t i = 0; i < 30; ++i) {
    EXPECT_EQ(sources.lineOf(definitions[i]), 10 * i + 1);
    const std::vector<SourceStatement> all = sources.statementsOf(definitions[i]);
    ASSERT_EQ(all.size(), 3U) << i;
    for (uint32_t k = 0; k < 3; ++k) {
      EXPECT_EQ(all[k].line, 10 * i + 1 + k);
      EXPECT_EQ(all[k].text[0], static_cast<char>('0' + k));
      EXPECT_EQ(all[k].text.size(), (i == 7 && k == 1 ? 30 : 1) * filling.size() + 1);
      EXPECT_EQ(sources.statement(definitions[i], numbers[i][k]), all[k]);
    }
  }
}

}  // namespace

#include "ctl/completion/narrowed.h"

#include <gtest/gtest.h>

namespace {

using Words = std::vector<std::string>;

// base[1]..base[count], or base[1][x]..base[count][x].
Words instances(const std::string& base, size_t count, const std::string& end = "]") {
  Words words;
  for (size_t i = 1; i <= count; ++i) words.push_back(base + "[" + std::to_string(i) + end);
  return words;
}

Words joined(Words one, const Words& other) {
  one.insert(one.end(), other.begin(), other.end());
  return one;
}

TEST(Narrowed, OffersBeginningsWhereThereAreTooMany) {
  const struct {
    const char* what;
    Words words;
    Words offered;
    bool isWhole = false;
  } cases[] = {
      {"few", {"mode", "gain[1]"}, {"mode", "gain[1]"}, true},
      {"none", {}, {}, true},
      {"as many as are offered", instances("a", 200), instances("a", 200), true},
      {"base names", joined(instances("a", 201), {"mode"}), {"a[", "mode"}},
      {"the first of two indices", joined(instances("a", 2, "][1]"), instances("a", 2, "][2]")),
       joined(instances("a", 2, "][1]"), instances("a", 2, "][2]")), true},
      {"the first of two indices, of many",
       joined(instances("a[1]", 150), instances("a[2]", 150)),
       {"a[1][", "a[2]["}},
      {"one name, up to the first sign that differs",
       instances("a", 300),
       {"a[1", "a[2", "a[3", "a[4", "a[5", "a[6", "a[7", "a[8", "a[9"}},
      {"a word that begins the others", joined({"a"}, instances("a", 300)), {"a", "a["}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const Candidates candidates = narrowed(c.words);
    EXPECT_EQ(candidates.words, c.offered);
    EXPECT_EQ(candidates.isWhole, c.isWhole);
  }
}

TEST(Narrowed, KeepsCharactersWhole) {
  Words words;
  for (size_t i = 0; i < 150; ++i) words.push_back("ö" + std::to_string(i));
  for (size_t i = 0; i < 150; ++i) words.push_back("ü" + std::to_string(i));
  EXPECT_EQ(narrowed(words).words, (Words{"ö", "ü"}));
}

}  // namespace

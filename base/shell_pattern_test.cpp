#include "base/shell_pattern.h"

#include <fnmatch.h>
#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

bool matches(std::string_view pattern, std::string_view name) {
  std::string_view error;
  const std::optional<ShellPattern> parsed = ShellPattern::parse(pattern, error);
  EXPECT_TRUE(parsed) << pattern;
  return parsed && parsed->matches(name);
}

TEST(ShellPattern, MatchesWholeNames) {
  const struct {
    const char* pattern;
    const char* name;
    bool expected;
  } cases[] = {
      {"gain", "gain", true},
      {"gain", "gains", false},
      {"gain", "again", false},
      {"*", "", true},
      {"", "", true},
      {"", "a", false},
      {"g*n", "gain", true},
      {"g*n", "gains", false},
      {"*a*i*", "gain", true},
      {"**", "gain", true},
      {"?ain", "gain", true},
      {"?", "", false},
      {"?", "\xC3\xA4", true},
      {"??", "\xC3\xA4", false},
      {"[a-g]ain", "gain", true},
      {"[!a-g]ain", "gain", false},
      {"[^h]ain", "gain", true},
      {"[]x]", "]", true},
      {"[!]x]", "]", false},
      {"\\*", "*", true},
      {"\\*", "a", false},
      {"[\\]]", "]", true},
      {"[a-]", "-", true},
      {"[z-a]", "m", false},
      {"gain\\[1\\]", "gain[1]", true},
  };
  for (const auto& [pattern, name, expected] : cases) {
    EXPECT_EQ(matches(pattern, name), expected) << pattern << " " << name;
  }
}

TEST(ShellPattern, SaysWhatIsWrong) {
  const struct {
    const char* pattern;
    const char* error;
  } cases[] = {
      {"gain[1", "a \"[\" has no \"]\""},   {"[", "a \"[\" has no \"]\""},
      {"[]", "a \"[\" has no \"]\""},       {"[!]", "a \"[\" has no \"]\""},
      {"gain\\", "a \"\\\" is at its end"},
  };
  for (const auto& [pattern, expected] : cases) {
    std::string_view error;
    EXPECT_FALSE(ShellPattern::parse(pattern, error)) << pattern;
    EXPECT_EQ(error, expected) << pattern;
  }
}

// The C library's own has an exponential time here.
TEST(ShellPattern, TakesNoLongerForManyStars) {
  std::string pattern;
  for (int i = 0; i < 2000; ++i) pattern += "*a";
  EXPECT_FALSE(matches(pattern + "b", std::string(5000, 'a')));
  EXPECT_TRUE(matches(pattern, std::string(5000, 'a')));
}

TEST(ShellPattern, MatchesAsTheCLibraryDoes) {
  std::mt19937 random(1);
  const std::string signs = "ab*?[]!^-\\";
  const auto text = [&](const std::string& of, size_t most) {
    std::string result;
    for (size_t length = random() % (most + 1); length > 0; --length) {
      result += of[random() % of.size()];
    }
    return result;
  };
  int compared = 0;
  for (int i = 0; i < 100000; ++i) {
    const std::string pattern = text(signs, 7);
    const std::string name = text("ab[]-", 5);
    std::string_view error;
    const std::optional<ShellPattern> parsed = ShellPattern::parse(pattern, error);
    if (!parsed) continue;
    ++compared;
    EXPECT_EQ(parsed->matches(name), fnmatch(pattern.c_str(), name.c_str(), 0) == 0)
        << pattern << " " << name;
  }
  EXPECT_GT(compared, 50000);
}

}  // namespace

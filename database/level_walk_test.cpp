#include "database/level_walk.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <string>
#include <vector>

namespace {

constexpr int REFUSED = -3;

// Steps named by letters, with what they come to at each evaluation; a digit begins a level.
struct Walk {
  explicit Walk(const std::string& steps) {
    uint32_t level = 0;
    for (const char c : steps) {
      if ('0' <= c && c <= '9') {
        level = static_cast<uint32_t>(c - '0');
      } else {
        StagedEntry& entry = entries.emplace_back();
        names[&entry] = c;
        plan.push_back({level, 0, &entry});
      }
    }
  }

  // Walks; `codes` are those of each letter in turn, 0 when they are used up.
  int walk(std::map<char, std::deque<int>> codes) {
    return walkLevels(
        plan,
        [&](const StagedEntry& entry) {
          const char name = names[&entry];
          log += name;
          std::deque<int>& left = codes[name];
          if (left.empty()) return 0;
          const int code = left.front();
          left.pop_front();
          return code;
        },
        [&](const StagedEntry& entry) { log.append("(").append(1, names[&entry]).append(")"); });
  }

  std::deque<StagedEntry> entries;
  std::map<const StagedEntry*, char> names;
  Plan plan;
  std::string log;
};

TEST(WalkLevels, WalksEachLevelUntilNoRuleFails) {
  struct Case {
    const char* steps;
    std::map<char, std::deque<int>> codes;
    int result;
    const char* log;
  };
  const Case cases[] = {
      {"", {}, 0, ""},
      {"0ab1c", {}, 0, "abc"},
      {"0ab1c", {{'a', {WALK_AGAIN}}}, 0, "ababc"},
      {"0ab1c", {{'a', {WALK_AGAIN}}, {'b', {0, WALK_AGAIN}}}, 0, "abababc"},
      {"0ab1c", {{'c', {WALK_AGAIN, WALK_AGAIN}}}, 0, "abccc"},
      {"0abc1d", {{'a', {REFUSED}}}, REFUSED, "a(b)(c)d"},
      {"0abc1d", {{'c', {REFUSED}}}, REFUSED, "abcd"},
      {"0ab1cd", {{'a', {REFUSED}}, {'c', {-2}}}, REFUSED, "a(b)c(d)"},
      {"0ab1c", {{'a', {WALK_AGAIN, REFUSED}}}, REFUSED, "aba(b)c"},
      {"0ab1c", {{'a', {WALK_AGAIN}}, {'b', {REFUSED}}}, REFUSED, "abc"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.log);
    Walk walk(c.steps);
    EXPECT_EQ(walk.walk(c.codes), c.result);
    EXPECT_EQ(walk.log, c.log);
  }
}

}  // namespace

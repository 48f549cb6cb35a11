#include "ctl/service/answers.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::string>;

TEST(Assignments, HaveNamesInTheirOrder) {
  EXPECT_EQ(namesOf({}), Names{});
  EXPECT_EQ(namesOf({{"b", "1"}, {"a", ""}}), (Names{"b", "a"}));
}

TEST(Assignments, GoWhereTheyAreRefused) {
  std::vector<Assignment> assignments = {{"a", "1"}, {"b[1]", "2"}, {"c", "3"}};
  removeRefused(assignments, {});
  EXPECT_EQ(assignments.size(), 3U);
  removeRefused(assignments, {{"b[1]", "why"}, {"b", "why"}, {"nosuch", "why"}});
  EXPECT_EQ(namesOf(assignments), (Names{"a", "c"}));
}

}  // namespace

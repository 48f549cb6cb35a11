#include "play/bring_up_steps.h"

#include <gtest/gtest.h>

namespace {

using Steps = std::vector<std::vector<uint32_t>>;
using Rings = std::vector<bool>;

TEST(BringUpSteps, FollowDependencies) {
  const struct {
    const char* what;
    ParmDependencies dependencies;
    Steps steps;
    Rings isInRing;
  } cases[] = {
      {"no parameter", {}, {}, {}},
      {"none depends on another", {{}, {}}, {{0, 1}}, {false, false}},
      {"a chain", {{1, 2}, {2}, {}}, {{2}, {1}, {0}}, {false, false, false}},
      {"two branches of unequal length",
       {{}, {0}, {0, 1}, {0}, {0, 1, 2, 3}},
       {{0}, {1, 3}, {2}, {4}},
       {false, false, false, false, false}},
      {"one that follows itself", {{0}, {0}}, {{0}, {1}}, {true, false}},
      {"a ring between others",
       {{}, {0, 1, 2}, {0, 1, 2}, {0, 1, 2}},
       {{0}, {1, 2}, {3}},
       {false, true, true, false}},
      // Too many for a reply are none. All are done nevertheless.
      {"dependencies that are not told", {{1}, {2}, {0}}, {{0, 1}, {2}}, {false, false, false}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const BringUpSteps result = bringUpSteps(c.dependencies);
    EXPECT_EQ(result.steps, c.steps);
    EXPECT_EQ(result.isInRing, c.isInRing);
  }
}

TEST(BringUpSteps, AreOneForEachOfALongChain) {
  constexpr uint32_t LENGTH = 2000;
  ParmDependencies dependencies(LENGTH);
  for (uint32_t parm = 1; parm < LENGTH; ++parm) {
    for (uint32_t other = 0; other < parm; ++other) dependencies[parm].push_back(other);
  }
  const BringUpSteps result = bringUpSteps(dependencies);
  ASSERT_EQ(result.steps.size(), LENGTH);
  for (uint32_t parm = 0; parm < LENGTH; ++parm) {
    EXPECT_EQ(result.steps[parm], Steps::value_type{parm});
  }
}

}  // namespace

#include "database/present_instances.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "base/work.h"
#include "database/index_values.h"
#include "database/instance_state.h"
#include "tests/support/random_texts.h"

namespace {

std::string listed(Database& database, const char* base) {
  const StagedValues none;
  std::string text;
  PresentInstances(none).visit(*database.findParm(base), [&](const std::string& name) {
    text += (text.empty() ? "" : " ") + name;
    return true;
  });
  return text;
}

TEST(PresentInstances, AreInTheOrderOfTheirIndexValues) {
  Database database;
  define(database, R"(plain rw { }
port index { rangeValid { 9..11, 2, "b", "a" } }
lane index { rangeValid { -1..0 } }
never rw { ctrlValid (1 == 0) }
link rw { index { port, lane } }
off rw { ctrlValid (plain == 1) }
narrow index { rangeValid { 1..2000000000 } rangeValid (plain == 0) { 3..4 } }
few rw { index { narrow } }
gone index { rangeValid { 1..2 } ctrlValid (plain == 1) }
none rw { index { gone } }
)");
  const struct {
    const char* base;
    const char* instances;
  } cases[] = {
      {"plain", "plain"},
      {"never", ""},
      {"off", ""},
      {"link",
       "link[2][-1] link[2][0] link[9][-1] link[9][0] link[10][-1] link[10][0] link[11][-1] "
       "link[11][0] link[a][-1] link[a][0] link[b][-1] link[b][0]"},
      {"few", "few[3] few[4]"},
      {"none", ""},
  };
  for (const auto& [base, instances] : cases) EXPECT_EQ(listed(database, base), instances) << base;
}

TEST(PresentInstances, StopWhenNoMoreAreWanted) {
  Database database;
  define(database, "port index { rangeValid { 1..9 } }\nlink rw { index { port } }");
  const StagedValues none;
  int count = 0;
  EXPECT_FALSE(PresentInstances(none).visit(*database.findParm("link"),
                                            [&](const std::string&) { return ++count < 3; }));
  EXPECT_EQ(count, 3);
}

TEST(PresentInstances, AreNotListedWithoutEnd) {
  Database database;
  define(database, "port index { rangeValid { 1..2000000000 } }\nlink rw { index { port } }");
  const StagedValues none;
  Work::begin();
  EXPECT_THROW(PresentInstances(none).visit(*database.findParm("link"),
                                            [](const std::string&) { return true; }),
               WorkExceeded);
  Work::begin(UINT64_MAX);
}

TEST(RandomPresentInstances, AreThoseThatExist) {
  size_t found = 0;
  for (uint32_t seed = 0; seed < 2000; ++seed) {
    RandomTexts random(seed);
    const std::string text = random.text();
    Database database;
    if (defineOrRefuse(database, text) != 0) continue;
    SCOPED_TRACE(text);
    Transaction transaction(database);
    for (const char* name : {"a", "b", "c[0]", "d[1]", "b[0]", "a[1][a]"}) {
      static_cast<void>(transaction.set(name, random.oneOf(VALUES), true));
    }
    InstanceStates states(transaction);
    PresentInstances present(states.outlook().values());
    IndexSituations situations(states.outlook().values());
    for (const ParmEntry* const parm : database.parmsInNameOrder()) {
      std::vector<std::string> expected;
      forEachInstance(database, parm->parm, [&](const IndexTuple& indices) {
        if (existsIn(*parm, indices, situations)) {
          expected.push_back(parm->parm.name() + indexSuffix(indices));
        }
      });
      std::vector<std::string> listed;
      present.visit(*parm, [&](const std::string& name) {
        listed.push_back(name);
        return true;
      });
      std::ranges::sort(listed);
      std::ranges::sort(expected);
      EXPECT_EQ(listed, expected);
      found += listed.size();
    }
    if (testing::Test::HasFailure()) return;
  }
  EXPECT_GT(found, 1000U);
}

}  // namespace

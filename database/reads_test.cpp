#include "database/reads.h"

#include <gtest/gtest.h>

#include "sw/parm/parm_name.h"
#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
count rw { rangeValid { 1..2 } }
i index { rangeValid { 1..2 } }
j index { rangeValid { 1..(count) } rangeValid { 1..2 } }
limit rw { index { j } rangeValid { 1..9 } }
gain rw { index { i, j } rangeValid ( count == 1 ) { 0..(limit + STEP) } }
first ro { rangeValid { 0..(limit[1] + gain[2][1]) } }
level rw { index { i } ctrlRO ( level[1] == 7 ) rangeValid { 0..(first) } }
)";

TEST(Reads, AreThoseOfTheInstanceItself) {
  Database database;
  define(database, TEXT, {{"STEP", "5"}});
  const struct {
    const char* name;
    std::set<std::string> expected;
  } cases[] = {
      {"count", {}},
      {"limit[2]", {"count"}},  // of its index
      {"gain[2][1]", {"count", "limit[1]"}},
      {"gain[1][2]", {"count", "limit[2]"}},
      {"first", {"gain[2][1]", "limit[1]"}},
      {"level[1]", {"first"}},  // and itself
      {"level[2]", {"first", "level[1]"}},
  };
  for (const auto& [name, expected] : cases) {
    const ParmName parts = splitName(name);
    EXPECT_EQ(instancesRead(*database.findParm(parts.base), parts.indices), expected) << name;
  }
}

}  // namespace

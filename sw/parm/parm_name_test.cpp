#include "sw/parm/parm_name.h"

#include <gtest/gtest.h>

namespace {

struct NameCase {
  std::string_view name;
  std::string base;
  IndexTuple indices;
  std::string normal;
};

TEST(ParmName, IsTakenApartAtItsBrackets) {
  const NameCase cases[] = {
      {"gain", "gain", {}, "gain"},
      {"gain[2][left]", "gain", {"2", "left"}, "gain[2][left]"},
      {"gain[]", "gain", {""}, "gain[]"},
      {"a[1", "a", {}, "a"},                     // the bracket is never closed
      {"a[1][2", "a", {"1"}, "a[1]"},            // the second one neither
      {"a[[1]", "a", {"[1"}, "a[[1]"},           // an open bracket is part of the value
      {"a[1]b[2]", "a", {"1", "2"}, "a[1][2]"},  // what is between is dropped
      {"a]1[2]", "a]1", {"2"}, "a]1[2]"},
      {"[1]", "", {"1"}, "[1]"},
      {"", "", {}, ""},
      {"a[[[[", "a", {}, "a"},
  };
  for (const NameCase& c : cases) {
    SCOPED_TRACE(c.name);
    const ParmName parts = splitName(c.name);
    EXPECT_EQ(parts.base, c.base);
    EXPECT_EQ(baseName(c.name), c.base);
    EXPECT_EQ(parts.indices, c.indices);
    EXPECT_EQ(fullName(parts.base, parts.indices), c.normal);
  }
}

}  // namespace

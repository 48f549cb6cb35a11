#include "database/index_values.h"

#include <gtest/gtest.h>

#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
chan index { rangeValid { 9..11, "left" } }
side index { rangeValid { "b", "a" } }
any index { }
none rw { }
one rw { index { side } }
two rw { index { side, chan } }
open rw { index { side, any } }
)";

TEST(IndexValues, AreTheNumbersAndTextsInTextOrder) {
  Database database;
  define(database, TEXT);
  const std::vector<std::string> expected = {"10", "11", "9", "left"};
  EXPECT_EQ(indexValues(*database.findIndexEntry("chan")), expected);
  EXPECT_EQ(indexValues(*database.findIndexEntry("chan")), expected);  // now remembered
  EXPECT_TRUE(indexValues(*database.findIndexEntry("any")).empty());
}

TEST(IndexValues, AreCountedWithoutBeingWorkedOut) {
  Database database;
  define(database, std::string(TEXT) + "wide index { rangeValid { -2147483648..2147483647 } }\n");
  const std::pair<const char*, uint64_t> cases[] = {
      {"chan", 4}, {"side", 2}, {"any", 0}, {"wide", 4294967296}};
  for (const auto& [name, count] : cases) {
    SCOPED_TRACE(name);
    EXPECT_EQ(countIndexValues(*database.findIndex(name)), count);
    EXPECT_TRUE(database.findIndexEntry(name)->values.empty());
  }
}

TEST(IndexValues, MakeEveryCombinationInIndexOrder) {
  Database database;
  define(database, TEXT);
  struct Case {
    const char* name;
    std::vector<IndexTuple> instances;
  };
  const Case cases[] = {
      {"none", {{}}},
      {"one", {{"a"}, {"b"}}},
      {"two",
       {{"a", "10"},
        {"a", "11"},
        {"a", "9"},
        {"a", "left"},
        {"b", "10"},
        {"b", "11"},
        {"b", "9"},
        {"b", "left"}}},
      {"open", {}},  // an index without bounds names no values
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<IndexTuple> instances;
    forEachInstance(database, database.findParm(c.name)->parm,
                    [&](const IndexTuple& indices) { instances.push_back(indices); });
    EXPECT_EQ(instances, c.instances);
  }
}

TEST(IndexValues, AreNotWorkedOutForAParameterWithoutInstances) {
  Database database;
  define(database, std::string(TEXT) +
                       "wide index { rangeValid { -2147483648..2147483647 } }\n"
                       "p rw { index { chan, any } }\n"
                       "q rw { index { wide, wide, any } }\n");
  forEachInstance(database, database.findParm("p")->parm,
                  [](const IndexTuple& indices) { FAIL() << testing::PrintToString(indices); });
  EXPECT_TRUE(database.findIndexEntry("chan")->values.empty());
  EXPECT_EQ(countInstances(database.findParm("p")->parm), 0U);
  EXPECT_EQ(countInstances(database.findParm("q")->parm), 0U);
}

TEST(IndexValues, ReachTheGreatestNumber) {
  Database database;
  define(database, "top index { rangeValid { 2147483646..2147483647 } }\np rw { index { top } }\n");
  EXPECT_EQ(indexValues(*database.findIndexEntry("top")),
            (std::vector<std::string>{"2147483646", "2147483647"}));
}

}  // namespace

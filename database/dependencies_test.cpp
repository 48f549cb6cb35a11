#include "database/dependencies.h"

#include <gtest/gtest.h>

#include "base/value_limit.h"
#include "database/range_query.h"
#include "sw/parm/parm_name.h"
#include "tests/support/database.h"

namespace {

using Names = std::set<std::string>;

constexpr std::string_view TEXT = R"(
in index { rangeValid { 0..3 } ctrlValid (mode != 9) }
out index { rangeValid { "a", "b" } }
mode rw { }
free rw { }
perIn rw { index { in } }
both rw { index { in, out } ctrlRO (perIn == LIMIT && out == "a") }
chain rw { index { in } ctrlRO (both[1][a] == 1 && perIn[2] == 1) }
sees rw { index { in } ctrlRO (both == 1) }
flat rw { ctrlRO (sees[1] == 1 || sees[2] == 1 || both[0][b] == 1) }
figure rw { rangeValid { 0..(vidStd::mode::spal) } }
left rw { ctrlRO (right == 1) }
right rw { ctrlRO (left == 1) }
self rw { index { in } ctrlRO (self == 1 || self[0] == 1) }
)";

struct DependenciesCase {
  const char* name;
  bool withIndices;
  int result;
  Names names;
};

TEST(Dependencies, AreTheNamesThatAParameterRefersToDirectlyOrNot) {
  Database database;
  define(database, TEXT, {{"LIMIT", "1"}});
  const DependenciesCase cases[] = {
      {"free", true, DEPENDENCIES_FOUND, {}},
      {"free", false, DEPENDENCIES_FOUND, {}},
      {"none", true, DEPENDENCIES_NO_PARAMETER, {}},
      {"none", false, DEPENDENCIES_NO_PARAMETER, {}},
      {"LIMIT", true, DEPENDENCIES_NO_PARAMETER, {}},
      {"figure", true, DEPENDENCIES_FOUND, {"mode"}},
      // An index's conditions belong to the parameters that it indexes.
      {"perIn[1]", true, DEPENDENCIES_FOUND, {"mode"}},
      {"both[1][a]", true, DEPENDENCIES_FOUND, {"LIMIT", "mode", "out", "perIn[1]"}},
      {"both", false, DEPENDENCIES_FOUND, {"LIMIT", "mode", "out", "perIn"}},
      {"chain[3]",
       true,
       DEPENDENCIES_FOUND,
       {"LIMIT", "both[1][a]", "mode", "out", "perIn[1]", "perIn[2]"}},
      {"chain",
       false,
       DEPENDENCIES_FOUND,
       {"LIMIT", "both[1][a]", "mode", "out", "perIn", "perIn[2]"}},
      {"sees[2]", true, DEPENDENCIES_FOUND, {"LIMIT", "both[2]", "mode", "out", "perIn[2]"}},
      {"flat",
       true,
       DEPENDENCIES_FOUND,
       {"LIMIT", "both[0][b]", "both[1]", "both[2]", "mode", "out", "perIn[0]", "perIn[1]",
        "perIn[2]", "sees[1]", "sees[2]"}},
      {"flat",
       false,
       DEPENDENCIES_FOUND,
       {"LIMIT", "both", "both[0][b]", "mode", "out", "perIn", "sees[1]", "sees[2]"}},
      // Reached through another, a parameter does not depend on itself; named directly, it does.
      {"left", true, DEPENDENCIES_FOUND, {"right"}},
      {"self[2]", true, DEPENDENCIES_FOUND, {"mode", "self[0]", "self[2]"}},
      {"perIn", true, DEPENDENCIES_INVALID_INDEX, {}},
      {"perIn[1][2]", true, DEPENDENCIES_INVALID_INDEX, {}},
      {"perIn[4]", true, DEPENDENCIES_INVALID_INDEX, {}},
      {"both[1][c]", true, DEPENDENCIES_INVALID_INDEX, {}},
      {"free[1]", true, DEPENDENCIES_INVALID_INDEX, {}},
      {"perIn[1]", false, DEPENDENCIES_NO_PARAMETER, {}},  // asked as a base name
      {"free[1", true, DEPENDENCIES_FOUND, {}},            // no bracket is closed
  };
  for (const DependenciesCase& c : cases) {
    SCOPED_TRACE(std::string(c.name) + (c.withIndices ? " with indices" : " without indices"));
    Names names;
    EXPECT_EQ(dependencies(database, c.name, c.withIndices, names), c.result);
    EXPECT_EQ(names, c.names);
  }
}

// Constants and indices are no parameters. A name that lacks index values is told from the others.
TEST(DependencyInstances, AreTheOneThatIsAskedForAndThoseAmongTheNames) {
  struct Case {
    std::string name;
    Names others;
  };
  const Case cases[] = {
      {"free", {}},
      {"left", {"right"}},
      {"both[1][a]", {"mode", "perIn[1]"}},
      {"chain[3]", {"both[1][a]", "mode", "perIn[1]", "perIn[2]"}},
      {"sees[2]", {"both[2]", "mode", "perIn[2]"}},
      {"self[2]", {"mode", "self[0]", "self[2]"}},
      {"flat",
       {"both[0][b]", "both[1]", "both[2]", "mode", "sees[1]", "sees[2]", "perIn[0]", "perIn[1]",
        "perIn[2]"}},
  };
  Database database;
  define(database, TEXT, {{"LIMIT", "1"}});
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    std::vector<Instance> instances;
    EXPECT_EQ(dependencyInstances(database, c.name, instances), DEPENDENCIES_FOUND);
    Names names;
    for (const Instance& instance : instances) {
      const std::string name = fullName(instance.parm->parm.name(), instance.indices);
      EXPECT_EQ(instance.isComplete(), name != "both[1]" && name != "both[2]") << name;
      names.insert(name);
    }
    EXPECT_EQ(fullName(instances.front().parm->parm.name(), instances.front().indices), c.name);
    Names expected = c.others;
    expected.insert(c.name);
    EXPECT_EQ(names, expected);
    EXPECT_EQ(instances.size(), names.size());  // each once
  }
}

TEST(DependencyInstances, AreNoneOfWhatIsNoInstance) {
  Database database;
  define(database, TEXT, {{"LIMIT", "1"}});
  std::vector<Instance> instances;
  EXPECT_EQ(dependencyInstances(database, "none", instances), DEPENDENCIES_NO_PARAMETER);
  EXPECT_EQ(dependencyInstances(database, "perIn[4]", instances), DEPENDENCIES_INVALID_INDEX);
  EXPECT_TRUE(instances.empty());
}

// So many names are given the index value of a client that they fill a message where it is as long
// as a value may be, their own signs included.
constexpr int MANY = 32;

std::string manyNames(std::string_view between, std::string_view behind = "") {
  std::string text;
  for (int i = 0; i < MANY; ++i) {
    text.append(i == 0 ? "" : between).append("q").append(std::to_string(10 + i)).append(behind);
  }
  return text;
}

// `once` names each of them once, `figures` also by figures of the standards that they select,
// `byIndex` by an index alone; `more` names a constant as well.
std::string longText() {
  return "any index { }\nnaming index { ctrlValid (" + manyNames(" == ") + ") }\n" +
         manyNames("", " rw { index { any } }\n") + "once rw { index { any } ctrlRO (" +
         manyNames(" == ") + ") }\n" + "figures rw { index { any } ctrlRO (" + manyNames(" == ") +
         " == vidStd::q10::spal == vidStd::q10::alpf) }\nalone rw { index { any } }\n" +
         "byIndex rw { index { any, naming } }\n" + "more rw { index { any } ctrlRO (" +
         manyNames(" == ") + " == Z) }\n";
}

std::string longValue() {
  constexpr size_t NAME_BYTES = std::string_view("q10[]").size();
  return std::string(MAX_QUERY_BYTES / MANY - NAME_BYTES, 'x');
}

TEST(Dependencies, AreNoLongerAllTogetherThanFitsIntoAMessage) {
  Database database;
  define(database, longText(), {{"Z", "1"}});
  Names names;
  EXPECT_EQ(dependencies(database, "once[" + longValue() + "]", true, names), DEPENDENCIES_FOUND);
  EXPECT_EQ(names.size(), MANY);
  EXPECT_TRUE(*names.begin() == "q10[" + longValue() + "]");
  names.clear();
  EXPECT_EQ(dependencies(database, "once[x" + longValue() + "]", true, names),
            DEPENDENCIES_TOO_LARGE);
  names.clear();
  EXPECT_EQ(dependencies(database, "byIndex[" + longValue() + "][1]", true, names),
            DEPENDENCIES_FOUND);
  EXPECT_EQ(names.size(), MANY);
  names.clear();
  EXPECT_EQ(dependencies(database, "byIndex[x" + longValue() + "][1]", true, names),
            DEPENDENCIES_TOO_LARGE);
  names.clear();
  EXPECT_EQ(dependencies(database, "more[" + longValue() + "]", true, names),
            DEPENDENCIES_TOO_LARGE);
}

TEST(Dependencies, BoundRangeQueriesAndCountForThemOnceAndWithoutTheTarget) {
  Database database;
  define(database, longText(), {{"Z", "1"}});
  const StagedValues staged;
  BoundsParm range;
  for (const char* name : {"once", "figures"}) {
    SCOPED_TRACE(name);
    const std::string start = std::string(name) + "[";
    EXPECT_EQ(queryRange(database, staged, start + longValue() + "]", range), RANGE_FOUND);
    EXPECT_EQ(queryRange(database, staged, start + "x" + longValue() + "]", range),
              RANGE_TOO_LARGE);
    EXPECT_EQ(queryRange(database, staged, start + "x]", range), RANGE_FOUND);
  }
  EXPECT_EQ(queryRange(database, staged, "alone[x" + longValue() + "]", range), RANGE_FOUND);
  // The constant's name has one byte.
  EXPECT_EQ(queryRange(database, staged, "more[" + longValue().substr(1) + "]", range),
            RANGE_FOUND);
  EXPECT_EQ(queryRange(database, staged, "more[" + longValue() + "]", range), RANGE_TOO_LARGE);
}

TEST(Dependencies, OfANameWithAPartThatIsTooLongAreThoseOfNoParameter) {
  Database database;
  define(database, longText(), {{"Z", "1"}});
  const std::string longest(MAX_VALUE_BYTES, 'x');
  const StagedValues staged;
  Names names;
  BoundsParm range;
  EXPECT_EQ(dependencies(database, "alone[" + longest + "]", true, names), DEPENDENCIES_FOUND);
  EXPECT_EQ(dependencies(database, "alone[" + longest + "x]", true, names),
            DEPENDENCIES_NO_PARAMETER);
  EXPECT_EQ(queryRange(database, staged, "alone[" + longest + "]", range), RANGE_FOUND);
  EXPECT_EQ(queryRange(database, staged, "alone[" + longest + "x]", range), RANGE_INVALID_NAME);
}

}  // namespace

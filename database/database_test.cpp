#include "database/database.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/support/database.h"

namespace {

// The last walk of a database, so that a test need not begin four thousand million of them.
uint32_t& lastWalk(Database& database);
template <uint32_t Database::*MEMBER>
struct LastWalk {
  friend uint32_t& lastWalk(Database& database) { return database.*MEMBER; }
};
template struct LastWalk<&Database::walks_>;

std::unique_ptr<ParmDef> parmNamed(const std::string& name, const std::string& refersTo = "") {
  DefinitionParts parts;
  parts.name = name;
  if (!refersTo.empty()) parts.variables.intern(refersTo);
  return std::make_unique<ParmDef>(std::move(parts), ParmParts{});
}

std::unique_ptr<IndexDef> indexNamed(const std::string& name) {
  DefinitionParts parts;
  parts.name = name;
  return std::make_unique<IndexDef>(std::move(parts));
}

TEST(Database, KeepsTheFirstOfTwoConstants) {
  Database database;
  EXPECT_EQ(database.defineConstant("x", "1"), 0);
  EXPECT_EQ(database.defineConstant("x", "2"), 1);
  EXPECT_EQ(database.defineConstant("", ""), 0);
  ASSERT_NE(database.findConstant("x"), nullptr);
  EXPECT_EQ(*database.findConstant("x"), "1");
  ASSERT_NE(database.findConstant(""), nullptr);
  EXPECT_EQ(*database.findConstant(""), "");
  EXPECT_EQ(database.findConstant("y"), nullptr);
  EXPECT_EQ(database.constants().size(), 2U);
  EXPECT_EQ(database.constants().at("x").text(), "1");
}

TEST(Database, KeepsTheFirstOfTwoDefinitions) {
  Database database;
  auto parm = parmNamed("a", "b");
  auto index = indexNamed("i");
  const IndexDef* firstIndex = index.get();
  EXPECT_EQ(database.registerParm(std::move(parm)), 0);
  EXPECT_EQ(database.registerParm(parmNamed("a")), 1);
  EXPECT_EQ(database.registerIndex(std::move(index)), 0);
  EXPECT_EQ(database.registerIndex(indexNamed("i")), 1);
  ASSERT_NE(database.findParm("a"), nullptr);
  EXPECT_EQ(database.findParm("a")->parm.usedNames(), 1U);
  EXPECT_EQ(database.findIndex("i"), firstIndex);
  EXPECT_EQ(database.findParm("i"), nullptr);
  EXPECT_EQ(database.findIndex("a"), nullptr);
  EXPECT_EQ(database.findIndexEntry("a"), nullptr);
}

struct FinishCase {
  const char* refersTo;
  int result;
  std::string name;
};

TEST(Database, FinishesWhenEveryNameIsKnown) {
  const FinishCase cases[] = {
      {"b", 0, ""},                    // a parameter
      {"b[1]", 0, ""},                 // an instance of one, whatever its indices
      {"LIMIT", 0, ""},                // a constant
      {"i", 0, ""},                    // an index
      {"vidStd::b::spal", 0, ""},      // a figure of what a parameter selects
      {"vidStd::LIMIT::spal", 0, ""},  // or a constant
      {"sw::this", 0, ""},
      {"c", 3, "c"},
      {"LIMIT[1]", 3, "LIMIT[1]"},  // a constant has no instances
      {"vidStd::c::spal", 3, "c"},
      {"vidStd::b::xyz", 3, "vidStd::b::xyz"},  // no such figure: an ordinary name
      {"vidStd::b", 3, "vidStd::b"},
      {"a", 0, ""},  // itself
  };
  for (const FinishCase& c : cases) {
    SCOPED_TRACE(c.refersTo);
    Database database;
    EXPECT_EQ(database.defineConstant("LIMIT", "1"), 0);
    EXPECT_EQ(database.registerIndex(indexNamed("i")), 0);
    EXPECT_EQ(database.registerParm(parmNamed("a", c.refersTo)), 0);
    EXPECT_EQ(database.registerParm(parmNamed("b")), 0);
    std::string name;
    EXPECT_EQ(database.finish(name), c.result);
    EXPECT_EQ(name, c.name);
  }
}

TEST(Database, FindsManyNamesAsOne) {
  Database database;
  const auto expectFound = [&](std::vector<std::string_view> names) {
    std::vector<std::pair<size_t, ParmEntry*>> found;
    std::vector<std::pair<size_t, ParmEntry*>> expected;
    expected.reserve(names.size());
    database.findAll(names, [&](size_t i, ParmEntry* parm) { found.emplace_back(i, parm); });
    for (const std::string_view name : names) {
      expected.emplace_back(expected.size(), database.findParm(name));
    }
    EXPECT_EQ(found, expected);
  };
  expectFound({"gain", "mode"});  // while there is no parameter at all
  EXPECT_EQ(database.registerParm(parmNamed("gain", "gain")), 0);
  EXPECT_EQ(database.registerParm(parmNamed("mode")), 0);
  ASSERT_NE(database.findParm("gain"), nullptr);
  expectFound({});
  expectFound({"gain", "mode", "gain", "nobody", ""});
  expectFound(std::vector<std::string_view>(Database::NAMES_TOGETHER, "mode"));
}

TEST(Database, NamesTheFirstUnknownName) {
  Database database;
  EXPECT_EQ(database.registerParm(parmNamed("a", "z")), 0);
  EXPECT_EQ(database.registerParm(parmNamed("b", "y")), 0);
  std::string name;
  EXPECT_EQ(database.finish(name), 3);
  EXPECT_EQ(name, "y");
}

TEST(Database, RefusesARingAndNamesAParameterOnIt) {
  Database database;
  EXPECT_EQ(database.registerParm(parmNamed("a", "c")), 0);
  EXPECT_EQ(database.registerParm(parmNamed("b", "a")), 0);
  EXPECT_EQ(database.registerParm(parmNamed("c", "b")), 0);
  EXPECT_EQ(database.registerParm(parmNamed("before", "a")), 0);
  std::string name;
  EXPECT_EQ(database.finish(name), 1);
  EXPECT_TRUE(name == "a" || name == "b" || name == "c") << name;
}

TEST(Database, PutsEachParameterAboveWhatItRefersTo) {
  Database database;
  define(database, R"(
i index { rangeValid { 0..1 } ctrlValid (mode != 9) }
mode rw { }
left rw { ctrlRO (right == 1) }
right rw { ctrlRO (left == 1) ctrlValid (mode == 1) }
top rw { ctrlValid (left == 1 && CONST == 1) }
indexed rw { index { i } }
size rw { rangeValid { 0..(vidStd::mode::spal) } }
free rw { }
fixed rw { ctrlValid (CONST == 1) }
self rw { ctrlRO (self == 3) }
)",
         {{"CONST", "1"}});
  struct Case {
    const char* name;
    uint32_t level;
  };
  const Case cases[] = {
      {"mode", 0},    {"left", 1}, {"right", 1}, {"top", 2},
      {"indexed", 1}, {"size", 1}, {"free", 0},  {"fixed", 0},  // decided when it was built
      {"self", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ASSERT_NE(database.findParm(c.name), nullptr);
    EXPECT_EQ(database.findParm(c.name)->level, c.level);
  }
}

TEST(Database, KnowsTheIndicesThatNameAParameter) {
  Database database;
  define(database, R"(
i index { ctrlValid (often[1] == 1 && once == 1 && often[2] == 1) }
of index { rangeValid { 1..2 } }
unused index { ctrlValid (unread == 1) }
indexed rw { index { i } }
often rw { index { of } }
once rw { }
unread rw { }
)");
  IndexEntry* const i = database.findIndexEntry("i");
  struct Case {
    const char* name;
    std::vector<IndexEntry*> naming;
  };
  const Case cases[] = {
      {"often", {i}},  // however often
      {"once", {i}},
      {"unread", {}},  // by an index that indexes nothing
      {"indexed", {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const ParmEntry* const parm = database.findParm(c.name);
    ASSERT_NE(parm, nullptr);
    EXPECT_EQ(parm->indices->naming, c.naming);
    EXPECT_EQ(parm->hasDependents(), !c.naming.empty());
  }
}

TEST(Database, ListsWhoNamesAParameterOnceAndInNameOrder) {
  Database database;
  define(database, R"(
i index { rangeValid { 1..2 } }
q rw { index { i } }
e rw { ctrlRO (q[1] == 1) }
d rw { ctrlRO (q[1] == 1 && q[2] == 1) }
)");
  EXPECT_EQ(database.findParm("q")->dependents,
            (std::vector<ParmEntry*>{database.findParm("d"), database.findParm("e")}));
  EXPECT_TRUE(database.findParm("d")->dependents.empty());
}

TEST(Database, KeepsNoMoreRoomThanForTheNamesThatAParameterUses) {
  Database database;
  define(database, R"(
a rw { }
b rw { }
c rw { }
d rw { }
sum rw { ctrlRO (a == b + c + d + sw::this) }
)");
  const ParmEntry& sum = *database.findParm("sum");
  EXPECT_EQ(sum.sources.size(), 5U);
  EXPECT_EQ(sum.sources.capacity(), sum.sources.size());
}

TEST(Database, ForgetsTheWalksBeforeTheirNumberBeginsAnew) {
  Database database;
  EXPECT_EQ(database.registerParm(parmNamed("a")), 0);
  EXPECT_EQ(database.registerIndex(indexNamed("i")), 0);
  ParmEntry* const parm = database.findParm("a");
  IndexEntry* const index = database.findIndexEntry("i");
  parm->walk = index->walk = database.newWalk();
  EXPECT_EQ(parm->walk, 1U);
  lastWalk(database) = UINT32_MAX - 1;
  EXPECT_EQ(database.newWalk(), UINT32_MAX);
  EXPECT_EQ(parm->walk, 1U);
  const uint32_t walk = database.newWalk();
  EXPECT_NE(walk, 0U);  // the number of what no walk has come to
  EXPECT_NE(parm->walk, walk);
  EXPECT_NE(index->walk, walk);
}

TEST(Database, ListsItsParametersInNameOrder) {
  Database database;
  for (const char* name : {"b", "a1", "a"}) EXPECT_EQ(database.registerParm(parmNamed(name)), 0);
  EXPECT_EQ(database.registerIndex(indexNamed("i")), 0);
  std::vector<std::string> names;
  for (const ParmEntry* entry : database.parmsInNameOrder()) names.push_back(entry->parm.name());
  EXPECT_EQ(names, (std::vector<std::string>{"a", "a1", "b"}));
}

}  // namespace

#include "database/gather.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/database.h"
#include "vid_std.h"

namespace {

// The instances of several parameters over two indices, each with a value of its own.
constexpr std::string_view TEXT = R"(
in index { rangeValid { 0..3 } ctrlValid (mode != 9) }
out index { rangeValid { "a", "b" } }
mode rw { }
perIn rw { index { in } }
perOut rw { index { out } }
both rw { index { in, out } }
swapped rw { index { out, in } }

SIDE index { rangeValid { "a", "b" } }
narrow index { ctrlValid (perIn[2] != perIn + in + SIDE) }
fixed index { ctrlValid (perIn[2] + LIMIT + mode) }
self index { ctrlValid (self != 2) }
byInstance index { ctrlValid (perIn) }
figureOfIndex index { ctrlValid (vidStd::in::tlpf + perIn) }
figureOfInstance index { ctrlValid (vidStd::perIn::tlpf) }
narrowFirst rw { index { narrow, in } }
narrowAfter rw { index { in, narrow } }
behindSide rw { index { SIDE, narrow } }
twice rw { index { self, self } }
behindIn rw { index { in, figureOfIndex } }

single rw { ctrlRO (mode == 1 && LIMIT == 2 && perIn == 3 && perIn[2] == 4) }
ofIn rw { index { in } ctrlRO (mode + perIn + both + perOut + perIn[2] + in) }
ofBoth rw { index { in, out } ctrlRO (perIn + perOut + both + swapped + vidStd::mode::spal) }
figures rw { index { in } ctrlRO (vidStd::perIn::tlpf + vidStd::perIn[2]::tlpf
                                  + vidStd::LIMIT::tlpf + vidStd::BOARD::tlpf + vidStd::in::tlpf) }
)";

class GatherTest : public testing::Test {
 protected:
  static void SetUpTestSuite() { initVidStdTables(); }

  void SetUp() override {
    define(database_, TEXT, {{"LIMIT", "20"}, {"BOARD", "720p/50"}, {"SIDE", "s"}});
    store("mode", {}, "m");
    store("perIn", {"1"}, "in1");
    store("perIn", {"2"}, "in2");
    store("perOut", {"a"}, "outA");
    store("both", {"1", "a"}, "both1a");
    store("swapped", {"a", "1"}, "swappedA1");
  }

  void store(const char* name, const IndexTuple& indices, const char* value) {
    database_.findParm(name)->parm.store(indices, value);
  }

  // The bound variables of an instance by name.
  std::map<std::string, std::string> gathered(const char* name, const IndexTuple& indices) {
    const ParmEntry& entry = *database_.findParm(name);
    return named(entry.parm.variables(), gather(entry, indices, staged_));
  }

  // The bound variables of the index at `place` of an instance, with the index values before that
  // place bound.
  std::map<std::string, std::string> gatheredOfIndex(const char* name, const IndexTuple& indices,
                                                     size_t place) {
    const ParmEntry& entry = *database_.findParm(name);
    Situation own = gather(entry, indices, staged_);
    for (size_t i = 0; i < place; ++i) entry.parm.bindIndex(own, i, indices[i]);
    const IndexEntry& index = *entry.indices->own[place];
    return named(index.index->variables(), gather(index, entry, indices, own, staged_));
  }

  static std::map<std::string, std::string> named(const Variables& variables,
                                                  const Situation& situation) {
    std::map<std::string, std::string> values;
    for (uint32_t slot = 0; slot < situation.size(); ++slot) {
      if (situation[slot].kind != OPERAND_INVALID) {
        values[std::string(variables[slot])] = operandText(situation[slot]);
      }
    }
    return values;
  }

  Database database_;
  StagedValues staged_;
};

using Values = std::map<std::string, std::string>;

TEST_F(GatherTest, ReadsEachNameAsTheInstanceSeesIt) {
  // A figure of what names no standard and an index name have no value; an instance that was never
  // set holds the empty text.
  EXPECT_EQ(gathered("single", {}),
            (Values{{"mode", "m"}, {"LIMIT", "20"}, {"perIn", ""}, {"perIn[2]", "in2"}}));
  EXPECT_EQ(gathered("ofIn", {"1"}), (Values{{"mode", "m"},
                                             {"perIn", "in1"},
                                             {"both", ""},    // only one of its two indices
                                             {"perOut", ""},  // none of its indices
                                             {"perIn[2]", "in2"}}));
  EXPECT_EQ(
      gathered("ofBoth", {"1", "a"}),
      (Values{{"perIn", "in1"}, {"perOut", "outA"}, {"both", "both1a"}, {"swapped", "swappedA1"}}));
}

TEST_F(GatherTest, ReadsFiguresOfWhatASelectorHolds) {
  // A constant is a selector as well; an index name is none, and a limit of 20 is no standard.
  EXPECT_EQ(gathered("figures", {"1"}), (Values{{"vidStd::BOARD::tlpf", "750"}}));
  store("perIn", {"1"}, "625i/50");
  staged_.stage(*database_.findParm("perIn"), {"2"}, false).value.set("1080i/50");
  const Values raster = {{"vidStd::BOARD::tlpf", "750"},
                         {"vidStd::perIn::tlpf", "625"},
                         {"vidStd::perIn[2]::tlpf", "1125"}};
  EXPECT_EQ(gathered("figures", {"1"}), raster);
  store("perIn", {"1"}, "1920x1080/60/P");  // a picture format has no raster
  EXPECT_EQ(gathered("figures", {"1"}).count("vidStd::perIn::tlpf"), 0U);
}

TEST_F(GatherTest, ReadsStagedValuesFirst) {
  staged_.stage(*database_.findParm("perIn"), {"1"}, false).value.set("staged");
  EXPECT_EQ(gathered("ofIn", {"1"})["perIn"], "staged");
  EXPECT_EQ(gathered("ofIn", {"2"})["perIn"], "in2");
}

TEST_F(GatherTest, ReadsAnIndexsOwnVariables) {
  const IndexEntry& in = *database_.findIndexEntry("in");
  EXPECT_EQ(named(in.index->variables(), gather(in, staged_)), (Values{{"mode", "m"}}));
  // An index by itself sees no instance.
  const IndexEntry& narrow = *database_.findIndexEntry("narrow");
  EXPECT_EQ(named(narrow.index->variables(), gather(narrow, staged_)),
            (Values{{"perIn[2]", "in2"}, {"perIn", ""}, {"SIDE", "s"}}));
}

TEST_F(GatherTest, ReadsTheNamesOfAnIndexAsTheInstanceSeesThem) {
  struct Case {
    const char* name;
    IndexTuple indices;
    size_t place;
    Values values;
  };
  const Case cases[] = {
      {"narrowFirst", {"x", "1"}, 0, {{"perIn[2]", "in2"}, {"perIn", "in1"}, {"SIDE", "s"}}},
      {"narrowAfter",
       {"1", "x"},
       1,
       {{"perIn[2]", "in2"}, {"perIn", "in1"}, {"SIDE", "s"}, {"in", "1"}}},
      // What is a constant and an index of the parameter has the value of the index.
      {"behindSide", {"b", "x"}, 1, {{"perIn[2]", "in2"}, {"perIn", ""}, {"SIDE", "b"}}},
      {"twice", {"1", "2"}, 0, {}},
      {"twice", {"1", "2"}, 1, {{"self", "1"}}},
      // An index is no selector of a standard.
      {"behindIn", {"1", "x"}, 1, {{"perIn", "in1"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(gatheredOfIndex(c.name, c.indices, c.place), c.values);
  }
}

TEST_F(GatherTest, KnowsWhichIndicesAreTheSameForAllInstances) {
  const std::pair<const char*, bool> cases[] = {
      {"in", true},       // names a parameter without indices
      {"out", true},      // names no parameter
      {"fixed", true},    // names an instance and a constant
      {"narrow", false},  // names an index, and a parameter by the instance's index values
      {"self", false},   {"byInstance", false}, {"figureOfInstance", false},
  };
  for (const auto& [name, isShared] : cases) {
    EXPECT_EQ(database_.findIndexEntry(name)->isShared, isShared) << name;
  }
}

TEST_F(GatherTest, SharesIndicesByDefinition) {
  const ParmDef& perIn = database_.findParm("perIn")->parm;
  const ParmDef& both = database_.findParm("both")->parm;
  const ParmDef& swapped = database_.findParm("swapped")->parm;
  const ParmDef& mode = database_.findParm("mode")->parm;
  const ParmDef& twice = database_.findParm("twice")->parm;
  struct Case {
    const char* what;
    const ParmDef& evaluated;
    IndexTuple indices;
    const ParmDef& referenced;
    IndexTuple shared;
  };
  const Case cases[] = {
      {"the same list", both, {"1", "a"}, both, {"1", "a"}},
      {"the same list, whatever the number", both, {"1"}, both, {"1"}},
      {"the same list, with an index twice", twice, {"1", "2"}, twice, {"1", "2"}},
      {"another order", both, {"1", "a"}, swapped, {"a", "1"}},
      {"another order, too few values", both, {"1"}, swapped, {"1"}},
      {"one of two", both, {"1", "a"}, perIn, {"1"}},
      {"only the one that is there", perIn, {"1"}, both, {"1"}},
      {"none", both, {"1", "a"}, mode, {}},
      {"nothing to share", mode, {}, both, {}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    EXPECT_EQ(sharedIndices(c.evaluated, c.indices, c.referenced), c.shared);
  }
}

}  // namespace

#include "database/staged_values.h"

#include <gtest/gtest.h>

#include <new>

#include "tests/support/allocations.h"
#include "tests/support/database.h"

namespace {

constexpr std::string_view TEXT = R"(
chan index { rangeValid { 0..3 } }
gain rw { index { chan } }
mode rw { }
)";

class StagedValuesTest : public testing::Test {
 protected:
  void SetUp() override {
    define(database_, TEXT);
    gain_ = database_.findParm("gain");
    mode_ = database_.findParm("mode");
    gain_->parm.store({"1"}, "7");
  }

  Database database_;
  ParmEntry* gain_ = nullptr;
  ParmEntry* mode_ = nullptr;
};

// Invariants 1 and 3.
TEST_F(StagedValuesTest, StartAnEntryWithTheCommittedValue) {
  StagedValues staged;
  EXPECT_TRUE(staged.empty());
  EXPECT_EQ(staged.find(*gain_, {"1"}), nullptr);
  StagedEntry& entry = staged.stage(*gain_, {"1"}, false);
  EXPECT_EQ(entry.parm, gain_);
  EXPECT_EQ(entry.indices, IndexTuple{"1"});
  EXPECT_EQ(entry.value.text(), "7");
  EXPECT_FALSE(entry.reset);
  EXPECT_TRUE(entry.force);
  EXPECT_FALSE(entry.generated);
  EXPECT_EQ(fullName(entry), "gain[1]");
  EXPECT_EQ(staged.find(*gain_, {"1"}), &entry);
  EXPECT_EQ(&staged.stage(*gain_, {"1"}, true), &entry);  // the one that is there stays
  EXPECT_FALSE(entry.generated);
  EXPECT_TRUE(staged.stage(*mode_, {}, true).generated);
}

// Invariants 1 and 3, for the commit's own way to stage.
TEST_F(StagedValuesTest, StageAnInstanceByItsNumber) {
  StagedValues staged;
  StagedEntry& client = staged.stage(*gain_, {"2"}, false);
  EXPECT_EQ(&staged.stageNumbered(*gain_, {"2"}, 2), &client);
  EXPECT_FALSE(client.generated);
  StagedEntry& entry = staged.stageNumbered(*gain_, {"1"}, 1);
  EXPECT_TRUE(entry.generated);
  EXPECT_TRUE(entry.force);
  EXPECT_EQ(fullName(entry), "gain[1]");
  EXPECT_EQ(entry.value.text(), "7");
  EXPECT_EQ(entry.held, gain_->parm.committed({"1"}));
  EXPECT_EQ(staged.stageNumbered(*gain_, {"3"}, 3).held, nullptr);
  EXPECT_EQ(staged.find(*gain_, {"1"}), &entry);
}

TEST_F(StagedValuesTest, AreSeenBeforeTheCommittedOnes) {
  StagedValues staged;
  EXPECT_EQ(staged.text(*gain_, {"1"}), "7");
  EXPECT_EQ(staged.value(*gain_, {"1"}).number, 7);
  EXPECT_EQ(staged.text(*gain_, {"2"}), "");
  EXPECT_EQ(staged.value(*gain_, {"2"}).kind, OPERAND_NUMBER);  // the empty text counts as 0
  staged.stage(*gain_, {"1"}, false).value.set("0x10");
  EXPECT_EQ(staged.text(*gain_, {"1"}), "0x10");
  EXPECT_EQ(staged.value(*gain_, {"1"}).number, 16);
}

// Invariants 1 and 3.
TEST_F(StagedValuesTest, ShowWhatIsBelowAndLeaveItAlone) {
  StagedValues below;
  StagedEntry& original = below.stage(*gain_, {"1"}, false);
  original.value.set("8");
  original.force = false;
  StagedValues above(&below);
  EXPECT_EQ(above.text(*gain_, {"1"}), "8");
  EXPECT_EQ(above.find(*gain_, {"1"}), &original);

  StagedEntry& copy = above.stage(*gain_, {"1"}, true);
  EXPECT_NE(&copy, &original);
  EXPECT_EQ(copy.value.text(), "8");
  EXPECT_FALSE(copy.force);
  EXPECT_FALSE(copy.generated);
  copy.value.set("9");
  EXPECT_EQ(above.text(*gain_, {"1"}), "9");
  EXPECT_EQ(above.find(*gain_, {"1"}), &copy);
  EXPECT_EQ(below.text(*gain_, {"1"}), "8");
  above.stage(*mode_, {}, false).value.set("on");
  above.clear();
  EXPECT_EQ(below.inNameOrder(), std::vector<StagedEntry*>{&original});
  EXPECT_EQ(original.value.text(), "8");
}

// Invariants 1 and 2.
TEST_F(StagedValuesTest, LeaveEntriesWhereTheyAre) {
  StagedValues staged;
  std::vector<StagedEntry*> places;
  const auto indices = [](size_t i) { return IndexTuple{std::to_string(i)}; };
  constexpr size_t COUNT = 500;  // several blocks of memory, and a table that grows
  for (size_t i = 0; i < COUNT; ++i) places.push_back(&staged.stage(*gain_, indices(i), false));
  for (size_t i = 0; i < COUNT; ++i) {
    EXPECT_EQ(staged.find(*gain_, indices(i)), places[i]);
    EXPECT_EQ(&staged.stage(*gain_, indices(i), false), places[i]);
    EXPECT_EQ(places[i]->indices, indices(i));
  }
  EXPECT_EQ(staged.inNameOrder().size(), COUNT);
}

TEST_F(StagedValuesTest, AreListedByFullNameAndCleared) {
  StagedValues staged;
  staged.stage(*mode_, {}, false);
  staged.stage(*gain_, {"2"}, false);
  staged.stage(*gain_, {"10"}, false);
  std::vector<std::string> names;
  for (const StagedEntry* entry : staged.inNameOrder()) names.push_back(fullName(*entry));
  EXPECT_EQ(names, (std::vector<std::string>{"gain[10]", "gain[2]", "mode"}));
  staged.clear();
  EXPECT_TRUE(staged.empty());
  EXPECT_EQ(staged.find(*mode_, {}), nullptr);
}

// Invariant 4, at each allocation that a new entry takes: as the first, and where eight fill both
// the memory of the entries and the table.
TEST_F(StagedValuesTest, AreAsBeforeWhereMemoryIsExhausted) {
  for (const size_t before : {size_t{0}, size_t{8}}) {
    bool fails = true;
    for (size_t allocations = 0; fails; ++allocations) {
      SCOPED_TRACE(testing::Message() << before << " entries, " << allocations << " allocations");
      StagedValues staged;
      for (size_t i = 0; i < before; ++i) staged.stage(*gain_, {std::to_string(i)}, false);
      Allocations::left = allocations;
      try {
        staged.stage(*mode_, {}, false);
        fails = false;
      } catch (const std::bad_alloc&) {
      }
      Allocations::left = SIZE_MAX;
      EXPECT_EQ(staged.inNameOrder().size(), fails ? before : before + 1);
      EXPECT_EQ(staged.find(*mode_, {}) == nullptr, fails);
      for (size_t i = 0; i < before; ++i) {
        EXPECT_NE(staged.find(*gain_, {std::to_string(i)}), nullptr);
      }
      staged.stage(*mode_, {}, false);
      EXPECT_EQ(staged.inNameOrder().size(), before + 1);
    }
  }
}

// Invariant 5.
TEST_F(StagedValuesTest, TellWhatMemoryTheyTake) {
  StagedValues staged;
  EXPECT_EQ(staged.bytes(), 0U);
  StagedEntry& entry = staged.stage(*mode_, {}, false);
  const size_t small = staged.bytes();
  constexpr size_t OVERHEAD = 16;  // of an allocation
  // Room for eight entries and sixteen places of the table to find them.
  EXPECT_EQ(small, 8 * sizeof(StagedEntry) + OVERHEAD + size_t{16} * 8 + OVERHEAD);
  entry.value.set("short");  // in the entry itself
  EXPECT_EQ(staged.bytes(), small);
  const std::string text(1000, 'x');
  entry.value.set(text);
  EXPECT_EQ(staged.bytes(), small + text.size() + OVERHEAD);
  const size_t withoutIndices = staged.bytes();
  staged.stage(*gain_, {text}, false);
  EXPECT_GE(staged.bytes(), withoutIndices + sizeof(std::string) + text.size());
  staged.clear();
  EXPECT_EQ(staged.bytes(), 0U);
}

}  // namespace

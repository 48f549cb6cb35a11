#include "database/index_situations.h"

#include <gtest/gtest.h>

#include <utility>

#include "base/system_log.h"
#include "database/evaluation.h"
#include "database/gather.h"
#include "database/index_values.h"
#include "tests/support/random_texts.h"

namespace {

constexpr std::string_view TEXT = R"(
mode rw { }
other rw { }
i index { rangeValid { 0..9 } ctrlValid ( mode != 9 ) rangeValid ( mode == 1 ) { 0..4 }
          rangeValid ( mode != 1 ) { (other)..9 } }
own index { rangeValid { 0..9 } ctrlValid ( q != 9 ) }
behind index { rangeValid { 0..9 } ctrlValid ( i != 9 && mode != 2 ) }
p rw { index { i } }
q rw { index { own } }
r rw { index { i, behind } }
alone rw { }
)";

class IndexSituationsTest : public testing::Test {
 protected:
  void SetUp() override { define(database_, TEXT); }

  ParmEntry& parm(const char* name) { return *database_.findParm(name); }

  /// Stages a value and says so, as a commit does.
  void change(const char* name, const IndexTuple& indices, const char* value) {
    situations_.forget(parm(name));
    staged_.stage(parm(name), indices, false).value.set(value);
  }

  /// The index at `place` of an instance, with the values of those before it bound.
  PresentIndex& at(const char* name, const IndexTuple& indices, size_t place = 0) {
    own_ = gather(parm(name), indices, staged_);
    for (size_t i = 0; i < place; ++i) parm(name).parm.bindIndex(own_, i, indices[i]);
    return situations_.at(parm(name), indices, place, own_);
  }

  Database database_;
  StagedValues staged_;
  IndexSituations situations_{staged_};
  Situation own_{0};
};

TEST_F(IndexSituationsTest, AreTheSameForAllInstancesUntilANameChanges) {
  EXPECT_TRUE(at("p", {"1"}).isAvailable());
  EXPECT_TRUE(at("p", {"1"}).takes("7"));
  // A change that nobody tells of shows what is remembered, also for another parameter.
  staged_.stage(parm("mode"), {}, false).value.set("9");
  EXPECT_TRUE(at("p", {"2"}).isAvailable());
  EXPECT_TRUE(at("r", {"2", "3"}).isAvailable());
  change("alone", {}, "5");
  EXPECT_TRUE(at("p", {"1"}).isAvailable());
  situations_.forget(parm("mode"));
  EXPECT_FALSE(at("p", {"1"}).isAvailable());
  change("mode", {}, "1");
  EXPECT_TRUE(at("p", {"1"}).isAvailable());
  EXPECT_FALSE(at("p", {"1"}).takes("7"));
  change("mode", {}, "2");
  change("other", {}, "8");
  EXPECT_FALSE(at("p", {"1"}).takes("7"));
  EXPECT_TRUE(at("p", {"1"}).takes("8"));
  change("mode", {}, "9");
  EXPECT_FALSE(at("r", {"1", "2"}).isAvailable());
}

TEST_F(IndexSituationsTest, AreThoseOfEachInstanceWhereANameDependsOnIt) {
  change("q", {"2"}, "9");
  EXPECT_TRUE(at("q", {"1"}).isAvailable());
  EXPECT_FALSE(at("q", {"2"}).isAvailable());
  EXPECT_TRUE(at("q", {"3"}).isAvailable());
  EXPECT_TRUE(at("r", {"1", "2"}, 1).isAvailable());
  EXPECT_FALSE(at("r", {"9", "2"}, 1).isAvailable());
  change("mode", {}, "2");
  EXPECT_FALSE(at("r", {"1", "2"}, 1).isAvailable());
}

TEST_F(IndexSituationsTest, DependOnTheParametersThatAnIndexInUseNames) {
  for (const char* name : {"mode", "other", "q"}) EXPECT_TRUE(parm(name).isNamedByIndices) << name;
  for (const char* name : {"p", "r", "alone"}) EXPECT_FALSE(parm(name).isNamedByIndices) << name;
}

// A transaction in a random device, in which values change one after the other as in a commit.
class RandomWalk {
 public:
  explicit RandomWalk(uint32_t seed) : random_(seed), text_(random_.text()) {}

  [[nodiscard]] const std::string& text() const { return text_; }
  /// Whether the device can be used.
  bool begin() {
    if (defineOrRefuse(database_, text_) != 0) return false;
    for (ParmEntry* parm : database_.parmsInNameOrder()) {
      forEachInstance(database_, parm->parm, [&](const IndexTuple& indices) {
        entries_.push_back(&staged_.stage(*parm, indices, true));
      });
    }
    return !entries_.empty();
  }

  /// Changes a value as a client does, or evaluates one.
  void step() {
    StagedEntry& entry = *entries_[random_.below(entries_.size())];
    if (random_.below(3) == 0) {
      situations_.forget(*entry.parm);
      entry.value.set(random_.oneOf(VALUES));
    } else {
      static_cast<void>(evaluate(entry, situations_, random_.below(2) == 0));
    }
  }

  /// What every index of every instance is.
  Texts seen(IndexSituations& situations) {
    Texts texts;
    for (const StagedEntry* entry : entries_) {
      ParmEntry& parm = *entry->parm;
      Situation own = gather(parm, entry->indices, staged_);
      for (size_t i = 0; i < entry->indices.size(); ++i) {
        PresentIndex& index = situations.at(parm, entry->indices, i, own);
        std::string text =
            fullName(*entry) + " " + index.name() + (index.isAvailable() ? ":" : "?");
        for (const char* value : {"0", "1", "2", "a"}) text += index.takes(value) ? "+" : "-";
        texts.push_back(text);
        parm.parm.bindIndex(own, i, entry->indices[i]);
      }
    }
    return texts;
  }
  Texts remembered() { return seen(situations_); }
  Texts asked() {
    IndexSituations fresh(staged_);
    return seen(fresh);
  }

 private:
  RandomTexts random_;
  std::string text_;
  Database database_;
  StagedValues staged_;
  IndexSituations situations_{staged_};
  std::vector<StagedEntry*> entries_;
};

TEST(IndexSituations, AreThoseThatAskingAnewWouldGive) {
  constexpr uint32_t TEXTS = 6000;
  constexpr int STEPS = 30;
  const LogRedirection unseen([](const std::string& /*line*/) {});
  testing::internal::CaptureStderr();  // a cycle is said there
  int changes = 0;
  for (uint32_t seed = 0; seed < TEXTS; ++seed) {
    RandomWalk walk(seed);
    SCOPED_TRACE(walk.text());
    if (!walk.begin()) continue;
    Texts before = walk.remembered();
    for (int i = 0; i < STEPS; ++i) {
      walk.step();
      Texts now = walk.remembered();
      ASSERT_EQ(now, walk.asked());
      changes += now != before ? 1 : 0;
      before = std::move(now);
    }
  }
  static_cast<void>(testing::internal::GetCapturedStderr());
  RecordProperty("changes", changes);
  EXPECT_GT(changes, 200);
}

}  // namespace

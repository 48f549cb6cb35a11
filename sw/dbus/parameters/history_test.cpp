#include "sw/dbus/parameters/history.h"

#include <gtest/gtest.h>

namespace {

// One change each.
class HistoryTest : public testing::Test {
 protected:
  void add(uint32_t serial, const std::string& before, const std::string& after) {
    CommittedValue held;
    held.value.set(after);
    CommitRecord record;
    record.makeRoom(before);
    history_.add(serial, serial * 10, ":1.5", {{"gain", &held, nullptr, record.add(before)}},
                 record);
  }
  std::string shown() {
    std::string text;
    for (const PastCommit& commit : history_.commits()) {
      text +=
          std::to_string(commit.serial) + " " + std::to_string(commit.time) + " " + commit.caller;
      forEachChange(commit, [&](const std::string& name, const std::string& before,
                                const std::string& after) {
        text += " " + name + ":" + before + ">" + after;
      });
      text += "\n";
    }
    return text;
  }

  History history_;
};

TEST_F(HistoryTest, KeepsWhatHasChanged) {
  add(1, "", "5");
  add(2, "5", "");
  EXPECT_EQ(shown(), "1 10 :1.5 gain:>5\n2 20 :1.5 gain:5>\n");
}

TEST_F(HistoryTest, LetsTheOldestGo) {
  constexpr uint32_t MORE = 10;
  for (uint32_t serial = 1; serial <= History::MOST_COMMITS + MORE; ++serial) add(serial, "1", "2");
  EXPECT_EQ(history_.commits().size(), History::MOST_COMMITS);
  EXPECT_EQ(history_.commits().front().serial, MORE + 1);
}

TEST_F(HistoryTest, IsBoundedInBytes) {
  const std::string third(History::MOST_BYTES / 3, 'x');
  for (uint32_t serial = 1; serial <= 5; ++serial) add(serial, "", third);
  EXPECT_EQ(history_.commits().size(), 2U);
  EXPECT_EQ(history_.commits().back().serial, 5U);
  EXPECT_LE(history_.bytes(), History::MOST_BYTES);
  add(6, "", std::string(History::MOST_BYTES, 'x'));
  EXPECT_EQ(history_.commits().back().serial, 5U);
  add(7, "", "1");
  EXPECT_EQ(history_.commits().back().serial, 7U);
}

}  // namespace

#include "check/static/static_test.h"

namespace {

TEST(Triggers, ShouldNotFollowAParameter) {
  const StaticCase cases[] = {
      {"n rw { } go wo { rangeValid { 0..(n) } }", {"1:35 n"}},
      {"n rw { } go wo { rangeValid { 0..9 } rangeValid (1 < n) { 0..5 } }", {"1:54 n"}},
      {"n rw { } go wo { rangeValid (MODEL == 1) { 0..9 } rangeDoc { 0..(n) } }"},
      {"n rw { } go wo { rangeValid { 0..9 } ctrlValid (n) default (n) { 1 } }"},
      {"n rw { } go rw { rangeValid { 0..(n) } }"},
      {"i index { rangeValid { 1..4 } } go wo { index { i } rangeValid { 0..(i) } }"},
  };
  initVidStdTables();
  for (const StaticCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(placesOf(checkTriggers, c.text, {{"MODEL", "1"}}), c.found);
  }
}

TEST(Triggers, AreAnnouncedAgainByWhatTheyFollow) {
  initVidStdTables();
  Database database;
  define(database, "n rw { rangeValid { 1..9 } } go wo { rangeValid { 0..(n) } }");
  std::vector<std::string> names;
  for (const auto& [name, value] : {Set{"n", "9"}, Set{"go", "3"}, Set{"n", "8"}}) {
    Transaction transaction(database);
    static_cast<void>(transaction.set(name, value, false));
    names.clear();
    static_cast<void>(commitNames(transaction, names));
  }
  EXPECT_EQ(names, (std::vector<std::string>{"go", "n"}));
}

}  // namespace

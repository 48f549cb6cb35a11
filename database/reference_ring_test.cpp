#include "database/reference_ring.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

// The ring at the name that finish() gives for `text`; "a, b by i" where b names the next one by
// its index i.
std::string ringOf(const std::string& text) {
  const DefinitionText parsed = parseText(text);
  Database database;
  DiagnosticCollector diagnostics;
  EXPECT_EQ(buildDefinitions(diagnostics, parsed.records, parsed.lines, false, database), 1);
  std::string name;
  EXPECT_EQ(diagnostics.textLines().size(), 1U);
  name = diagnostics.textLines().front();
  name.erase(0, name.rfind(' ') + 1);
  std::string ring;
  for (const RingStep& step : referenceRing(*database.findParm(name))) {
    ring += (ring.empty() ? "" : ", ") + step.parm->parm.name();
    if (step.index != nullptr) ring += " by " + step.index->index->name();
  }
  return ring;
}

TEST(ReferenceRing, IsAShortestOneWithoutThePairsThatNameEachOther) {
  struct Case {
    std::string text;
    std::string ring;
  };
  const Case cases[] = {
      {"a rw { ctrlRO (b) } b rw { ctrlRO (c) } c rw { ctrlRO (a) }", "a, b, c"},
      // The way by d is longer.
      {"a rw { ctrlRO (d + b) } b rw { ctrlRO (c) } c rw { ctrlRO (a) } d rw { ctrlRO (b) }",
       "a, b, c"},
      // a and b name each other, so the ring is the other way round.
      {"a rw { ctrlRO (b + c) } b rw { ctrlRO (a) } c rw { ctrlRO (b) }", "a, c, b"},
      // Above the ring, and below it.
      {"a rw { ctrlRO (b) } b rw { ctrlRO (c) } c rw { ctrlRO (d) } d rw { ctrlRO (b + e) } e rw "
       "{ }",
       "b, c, d"},
      {"i index { rangeValid { 1..2 } rangeValid (c > 0) { 1..(c) } } a rw { index { i } } "
       "b rw { ctrlRO (a) } c rw { ctrlRO (b) }",
       "a by i, c, b"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(ringOf(c.text), c.ring);
  }
}

TEST(ReferenceRing, IsEmptyWhereThereIsNone) {
  const DefinitionText parsed =
      parseText("a rw { ctrlRO (b + a) } b rw { ctrlRO (a + c) } c rw { }");
  Database database;
  DiagnosticCollector diagnostics;
  EXPECT_EQ(buildDefinitions(diagnostics, parsed.records, parsed.lines, false, database), 0);
  for (const char* name : {"a", "b", "c"}) {
    EXPECT_TRUE(referenceRing(*database.findParm(name)).empty()) << name;
  }
}

}  // namespace

#include "sw/parm/build/build_translations.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

std::string translated(const IndexDef& definition, std::string value) {
  definition.translate(value);
  return value;
}

TEST(BuildTranslations, MapsSourcesToTargets) {
  const BuiltText built(
      "p rw { valueChange { \"on\" -> 1 } valueChange { 0x10 -> \"off\" } }\n"
      "i index { valueChange { 1 -> 2 } }\n");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_EQ(translated(built.parm("p"), "on"), "1");
  EXPECT_EQ(translated(built.parm("p"), "16"), "off");
  EXPECT_EQ(translated(built.parm("p"), "0x10"), "0x10");  // compared as texts, in decimal
  EXPECT_EQ(translated(built.parm("p"), "1"), "1");
  EXPECT_EQ(translated(built.index("i"), "1"), "2");
}

TEST(BuildTranslations, ReportsTwoTargetsOfOneSource) {
  const std::string text =
      "p rw {\n"
      "  valueChange { \"on\" -> 1 }\n"
      "  valueChange { \"on\" -> 2 }\n"
      "  valueChange { \"on\" -> 1 }\n"
      "}\n";
  expectReports({
      {text,
       {},
       -1,
       "Error on line 3\n"
       "A value has multiple translations.\n"
       "  valueChange { \"on\" -> 2 }\n"
       "                ^\n"},
      {"i index { valueChange { 8 -> 1 }\n valueChange { 010 -> 2 } }\n",
       {},
       -1,
       "Error on line 2\n"
       "A value has multiple translations.\n"
       " valueChange { 010 -> 2 } }\n"
       "               ^\n"},
      // The same translation twice, two sources of one target, and a chain are all right.
      {"p rw { valueChange { 1 -> 2 } valueChange { 1 -> 2 } valueChange { 3 -> 2 }\n"
       " valueChange { 2 -> 4 } }\n",
       {},
       0,
       ""},
  });
  EXPECT_EQ(translated(BuiltText(text).parm("p"), "on"), "1");
}

}  // namespace

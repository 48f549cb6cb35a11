#include "sw/parm/build/build_indices.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

std::vector<std::string> indexNames(const ParmDef& parm) {
  std::vector<std::string> names;
  for (const IndexDef* index : parm.indices()) names.push_back(index->name());
  return names;
}

using Names = std::vector<std::string>;

TEST(BuildIndices, ResolvesTheListInItsOrder) {
  const BuiltText built(
      "gain rw { index { side, channel } }\n"
      "side index { rangeValid { \"left\", \"right\" } }\n"
      "channel index { rangeValid { 1..2 } }\n"
      "plain rw { }\n");
  EXPECT_EQ(built.result, 0);
  EXPECT_EQ(built.diagnostics, "");
  EXPECT_EQ(built.errors, "");
  EXPECT_EQ(indexNames(built.parm("gain")), (Names{"side", "channel"}));
  EXPECT_EQ(built.parm("gain").indices()[1], &built.index("channel"));
  EXPECT_EQ(indexNames(built.parm("plain")), Names{});
}

TEST(BuildIndices, ReportsWhatIsNoIndex) {
  expectReports({
      {"gain rw {\n"
       "  index { channel,\n"
       "          side }\n"
       "}\n"
       "side index { }\n",
       {{"channel", "1"}},  // a constant is no index
       -1,
       "Error on line 2\n"
       "Undefined index. channel\n"
       "  index { channel,\n"
       "          ^\n",
       "Internal error: Could not find index \"channel\"\n"},
      {"gain rw { index { mode } }\n"
       "mode ro { }\n",
       {},
       -1,
       "Error on line 1\n"
       "Invalid index.\n"
       "gain rw { index { mode } }\n"
       "                  ^\n",
       "Internal error: Could not find index \"mode\"\n"},
      {"gain rw { index { gain, nobody } }",
       {},
       -1,
       "Error on line 1\n"
       "Invalid index.\n"
       "gain rw { index { gain, nobody } }\n"
       "                  ^\n"
       "Error on line 1\n"
       "Undefined index. nobody\n"
       "gain rw { index { gain, nobody } }\n"
       "                        ^\n",
       "Internal error: Could not find index \"gain\"\n"
       "Internal error: Could not find index \"nobody\"\n"},
      // The text ends before the access word, so nothing is defined.
      {"gain rw { index { late } }\nlate",
       {},
       -1,
       "Error on line 1\n"
       "Undefined index. late\n"
       "gain rw { index { late } }\n"
       "                  ^\n",
       "Internal error: Could not find index \"late\"\n"},
  });
}

TEST(BuildIndices, KeepsTheIndicesThatThereAre) {
  const BuiltText built("gain rw { index { nobody, side } }\nside index { }\n");
  EXPECT_EQ(indexNames(built.parm("gain")), Names{"side"});
}

TEST(BuildIndices, UsesTheFirstOfSeveralStatements) {
  const std::string text =
      "gain rw {\n"
      "  index { channel }\n"
      "  index { side, channel }\n"
      "  index { nobody }\n"
      "}\n"
      "channel index { }\n"
      "side index { }\n";
  expectReports({{text,
                  {},
                  0,
                  "Warning on line 3\n"
                  "Mulitple index definitions. Only first index definition will be used.\n"
                  "  index { side, channel }\n"
                  "          ^\n"}});
  EXPECT_EQ(indexNames(BuiltText(text).parm("gain")), Names{"channel"});
}

TEST(BuildIndices, MergesTheStatementsOfANameDefinedTwice) {
  expectReports(
      {{"channel index { }\n"
        "gain rw { index { channel } }\n"
        "gain rw { index { channel } }\n",
        {},
        0,
        "Warning on line 3\n"
        "Mulitple index definitions. Only first index definition will be used.\n"
        "gain rw { index { channel } }\n"
        "                  ^\n"}});
}

TEST(BuildIndices, PassesOverTheListOfAnIndex) {
  const std::string text =
      "channel index {\n"
      "  index { nobody, side }\n"
      "  index { mode }\n"
      "  rangeValid { 1..2 }\n"
      "}\n";
  expectReports({{text,
                  {},
                  0,
                  "Warning on line 2\n"
                  "An index has defined indices.\n"
                  "  index { nobody, side }\n"
                  "          ^\n"}});
  EXPECT_EQ(itemsText(BuiltText(text).index("channel").baseBounds()), "1..2");
}

// A registry that does not hold what it was given.
class ForgetfulRegistry final : public DefinitionRegistry {
 public:
  const std::string* findConstant(std::string_view /*name*/) const override { return nullptr; }
  int registerIndex(std::unique_ptr<IndexDef> /*index*/) override { return 1; }
  const IndexDef* findIndex(std::string_view /*name*/) const override { return nullptr; }
  int registerParm(std::unique_ptr<ParmDef> /*parm*/) override { return 1; }
  int finish(std::string& /*name*/) override { return 0; }
};

TEST(BuildIndices, ReportsAnIndexThatTheRegistryDoesNotHold) {
  const DefinitionText text = parseText("gain rw { index { side } }\nside index { }\n");
  ForgetfulRegistry registry;
  DiagnosticCollector diagnostics;
  EXPECT_EQ(buildDefinitions(diagnostics, text.records, text.lines, false, registry), -1);
  EXPECT_EQ(diagnostics.textLines(), Names{"Internal error: Could not find index \"side\""});
  EXPECT_TRUE(diagnostics.diagnostics().empty());
}

}  // namespace

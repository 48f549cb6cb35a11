#include "sw/dbus/parameters/parameter_queries.h"

#include "tests/support/parameters.h"

namespace {

using Names = std::vector<const char*>;

constexpr std::string_view TEXT =
    R"(mode rw { rangeValid { "slow", "fast" } valueChange { "f" -> "fast" } }
rate rw {
  rangeValid (mode == "slow") { 1..10 }
  rangeValid (mode == "fast") { 1..100, "max" }
  default { 5 }
}
boost rw { ctrlValid (mode == "fast") ctrlRO (rate > 50) }
port index { rangeValid { 9..10 } rangeValid (mode == "slow") { 9 } rangeValid (mode == "fast") { 9..10 } }
gain rw { index { port } }
bad rw { rangeValid { 0..(1 / boost) } }
log wo { }
offs rw { index { port } }
)";

class ParameterQueries : public testing::Test {
 protected:
  ParameterQueries() : device_(TEXT) {
    device_.commit(":1.1", {{"mode", "slow"}, {"rate", "7"}});
    device_.service().state().setCaller(":1.1");
    EXPECT_EQ(device_.service().state().openTransaction(id_), 0);
    transaction_ = device_.service().state().findTransaction(id_);
  }

  TestParameters device_;
  uint32_t id_ = 0;
  Transaction* transaction_ = nullptr;
};

TEST_F(ParameterQueries, ListWhatThereIs) {
  const struct {
    const char* pattern;
    const char* answer;
  } cases[] = {
      {"",
       "[(\"bad\", \"rw\", [], 10, 3), (\"boost\", \"rw\", [], 7, 2), "
       "(\"gain\", \"rw\", [\"port\"], 9, 1), (\"log\", \"wo\", [], 11, 0), "
       "(\"mode\", \"rw\", [], 1, 0), (\"offs\", \"rw\", [\"port\"], 12, 1), (\"port\", \"index\", "
       "[], 8, 0), "
       "(\"rate\", \"rw\", [], 2, 1)]"},
      {"?o?st", "[(\"boost\", \"rw\", [], 7, 2)]"},
      {"nosuch", "[]"},
      {"[", "InvalidPattern: The pattern \"[\" is wrong: a \"[\" has no \"]\""},
      {"a\\", "InvalidPattern: The pattern \"a\\\" is wrong: a \"\\\" is at its end"},
  };
  for (const auto& [pattern, answer] : cases) {
    EXPECT_EQ(device_.call(answerList, pattern), answer) << pattern;
  }
}

TEST_F(ParameterQueries, ListNamesOfSomeAccess) {
  const struct {
    const char* pattern;
    Names access;
    const char* answer;
  } cases[] = {
      {"", {}, "[\"bad\", \"boost\", \"gain\", \"log\", \"mode\", \"offs\", \"port\", \"rate\"]"},
      {"*o*", {}, "[\"boost\", \"log\", \"mode\", \"offs\", \"port\"]"},
      {"*o*", {"wo", "index", "wo"}, "[\"log\", \"port\"]"},
      {"", {"ro", "nosuch"}, "[]"},
      {"[", {}, "InvalidPattern: The pattern \"[\" is wrong: a \"[\" has no \"]\""},
  };
  for (const auto& [pattern, access, answer] : cases) {
    EXPECT_EQ(device_.call(answerListNames, pattern, access), answer) << pattern;
  }
}

TEST_F(ParameterQueries, ListInstancesOfASituation) {
  EXPECT_EQ(device_.call(answerListInstances, NO_TRANSACTION, Names()),
            "[\"bad\", \"gain[9]\", \"log\", \"mode\", \"offs[9]\", \"rate\"]");
  EXPECT_EQ(device_.call(answerListInstances, NO_TRANSACTION, Names{"rate", "no", "gain", "port"}),
            "[\"gain[9]\", \"rate\"]");
  ASSERT_EQ(transaction_->set("mode", "fast", false), STAGE_DONE);
  EXPECT_EQ(device_.call(answerListInstances, id_, Names{"gain", "boost"}),
            "[\"boost\", \"gain[9]\", \"gain[10]\"]");
  EXPECT_EQ(device_.call(answerListInstances, 7U, Names()),
            "UnknownTransaction: No transaction 7 is open that this client may use");
}

TEST_F(ParameterQueries, GiveDefinitions) {
  EXPECT_EQ(device_.call(answerGetDefinition, "rate"),
            "{\"access\": <\"rw\">, \"indices\": <[]>, \"line\": <2>, \"level\": <1>, "
            "\"statements\": <[(3, \"rangeValid (mode == \"slow\") { 1..10 }\"), "
            "(4, \"rangeValid (mode == \"fast\") { 1..100, \"max\" }\"), "
            "(5, \"default { 5 }\")]>, \"translations\": <[]>, \"uses\": <[\"mode\"]>, "
            "\"used-by\": <[\"boost\"]>, \"description\": <\"\">}");
  EXPECT_EQ(device_.call(answerGetDefinition, "port"),
            "{\"access\": <\"index\">, \"indices\": <[]>, \"line\": <8>, \"level\": <0>, "
            "\"statements\": <[(8, \"rangeValid { 9..10 }\"), "
            "(8, \"rangeValid (mode == \"slow\") { 9 }\"), "
            "(8, \"rangeValid (mode == \"fast\") { 9..10 }\")]>, "
            "\"translations\": <[]>, \"uses\": <[\"mode\"]>, \"used-by\": <[\"gain\", \"offs\"]>, "
            "\"description\": <\"\">}");
  const std::string mode = device_.call(answerGetDefinition, "mode");
  EXPECT_NE(mode.find("\"translations\": <[(\"f\", \"fast\")]>"), std::string::npos) << mode;
  EXPECT_NE(mode.find("\"used-by\": <[\"boost\", \"port\", \"rate\"]>"), std::string::npos) << mode;
  EXPECT_EQ(device_.call(answerGetDefinition, "gain[9]"),
            "UnknownParameter: No definition has the name \"gain[9]\"");
}

// In one line, and with what is not valid UTF-8 replaced.
TEST_F(ParameterQueries, GiveStatementsAsTheyAreWritten) {
  TestParameters device(
      "mode wo { ctrlValid (1==2)\n  rangeValid\n# of colours\n    { \"red  \xf6\", \"blue\" } "
      "}\n");
  const std::string mode = device.call(answerGetDefinition, "mode");
  EXPECT_NE(mode.find("\"statements\": <[(1, \"ctrlValid (1==2)\"), "
                      "(2, \"rangeValid { \"red  \xef\xbf\xbd\", \"blue\" }\")]>"),
            std::string::npos)
      << mode;
  EXPECT_TRUE(device.call(answerExplain, NO_TRANSACTION, "mode")
                  .starts_with("[(\"exists\", \"no\", 1, \"ctrlValid (1==2)\", {}), "));
}

TEST_F(ParameterQueries, GiveDescriptions) {
  device_.service().database().keepDescription("rate", "How fast.\nPer second.");
  const std::string rate = device_.call(answerGetDefinition, "rate");
  EXPECT_NE(rate.find("\"description\": <\"How fast.\nPer second.\">"), std::string::npos) << rate;
}

TEST_F(ParameterQueries, GiveUses) {
  EXPECT_EQ(device_.call(answerGetUses, Names{"boost", "gain[9]", "mode", "gain[77]", "boost"}),
            "[[\"mode\", \"rate\"], [\"mode\"], [], [\"mode\"], [\"mode\", \"rate\"]]");
  EXPECT_EQ(device_.call(answerGetUses, Names{"gain", "mode[1]", "no", "port"}),
            "[[], [], [], []]");
  EXPECT_EQ(device_.call(answerGetUses, Names()), "[]");
}

// The numbers are the sums of the flags.
TEST_F(ParameterQueries, GiveStates) {
  EXPECT_EQ(
      device_.call(answerGetState, NO_TRANSACTION,
                   Names{"rate", "mode", "boost", "gain[9]", "gain[10]", "bad", "no", "port"}),
      "[(\"rate\", 87, \"7\", [(1, 10)], []), "
      "(\"mode\", 87, \"slow\", [], [\"fast\", \"slow\"]), "
      "(\"boost\", 1, \"\", [], []), "
      "(\"gain[9]\", 7, \"\", [], []), "
      "(\"gain[10]\", 33, \"\", [], []), "
      "(\"bad\", 39, \"\", [], []), "
      "(\"no\", 0, \"\", [], []), "
      "(\"port\", 0, \"\", [], [])]");
  ASSERT_EQ(transaction_->set("mode", "fast", false), STAGE_DONE);
  ASSERT_EQ(transaction_->set("rate", "60", false), STAGE_DONE);
  EXPECT_EQ(device_.call(answerGetState, id_, Names{"rate", "boost"}),
            "[(\"rate\", 95, \"60\", [(1, 100)], [\"max\"]), (\"boost\", 3, \"\", [], [])]");
  EXPECT_EQ(device_.call(answerGetState, id_, Names()), "[]");
  EXPECT_EQ(device_.call(answerGetState, 9U, Names()),
            "UnknownTransaction: No transaction 9 is open that this client may use");
}

TEST_F(ParameterQueries, Explain) {
  EXPECT_EQ(device_.call(answerExplain, NO_TRANSACTION, "boost"),
            "[(\"exists\", \"no\", 7, \"ctrlValid (mode == \"fast\")\", {\"mode\": \"slow\"}), "
            "(\"writable\", \"no\", 7, \"ctrlValid (mode == \"fast\")\", {\"mode\": \"slow\"}), "
            "(\"limits\", \"any\", 0, \"\", {}), (\"default\", \"\", 0, \"\", {}), "
            "(\"value\", \"\", 0, \"\", {})]");
  EXPECT_EQ(device_.call(answerExplain, NO_TRANSACTION, "gain"),
            "UnknownParameter: No instance of its parameter has so many index values: \"gain\"");
}

TEST_F(ParameterQueries, Preview) {
  ASSERT_EQ(transaction_->set("mode", "fast", false), STAGE_DONE);
  ASSERT_EQ(transaction_->set("rate", "60", false), STAGE_DONE);
  ASSERT_EQ(transaction_->set("offs[7]", "1", false), STAGE_DONE);
  EXPECT_EQ(device_.call(answerPreview, id_),
            "[(\"boost\", \"\", \"\", [\"mode\", \"rate\"]), "
            "(\"gain[10]\", \"\", \"\", [\"mode\"]), "
            "(\"mode\", \"slow\", \"fast\", [\"mode\"]), "
            "(\"offs[10]\", \"\", \"\", [\"mode\"]), "
            "(\"rate\", \"7\", \"60\", [\"rate\", \"mode\"])], "
            "[(\"offs[7]\", \"does not exist, line 8: rangeValid { 9..10 }\")]");
  EXPECT_EQ(device_.call(answerPreview, NO_TRANSACTION), "[], []");
  EXPECT_EQ(*transaction_->find("rate"), "60");
}

}  // namespace

#include "ctl/words/candidates.h"

#include <gtest/gtest.h>

namespace {

using List = std::vector<std::string>;

TEST(Candidates, TakeLiteralsFromStatements) {
  const struct {
    std::string statement;
    List literals;
  } cases[] = {
      {R"(ctrlRO (test_pattern != "zone_plate"))", {"zone_plate"}},
      {R"(rangeValid (a > 50 && b2 == 0x10) { 0..(a - 100) })", {"50", "0x10", "0", "100"}},
      {R"(ctrlValid (output $ "625i" || output $ ""))", {"625i", ""}},
      {"ro", {}},
      {"", {}},
  };
  for (const auto& c : cases) EXPECT_EQ(literalsOf(c.statement), c.literals) << c.statement;
}

TEST(Candidates, AreMentionedAsWords) {
  const std::string statement = "rangeValid { 0..(vidStd::mode::spal - gain_max - 1) }";
  for (const char* name : {"mode", "gain_max"}) EXPECT_TRUE(mentions(statement, name)) << name;
  for (const char* name : {"gain", "max", "ode", "x"}) {
    EXPECT_FALSE(mentions(statement, name)) << name;
  }
  EXPECT_TRUE(mentions("gain", "gain"));
}

TEST(Candidates, TryTheNearestAndTheTelling) {
  const uint32_t limited = STATE_KNOWN | STATE_LIMITED;
  const struct {
    InstanceState state;
    List literals;
    List values;
  } cases[] = {
      {{.flags = limited, .value = "2", .spans = {{0, 4}}}, {}, {"1", "3", "0", "4"}},
      {{.flags = limited, .value = "b", .texts = {"a", "b", "c"}}, {"x"}, {"a", "c"}},
      {{.flags = limited, .value = "10", .spans = {{0, 1000}}},
       {"500", "x", "2000"},
       {"0", "499", "500", "501", "1000"}},
      {{.flags = limited, .value = "", .spans = {{1, 2}}, .texts = {"off"}}, {}, {"1", "2", "off"}},
      // Where everything is taken, what the statements name may tell, or that it is another value.
      {{.flags = STATE_KNOWN, .value = "y"}, {"x", "y", "5"}, {"x", "5", "6", "4", "0", "1"}},
      {{.flags = STATE_KNOWN, .value = "*"}, {"*"}, {"x", "0", "1"}},
      {{.flags = STATE_KNOWN, .value = "5"}, {"5"}, {"6", "4", "0", "1", "x"}},
      {{.flags = STATE_KNOWN, .value = ""}, {}, {"x", "0", "1"}},
  };
  for (const auto& c : cases) EXPECT_EQ(valuesToTry(c.state, c.literals), c.values);
}

TEST(Candidates, ComeFromWhatForbids) {
  const std::vector<Reason> reasons = {{"exists", "yes", 1, "a", {}},
                                       {"writable", "no", 2, "b", {}},
                                       {"limits", "0..5", 3, "c", {}},
                                       {"default", "5", 4, "d", {}}};
  const auto lines = [&](bool isForValue) {
    std::vector<uint32_t> all;
    for (const Reason& reason : decidingReasons(reasons, isForValue)) all.push_back(reason.line);
    return all;
  };
  EXPECT_EQ(lines(false), std::vector<uint32_t>({2}));
  EXPECT_EQ(lines(true), std::vector<uint32_t>({2, 3}));
}

}  // namespace

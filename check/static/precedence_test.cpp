#include "check/static/static_test.h"

namespace {

std::string inCondition(std::string_view condition) {
  return "a rw { }\nflag rw { rangeValid { 0..1 } }\nlate ro { rangeValid { (a > 1) } }\nb rw { "
         "ctrlRO (" +
         std::string(condition) + ") }";
}

struct Row {
  std::string_view condition;
  std::vector<std::string> found = {};
  std::vector<std::string> proposed = {};
};

void expectRows(std::span<const Row> rows) {
  for (const Row& row : rows) {
    SCOPED_TRACE(row.condition);
    EXPECT_EQ(placesOf(checkPrecedence, inCondition(row.condition)), row.found);
    EXPECT_EQ(proposalsOf(checkPrecedence, inCondition(row.condition)), row.proposed);
  }
}

TEST(Precedence, PutsComparisonsBeforeBits) {
  const Row rows[] = {
      {"a & 8 == 0", {"4:18 &"}, {"a & 8 -> (a & 8)"}},
      {"0 != a & 8", {"4:23 &"}, {"a & 8 -> (a & 8)"}},
      {"8 & a == 0", {"4:18 &"}, {"8 & a -> (8 & a)"}},
      {"8 == 4 & a", {"4:23 &"}, {"4 & a -> (4 & a)"}},
      {"a | 1 == a", {"4:18 |"}, {"a | 1 -> (a | 1)"}},
      {"a ^ a == 3", {"4:18 ^"}, {}},
      {"a & 3 & 1 < 1", {"4:22 &"}, {"a & 3 & 1 -> (a & 3 & 1)"}},
      {"(a & 8) == 0", {}, {}},
      {"a & (8 == 0)", {}, {}},
      // both sides are 0 or 1, and bits are as good as logic
      {"a == 1 & a == 2", {}, {}},
      {"flag & a == 2", {}, {}},
      {"a == 2 & late", {}, {}},
      {"flag | a == 2 | a $ \"x\"", {}, {}},
      {"a & 8 && a == 2", {}, {}},
  };
  expectRows(rows);
}

TEST(Precedence, PutsSumsBeforeShifts) {
  const Row rows[] = {
      {"a << 8 + flag", {"4:18 <<"}, {"a << 8 -> (a << 8)"}},
      {"1 << a - 1", {"4:18 <<"}, {}},
      {"flag + a << 8", {"4:25 <<"}, {"a << 8 -> (a << 8)"}},
      {"a >> 1 + flag", {"4:18 >>"}, {"a >> 1 -> (a >> 1)"}},
      {"a + 8 >> 4", {}, {}},  // rounds
      {"(a << 8) + flag", {}, {}},
      {"a << (8 + flag)", {}, {}},
      {"a | flag << 8", {}, {}},
      {"a * 2 << 8", {}, {}},
  };
  expectRows(rows);
}

TEST(Precedence, ComparesFromLeftToRight) {
  const Row rows[] = {
      {"0 < a < 10", {"4:22 <"}, {"0 < a < 10 -> 0 < a && a < 10"}},
      {"0 <= a <= 1", {"4:23 <="}, {"0 <= a <= 1 -> 0 <= a && a <= 1"}},
      {"a == flag == 5", {"4:26 =="}, {"a == flag == 5 -> a == flag && flag == 5"}},
      {"1 == a == flag", {"4:23 =="}, {"1 == a == flag -> 1 == a && a == flag"}},
      {"a == late == 1", {"4:26 =="}, {"a == late == 1 -> a == late && late == 1"}},
      {"a != flag != 0", {"4:26 !="}, {"a != flag != 0 -> a != flag && flag != 0"}},
      {"flag == a == flag", {"4:26 =="}, {"flag == a == flag -> flag == a && a == flag"}},
      // whether a condition holds is compared with a flag
      {"a == \"x\" == flag", {}, {}},
      {"a == flag == (a > 1)", {}, {}},
      {"(a == flag) == 1", {}, {}},
      {"(0 < a) < 10", {}, {}},
      {"a < 1 == flag < 1", {}, {}},
      {"a == 1 == flag", {}, {}},
  };
  expectRows(rows);
}

TEST(Precedence, PutsComparisonsBeforeLogic) {
  const Row rows[] = {
      {"a == 1 || 2", {"4:26 2"}, {"2 -> a == 2"}},
      {"a == \"x\" || \"y\"", {"4:28 \"y\""}, {"\"y\" -> a == \"y\""}},
      {"flag && a != 1 && 2", {"4:34 2"}, {"2 -> a != 2"}},
      {"a == 1 || a == 2", {}, {}},
      {"a == (1 || 2)", {"4:21 (1 || 2)"}, {"a == (1 || 2) -> (a == 1 || a == 2)"}},
      {"flag && a != (\"x\" && \"y\")",
       {"4:29 (\"x\" && \"y\")"},
       {"a != (\"x\" && \"y\") -> (a != \"x\" && a != \"y\")"}},
      {"flag == (a == 1 || a == 2)", {}, {}},
      {"a == 1 || a == 2 && a == 3", {"4:33 &&"}, {}},
      {"a == 1 && flag && a == 2 || a == 3", {"4:31 &&"}, {}},
      {"a == \"x\" && a == \"y\" || flag", {"4:25 &&"}, {}},
      {"a == 1 || a == 2 && flag == 3", {}, {}},
      {"a == 1 || a != 2 && a != 3", {}, {}},
      {"a == 1 || a == 2 && a == \"2\"", {}, {}},
      {"a == 1 || flag", {}, {}},
      {"a < 1 || 2", {}, {}},  // what is meant is not certain
      {"flag || 1 && flag", {}, {}},
  };
  expectRows(rows);
}

TEST(Precedence, TellsWhatIsOneOperand) {
  EXPECT_EQ(messagesOf(checkPrecedence, inCondition("a & 8 == 0")).at(0),
            "\"==\" binds more tightly than \"&\", so this takes 8 == 0 as one operand; put what "
            "belongs together into parentheses");
}

TEST(Precedence, IsTheEngines) {
  const auto of = [](const std::string& expression) {
    return heldAfter("a rw { } b ro { rangeValid { (" + expression + ") } }",
                     {{"!b", "99"}, {"a", "12"}}, "b");
  };
  EXPECT_EQ(of("a & 8 == 8"), of("a & (8 == 8)"));
  EXPECT_EQ(of("a << 1 + 1"), of("a << (1 + 1)"));
  EXPECT_EQ(of("0 < a < 10"), "1");
  EXPECT_EQ(of("a == 1 || 2"), "1");
  EXPECT_EQ(of("a == \"x\" || \"y\""), "0");
}

}  // namespace

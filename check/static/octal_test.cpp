#include "check/static/static_test.h"

namespace {

TEST(Octal, IsANumberThatIsAnotherOneInDecimal) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 0..010 } }", {"1:24 010"}},
      {"a rw { rangeValid { -010..-1, 020 } default { 017 } }",
       {"1:21 -010", "1:31 020", "1:47 017"}},
      {"a rw { } b rw { ctrlRO (a == 010 || a == - 011) }", {"1:30 010", "1:42 - 011"}},
      {"a rw { valueChange { 010 -> 012 } }", {"1:22 010", "1:29 012"}},
      {"a rw { rangeValid { 0..99 } default { \"010\" } }", {"1:39 \"010\""}},
      {"a rw { rangeValid { 0..99 } valueChange { \"010\" -> \"012\" } }", {"1:52 \"012\""}},
      {"i index { rangeValid { 1..20 } } a rw { index { i } } b rw { ctrlRO (a[010] == 1) }",
       {"1:70 a[010]"}},
  };
  expectFound(checkOctal, cases);
}

TEST(Octal, IsNoWordWhereBothReadingsAgreeOrATextIsMeant) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { 0, 00, 07, 0x10, 10, 100 } }"},
      {"a rw { rangeValid { \"007\", \"010\" } default { \"010\" } }"},
      {"a rw { } b rw { ctrlRO (a == \"010\") }"},
      {"a rw { } a01 rw { } b rw { ctrlRO (a01 == 1) }"},
  };
  expectFound(checkOctal, cases);
}

TEST(Octal, IsToldOfAConstantOnce) {
  const std::string_view text = "a rw { rangeValid { 0..(TOP) } default { (TOP) } }";
  EXPECT_EQ(placesOf(checkOctal, text, {{"TOP", "010"}}), std::vector<std::string>{"1:25 TOP"});
  EXPECT_EQ(placesOf(checkOctal, text, {{"TOP", "10"}}), std::vector<std::string>{});
  EXPECT_EQ(placesOf(checkOctal, "a rw { ctrlRO (\"010\" == TOP) }", {{"TOP", "010"}}),
            std::vector<std::string>{"1:25 TOP"});
}

TEST(Octal, IsReadSoByTheEngine) {
  EXPECT_EQ(heldAfter("a rw { rangeValid { 0..010 } }", {{"a", "9"}}, "a"), "");
  EXPECT_EQ(heldAfter("a rw { rangeValid { 0..010 } }", {{"a", "8"}}, "a"), "8");
  const std::string_view indexed =
      "i index { rangeValid { 1..20 } } a rw { index { i } rangeValid { 0..9 } }"
      "b ro { rangeValid { (a[010] + 100) } }";
  EXPECT_EQ(heldAfter(indexed, {{"a[8]", "1"}, {"a[10]", "2"}, {"!b", "0"}}, "b"), "100");
}

TEST(Octal, IsNoGroupOfThousands) {
  const StaticCase cases[] = {
      {"a rw { rangeValid { -1,000..1,000 } }", {"1:22 1,000", "1:29 1,000"}},
      {"a rw { rangeValid { 0..1,024,500 } }", {"1:24 1,024,500"}},
      {"a rw { rangeValid { 1,500 } }"},
      {"a rw { rangeValid { 1, 000 } }"},
      {"a rw { rangeValid { 1024,00 } }"},
      {"a rw { rangeValid { 1024,000 } }"},
      // A default tells what a span is.
      {"a rw { rangeValid { 1..86,400 } default { 3600 } }", {"1:24 86,400"}},
      {"a rw { rangeValid { 1..86,400 } default { 86400 } }", {"1:24 86,400"}},
      {"a rw { rangeValid { 1..86,400 } default { 86401 } }"},
      {"a rw { rangeValid { 1..86,400 } default { 86 } }"},
      {"a rw { rangeValid { 1..86,400 } default { 400 } }"},
      {"a rw { rangeValid { 1..86,400, 3600 } default { 3600 } }"},
      {"a rw { rangeValid { 1..86, 400 } default { 3600 } }"},
      {"a rw { rangeValid { 1..86,400..500 } default { 3600 } }"},
      {"a rw { rangeValid { 1..1086,400 } default { 3600 } }"},
  };
  expectFound(checkOctal, cases);
  EXPECT_EQ(proposalsOf(checkOctal, cases[1].text),
            std::vector<std::string>{"1,024,500 -> 1024500"});
}

}  // namespace

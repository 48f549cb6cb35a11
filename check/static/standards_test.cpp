#include "check/static/static_test.h"

namespace {

TEST(Standards, SelectAnotherRowByTheirBeginning) {
  const StaticCase cases[] = {
      {"m rw { rangeValid { \"1080p/25sF\", \"720p/50\" } } a rw { rangeValid { "
       "0..(vidStd::m::spal) } }",
       {"1:21 \"1080p/25sF\""}},
      {"m rw { default { \"1080p/25sF\" } } a rw { rangeValid { 0..(vidStd::m::spal) } }",
       {"1:18 \"1080p/25sF\""}},
      {"m rw { valueChange { \"x\" -> \"1080p/25sF\" } } a rw { ctrlRO (vidStd::m::spal == 1) }",
       {"1:29 \"1080p/25sF\""}},
      {"m rw { rangeValid { \"1080i/500\", \"720p/50\", \"525i/59.94 - RP187(2004)\" } }"
       "a rw { rangeValid { 0..(vidStd::m::spal) } }",
       {"1:21 \"1080i/500\"", "1:45 \"525i/59.94 - RP187(2004)\""}},
      // without a figure it is a text like any other
      {"m rw { rangeValid { \"1080p/25sF\", \"720p/50\" } }"},
      // a remark, or the same rate
      {"m rw { rangeValid { \"720p/50 wide\", \"720p/50.00\", \"1080p/50A\" } }"
       "a rw { rangeValid { 0..(vidStd::m::spal) } }"},
      {"m rw { rangeValid { \"1080i/50\", \"none\" } } a rw { rangeValid { 0..(vidStd::m::spal) } "
       "}"},
  };
  expectFound(checkStandards, cases);
}

TEST(Standards, AreNeverSelected) {
  const StaticCase cases[] = {
      {"m rw { rangeValid { 0..3 } } a rw { rangeValid { 0..(vidStd::m::spal), (vidStd::m::spal) } "
       "}",
       {"1:54 vidStd::m::spal"}},
      {"m rw { rangeValid { \"PAL\", \"NTSC\" } } a rw { rangeValid { 0..(vidStd::m::spal) } }",
       {"1:63 vidStd::m::spal"}},
      {"m rw { rangeValid { \"1280x720/50\" } } a rw { ctrlRO (vidStd::m::f1 == 1 || "
       "vidStd::m::fr) }",
       {"1:54 vidStd::m::f1"}},
      {"c index { rangeValid { \"720p/50\" } } a rw { index { c } ctrlRO (vidStd::c::fr) }",
       {"1:65 vidStd::c::fr"}},
      {"m rw { } a rw { ctrlRO (vidStd::m::fr) }"},
      // what is misspelt is told as that
      {"m rw { rangeValid { \"1080i50\", \"720p50\" } } a rw { rangeValid { 0..(vidStd::m::spal) } "
       "}"},
      {"n rw { } m rw { rangeValid { (n) } } a rw { ctrlRO (vidStd::m::fr) }"},
      {"m rw { rangeValid { \"none\", \"720p/50\" } } a rw { ctrlRO (vidStd::m::fr) }"},
  };
  expectFound(checkStandards, cases);
}

TEST(Standards, AreLookedForInConstants) {
  const std::string_view text = "a rw { rangeValid { 0..(vidStd::STD::spal) } }";
  EXPECT_EQ(placesOf(checkStandards, text, {{"STD", "720p/50"}}), std::vector<std::string>{});
  EXPECT_EQ(placesOf(checkStandards, text, {{"STD", "720p"}}),
            std::vector<std::string>{"1:25 vidStd::STD::spal"});
  EXPECT_EQ(messagesOf(checkStandards, text, {{"STD", "1080p/25sF"}}),
            std::vector<std::string>{
                "the constant \"STD\" is \"1080p/25sF\", which selects \"1080p/25\""});
}

TEST(Standards, GiveTheFiguresOfTheRowThatIsNamed) {
  EXPECT_EQ(heldAfter("m rw { } a ro { rangeValid { (vidStd::m::fr) } }",
                      {{"!a", "0"}, {"m", "1080i/500"}}, "a"),
            "25");
}

}  // namespace

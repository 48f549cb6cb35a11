#include "check/text/name_words.h"

#include <gtest/gtest.h>

namespace {

struct Case {
  std::string_view word;
  std::string_view expected;
};

TEST(NameWords, HaveAUnitBehindANumber) {
  const Case cases[] = {{"500ms", "500"}, {"-3dB", "-3"}, {"10%", "10"}, {"0x10ms", "0x10"},
                        {"ms", ""},       {"500", ""},    {"5x", ""},    {"", ""},
                        {"1080i", ""},    {"08ms", ""},   {"5 ms", ""},  {"1.5ms", ""}};
  for (const Case& c : cases) EXPECT_EQ(numberBeforeUnit(c.word), c.expected) << c.word;
}

TEST(NameWords, AreHexadecimalElsewhere) {
  const Case cases[] = {{"$FF", "0xFF"}, {"&H1F", "0x1F"}, {"0FFh", "0x0FF"}, {"FFh", "0xFF"},
                        {"0bh", "0x0b"}, {"each", ""},     {"EACH", ""},      {"h", ""},
                        {"$", ""},       {"$x", ""},       {"", ""}};
  for (const Case& c : cases) EXPECT_EQ(hexadecimalMeant(c.word), c.expected) << c.word;
}

TEST(NameWords, HaveSignsThatLookAlike) {
  const Case cases[] = {{"\u22125", "-5"},   {"0\u20269", "0..9"}, {"\u2192", "->"},
                        {"a\u00A0b", "a b"}, {"-5", ""},           {"h\u00F6he", ""}};
  for (const Case& c : cases) EXPECT_EQ(withPlainSigns(c.word), c.expected) << c.word;
}

}  // namespace

#include "ctl/completion/number_beginnings.h"

#include <gtest/gtest.h>

namespace {

using Words = std::vector<std::string>;
using Spans = std::vector<Span>;

constexpr int32_t LOWEST = -2147483647 - 1;
constexpr int32_t HIGHEST = 2147483647;

TEST(NumberBeginnings, AreFoundInSpans) {
  const struct {
    Spans spans;
    const char* text;
    uint64_t count;
    Words beginnings;
  } cases[] = {
      {{{0, 65535}},
       "499",
       111,
       {"499", "4990", "4991", "4992", "4993", "4994", "4995", "4996", "4997", "4998", "4999"}},
      {{{0, 65535}}, "6553", 7, {"6553", "65530", "65531", "65532", "65533", "65534", "65535"}},
      {{{0, 65535}}, "65536", 0, {}},
      {{{500, 65535}},
       "499",
       110,
       {"4990", "4991", "4992", "4993", "4994", "4995", "4996", "4997", "4998", "4999"}},
      {{{0, 9}}, "", 10, {"0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}},
      {{{-20, 5}}, "", 26, {"-", "0", "1", "2", "3", "4", "5"}},
      {{{-20, 5}}, "-", 20, {"-1", "-2", "-3", "-4", "-5", "-6", "-7", "-8", "-9"}},
      {{{-20, 5}},
       "-1",
       11,
       {"-1", "-10", "-11", "-12", "-13", "-14", "-15", "-16", "-17", "-18", "-19"}},
      {{{5, 7}, {50, 51}}, "5", 3, {"5", "50", "51"}},
      {{{0, 100}}, "0", 1, {"0"}},
      {{{0, 100}}, "00", 0, {}},  // numbers are offered in one spelling
      {{{-5, 100}}, "-0", 0, {}},
      {{{0, 100}}, "0x1", 0, {}},
      {{{0, 100}}, "1a", 0, {}},
      {{}, "", 0, {}},
      {{{LOWEST, HIGHEST}}, "2147483647", 1, {"2147483647"}},
      {{{LOWEST, HIGHEST}}, "-2147483648", 1, {"-2147483648"}},
      {{{LOWEST, HIGHEST}}, "2147483648", 0, {}},
      {{{LOWEST, HIGHEST}}, "99999999999", 0, {}},
      {{{LOWEST, HIGHEST}},
       "",
       4294967296,
       {"-", "0", "1", "2", "3", "4", "5", "6", "7", "8", "9"}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.spans) + " " + c.text);
    EXPECT_EQ(countNumbers(c.spans, c.text), c.count);
    EXPECT_EQ(numberBeginnings(c.spans, c.text), c.beginnings);
  }
}

TEST(NumberBeginnings, AreThoseOfEachNumber) {
  const Spans spans = {{-1203, -7}, {0, 11}, {95, 1234}};
  for (const char* text : {"", "-", "-1", "-12", "0", "1", "10", "11", "123", "9"}) {
    Words expected;
    for (const Span& span : spans) {
      for (int32_t number = span.first; number <= span.second; ++number) {
        const std::string word = std::to_string(number);
        if (word.starts_with(text)) expected.push_back(word);
      }
    }
    EXPECT_EQ(numbersFrom(spans, text), expected) << text;
    EXPECT_EQ(countNumbers(spans, text), expected.size()) << text;
  }
}

}  // namespace

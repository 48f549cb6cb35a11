#include "base/number.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>

namespace {

using namespace std::string_literals;

struct WholeCase {
  std::string text;
  std::optional<int32_t> number;
};

TEST(WholeNumber, TakesTheWholeTextInAnyBase) {
  const WholeCase cases[] = {
      {"", 0},  // the empty text is converted whole
      {"0", 0},
      {"-0", 0},
      {"7", 7},
      {"-7", -7},
      {"+7", 7},
      {"0x0A", 10},
      {"0X1f", 31},
      {"-0x10", -16},
      {"010", 8},
      {"-010", -8},
      {"00", 0},
      {"000000007", 7},
      {" 5", 5},
      {"\t\n\v\f\r -5", -5},
      {"999999999", 999999999},
      {"-999999999", -999999999},
      {"1000000000", 1000000000},
  };
  for (const WholeCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(wholeNumber(c.text), c.number);
  }
}

TEST(WholeNumber, RefusesWhatIsNotConvertedToItsEnd) {
  const std::string texts[] = {
      "auto",     "Auto",  "a",  "z9", "_1",   "12ab",       "5 ",   "5.0", "08",  // octal has no 8
      "0x",       "0xg",   "-",  "+",  "--5",  "- 5",        " ",    "\t",  "1,2",     "1a",
      "-1a",      "@",     "[",  "`",  "{",  // the neighbours of the letters
      ":",        "/",     "1:", "1/", "\xff", "123456789x", "5\0"s, "\0"s, "1\0002"s, "\0x"s,
      "00000\0"s, "0x\0"s,
  };
  for (const std::string& text : texts) {
    SCOPED_TRACE(testing::PrintToString(text));
    EXPECT_EQ(wholeNumber(text), std::nullopt);
  }
}

TEST(WholeNumber, TruncatesTheLongTo32Bits) {
  const WholeCase cases[] = {
      {"2147483647", INT32_MAX},
      {"2147483648", INT32_MIN},
      {"-2147483648", INT32_MIN},
      {"-2147483649", INT32_MAX},
      {"4294967295", -1},
      {"4294967296", 0},
      {"0xffffffff", -1},
      {"0x1ffffffff", -1},
      {"037777777777", -1},
      {"9223372036854775807", -1},
      {"99999999999999999999999", -1},  // strtol stops at the greatest long
      {"-9223372036854775808", 0},
      {"-99999999999999999999999", 0},  // and at the least
  };
  for (const WholeCase& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(wholeNumber(c.text), c.number);
  }
}

TEST(WholeNumber, EndsWhereTheViewEnds) {
  const std::string_view text = "-0x123 45";
  EXPECT_EQ(wholeNumber(text.substr(7, 1)), 4);
  EXPECT_EQ(wholeNumber(text.substr(0, 5)), -0x12);
  EXPECT_EQ(wholeNumber(text.substr(6, 2)), 4);  // " 4"
  EXPECT_EQ(wholeNumber(text.substr(0, 3)), std::nullopt);
}

TEST(WholeNumber, GivesWhatStrtolGives) {
  // Short texts of the characters that decide, all of them.
  const std::string characters = "-+ 0189xXaf";
  std::string text;
  for (size_t code = 0; code < size_t{11} * 11 * 11 * 11; ++code) {
    text.clear();
    for (size_t rest = code; rest > 0; rest /= 11) text += characters[rest % 11];
    char* end = nullptr;
    const long expected = std::strtol(text.c_str(), &end, 0);
    const bool whole = *end == '\0';
    const std::optional<int32_t> number = wholeNumber(text);
    ASSERT_EQ(number.has_value(), whole) << '"' << text << '"';
    ASSERT_EQ(number.value_or(0), whole ? static_cast<int32_t>(expected) : 0) << text;
  }
}

struct LeadingCase {
  std::string text;
  int32_t number;
  size_t length;
};

TEST(LeadingNumber, TakesTheNumberAtTheStart) {
  const LeadingCase cases[] = {
      {"", 0, 0},        {"ab", 0, 0},   {"12", 12, 2},          {"12ab", 12, 2}, {" -7 ", -7, 3},
      {"+5;", 5, 2},     {"0x1g", 1, 3}, {"0x", 0, 1},           {"0xg", 0, 1},   {"08", 0, 1},
      {"010z", 8, 3},    {"-", 0, 0},    {"- 5", 0, 0},          {" ", 0, 0},     {"3-3", 3, 1},
      {"7\0008"s, 7, 1}, {"\0"s, 0, 0},  {"4294967297x", 1, 10},
  };
  for (const LeadingCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.text));
    EXPECT_EQ(leadingNumber(c.text), c.number);
    EXPECT_EQ(numberLength(c.text), c.length);
  }
}

TEST(LeadingNumber, EndsWhereTheViewEnds) {
  const std::string_view text = "1234";
  EXPECT_EQ(leadingNumber(text.substr(0, 2)), 12);
  EXPECT_EQ(numberLength(text.substr(0, 2)), 2U);
}

TEST(NumberText, IsDecimal) {
  EXPECT_EQ(numberText(0), "0");
  EXPECT_EQ(numberText(-1), "-1");
  EXPECT_EQ(numberText(1080), "1080");
  EXPECT_EQ(numberText(INT32_MAX), "2147483647");
  EXPECT_EQ(numberText(INT32_MIN), "-2147483648");
}

}  // namespace

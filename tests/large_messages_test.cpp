// Large messages: on a bus without configured limits, nothing that the daemon sends is so large
// that the bus would disconnect it.
#include "tests/harness/service_test.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;

// The longest value is a mebibyte in the daemon, and three on its way out: each byte becomes the
// replacement character, which has three. The bus takes messages of 32.
std::string longestText() { return std::string(MEBIBYTE, '\xff'); }

class LargeMessagesTest : public ServiceTest {
 protected:
  LargeMessagesTest() : ServiceTest({.limits = {}}) {}

  // A list of `count` names, all of one parameter.
  static std::string names(int count) {
    std::string list = "['a'";
    for (int i = 1; i < count; ++i) list += ", 'a'";
    return list + "]";
  }
};

TEST_F(LargeMessagesTest, ValuesThatFitOnlyInPortionsAreAnErrorTogether) {
  serve("a rw { default { \"" + longestText() + "\" } }\nb rw { }\n");
  EXPECT_EQ(client().answer("single_reset('a')"), "()");
  EXPECT_EQ(client().newSignals().front().front().size(), 3 * MEBIBYTE + 2);
  EXPECT_EQ(client().answer("single_get('a')").size(), 3 * MEBIBYTE + 2);
  EXPECT_EQ(client().answer("single_get_bulk(10, " + names(10) + ")").size(),
            30 * MEBIBYTE + 10 * size_t{4});
  const std::string tooMuch = "Get bulk failed because of internal error";
  expectFacts({{"single_get_bulk(11, " + names(11) + ")", tooMuch}, {"single_get('b')", "''"}});
}

TEST_F(LargeMessagesTest, ARangeThatFitsIntoNoMessageIsAnError) {
  std::string text = "b rw { rangeValid { 0..9 } }\na rw {\n";
  for (int i = 0; i < 11; ++i) {
    text += "rangeValid { \"" + std::to_string(10 + i) + longestText().substr(2) + "\" }\n";
  }
  serve(text + "rangeValid { 0..9 } }\n");
  const std::string tooMuch = "Get range failed because of internal error";
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'a')", tooMuch},
      {"get_range_bulk(0, ['b', 'a'])", tooMuch},
      {"get_range(0, 'b')", "([], [(0, 9)])"},
  });
}

}  // namespace

// Large messages: on a bus without configured limits, nothing that the daemon sends is so large
// that the bus would disconnect it.
#include "tests/harness/service_test.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;

// Twelve mebibytes in the daemon, and 36 on their way out: each byte becomes the replacement
// character, which has three. The bus takes messages of 32.
std::string hugeText() { return std::string(12 * MEBIBYTE, '\xff'); }

// In one message two of them are too much.
std::string largeText() { return std::string(17 * MEBIBYTE, 'x'); }

class LargeMessagesTest : public ServiceTest {
 protected:
  LargeMessagesTest() : ServiceTest({.limits = {}}) {}

  void set(const char* name, const std::string& value) {
    const Reply reply = client().call("single_set", g_variant_new("(ss)", name, value.c_str()));
    ASSERT_NE(reply.value, nullptr) << reply.errorMessage;
  }
};

TEST_F(LargeMessagesTest, AValueThatFitsIntoNoMessageIsAnErrorAndNotAnnounced) {
  serve("a rw { default { \"" + hugeText() + "\" } }\nb rw { default { 7 } }\n");
  expectFacts({
      {"single_reset_bulk(['a', 'b'])", "()", {"b=7"}},
      {"single_get('a')", "Get failed because of internal error"},
      {"start()", "2"},
      {"get(2, 'a')", "Get failed because of internal error"},
      {"get_bulk(2, 1, ['a'])", "Get bulk failed because of internal error"},
      {"get(2, 'b')", "'7'"},
  });
}

TEST_F(LargeMessagesTest, ValuesThatFitOnlyOneByOneAreAnErrorTogether) {
  serve("a rw { }\nb rw { }\n");
  set("a", largeText());
  set("b", largeText());
  const std::vector<std::vector<std::string>> both = {{"a=" + largeText()}, {"b=" + largeText()}};
  EXPECT_TRUE(client().newSignals() == both);
  const std::string tooMuch = "Get bulk failed because of internal error";
  expectFacts({{"single_get_bulk(2, ['a', 'b'])", tooMuch}});
  EXPECT_TRUE(client().answer("single_get_bulk(1, ['a'])") == "['" + largeText() + "']");
  EXPECT_TRUE(client().answer("single_get('b')") == "'" + largeText() + "'");
}

TEST_F(LargeMessagesTest, ARangeThatFitsIntoNoMessageIsAnError) {
  serve("a rw { rangeValid { \"" + hugeText() + "\", 0..9 } }\nb rw { rangeValid { 0..9 } }\n");
  const std::string tooMuch = "Get range failed because of internal error";
  expectFacts({
      {"start()", "0"},
      {"get_range(0, 'a')", tooMuch},
      {"get_range_bulk(0, ['b', 'a'])", tooMuch},
      {"get_range(0, 'b')", "([], [(0, 9)])"},
  });
}

}  // namespace

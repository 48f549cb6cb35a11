// Hostile work: what asks for more than a request may take is refused before it is begun, or given
// up on the way, and every client is served after it. The limits are counted, so the tests look at
// no clock; without the limits they would take minutes or hours.
#include <functional>

#include "tests/harness/service_test.h"

namespace {

constexpr size_t MEBIBYTE = size_t{1} << 20U;

std::string repeated(int count, const std::function<std::string(int)>& piece,
                     const std::string& separator = "") {
  std::string text;
  for (int i = 0; i < count; ++i) text += (i > 0 ? separator : "") + piece(i);
  return text;
}

std::string times(int count, const std::string& text, const std::string& separator) {
  return repeated(
      count, [&](int /*number*/) { return text; }, separator);
}

std::string nameList(int count, const std::function<std::string(int)>& name) {
  return "['" + repeated(count, name, "', '") + "']";
}

class HostileWorkTest : public ServiceTest {
 protected:
  // The lines are compared up to the count.
  void expectLogBegins(const std::vector<std::string>& beginnings) {
    const std::vector<std::string> lines = daemon().newLogLines();
    ASSERT_EQ(lines.size(), beginnings.size());
    for (size_t i = 0; i < lines.size(); ++i) {
      EXPECT_TRUE(lines[i].starts_with(beginnings[i])) << lines[i];
    }
  }
};

TEST_F(HostileWorkTest, ManySearchesInALongText) {
  serve("m rw { }\nn rw { }\nd rw { ctrlValid ( " + times(20000, "m $ n", " |\n") +
        " ) }\nother rw { }\n");
  const std::string value(MEBIBYTE, 'x');
  EXPECT_EQ(client().answer("single_set('n', 'y')"), "()");
  client().newSignals();
  daemon().newLogLines();
  // Stored, told, and then given up: 20,000 searches are 80 times the budget.
  EXPECT_EQ(client().answer("single_set('m', '" + value + "')"),
            "Set failed because of internal error");
  const std::vector<std::vector<std::string>> signals = client().newSignals();
  ASSERT_EQ(signals.size(), 1U);
  EXPECT_TRUE(signals.front() == std::vector<std::string>{"m=" + value});
  EXPECT_TRUE(client().answer("single_get('m')") == "'" + value + "'");
  expectLogBegins({R"(work: ERROR "d": 200)"});
  expectFacts({{"single_set('m', 'y')", "()", {"d=", "m=y"}},
               {"single_set('other', '1')", "()", {"other=1"}}});
}

TEST_F(HostileWorkTest, AnIndexOfManyValuesWithManyConditions) {
  serve("m rw { }\ni index { rangeValid { 1..1000000 }\n" +
        repeated(3600,
                 [](int i) { return "rangeValid ( m == " + std::to_string(i) + " ) { 1..9 }\n"; }) +
        "}\np rw { index { i } ctrlRO ( m == 1 ) }\nother rw { }\n");
  // That a change of m is too much is known when the text has been read.
  expectLogBegins({R"(start: ERROR "m": )"});
  EXPECT_EQ(client().answer("single_set_bulk(['m', 'other'], ['1', '2'])"),
            "Commit failed because of internal error");
  expectLogBegins({R"(commit: ERROR "m": )"});
  expectFacts({{"single_get_bulk(2, ['m', 'other'])", "['', '']"},
               {"single_set('p[5]', '7')", "()", {"p[5]=7"}}});
}

TEST_F(HostileWorkTest, ManyTermsForManyInstances) {
  serve("m rw { }\ni index { rangeValid { 1..1000000 } }\np rw { index { i } ctrlRO ( " +
        times(48000, "m", " +\n") + " ) }\n");
  expectLogBegins({R"(start: ERROR "m": )"});
  EXPECT_EQ(client().answer("single_set('m', '1')"), "Commit failed because of internal error");
  expectLogBegins({R"(commit: ERROR "m": )"});
  expectFacts({{"single_get('m')", "''"}});
}

// A chain whose end depends on all before it.
std::string chain(int length) {
  return "in index { }\nc0 rw { }\n" + repeated(length - 1, [](int i) {
           return "c" + std::to_string(i + 1) + " rw { rangeValid { 0..(c" + std::to_string(i) +
                  ") } }\n";
         });
}

TEST_F(HostileWorkTest, ManySpellingsOfOneNameAreAskedOnce) {
  serve(chain(2700));
  EXPECT_EQ(client().answer("start()"), "0");
  const std::string names = nameList(20000, [](int i) { return "c2699[" + std::to_string(i); });
  const std::string answer = client().answer("get_range_bulk(0, " + names + ")");
  EXPECT_TRUE(answer.starts_with("([], [('c2699[0', ")) << answer.substr(0, 100);
  EXPECT_EQ(std::count(answer.begin(), answer.end(), '('), 20001);
}

TEST_F(HostileWorkTest, ManyNamesThatDependOnMuchAreRefusedTogether) {
  serve(chain(2700) + "any index { rangeValid { 1..100000 } }\n" +
        "last rw { index { any } rangeValid { 0..(c2699) } }\n");
  EXPECT_EQ(client().answer("start()"), "0");
  const std::string names =
      nameList(20000, [](int i) { return "last[" + std::to_string(i + 1) + "]"; });
  EXPECT_EQ(client().answer("get_range_bulk(0, " + names + ")"),
            "Get range failed because of internal error");
  expectLogBegins({R"(work: ERROR ")"});
  expectFacts({{"get_range(0, 'last[7]')", "([], [(0, 0)])"}});
}

TEST_F(HostileWorkTest, ADefaultThatDoublesItselfEndsAtTheLongestValue) {
  serve("x rw { default { (x + x) } }\n");
  EXPECT_EQ(client().answer("single_set('x', 'y')"), "()");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(client().answer("single_reset('x')"), "()");
  EXPECT_EQ(client().answer("single_get('x')").size(), MEBIBYTE + 2);
  client().newSignals();
  // No value, so the one that is taken where no default applies.
  expectFacts({{"single_reset('x')", "()", {"x="}}});
}

TEST_F(HostileWorkTest, ALongerValueIsNoValue) {
  serve("x rw { }\nlimited rw { rangeValid { 0..9 } }\nanything rw { rangeValid { 0..(x) } }\n");
  const std::string tooLong(MEBIBYTE + 1, 'v');
  for (const char* name : {"x", "limited", "anything"}) {
    SCOPED_TRACE(name);
    const std::string arguments = std::string("('") + name + "', '" + tooLong + "')";
    EXPECT_EQ(client().answer("single_set" + arguments),
              "Set failed because parameter value is invalid");
    EXPECT_EQ(client().answer("single_is_valid" + arguments), "false");
  }
  EXPECT_EQ(client().answer("single_set('x[" + tooLong + "]', '1')"),
            "Set failed because parameter name is invalid");
  EXPECT_EQ(client().answer("single_get('x[" + tooLong + "]')"), "''");
  EXPECT_EQ(client().answer("get_deps('x[" + tooLong + "]')"),
            "Get deps failed because of invalid parameter name");
  daemon().newLogLines();
}

}  // namespace

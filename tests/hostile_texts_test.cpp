// Hostile texts: whatever is fed to the daemon as a definition text, it says what is wrong with it
// or serves. The texts are as large as makes a cost visible that grows faster than the text; each
// test notes how long the start took and how much memory the daemon had at most (--gtest_output
// shows both). The time is bounded by the tests' patience, the memory by MAX_PEAK_KIB.
#include <chrono>
#include <functional>

#include "tests/harness/service_test.h"

namespace {

using namespace std::string_literals;

using Clock = std::chrono::steady_clock;

constexpr size_t MEBIBYTE = size_t{1} << 20U;
constexpr size_t MAX_PIECE = 1024;  // of a line that is read at once

// More than twice what any of the texts takes.
constexpr size_t MAX_PEAK_KIB = size_t{512} << 10U;

// A parameter that has nothing to do with what else a text defines.
constexpr const char* ALIVE = "alive rw { }\n";

// What `piece` gives for 0 to count - 1, one after the other. A line of a text is read in pieces,
// at whose ends words end; so long lists are better given in lines.
std::string repeated(int count, const std::function<std::string(const std::string&)>& piece,
                     const std::string& separator = "") {
  std::string text;
  for (int i = 0; i < count; ++i) {
    if (i > 0) text += separator;
    text += piece(std::to_string(i));
  }
  return text;
}

std::string times(int count, const std::string& text) {
  return repeated(count, [&](const std::string& /*number*/) { return text; });
}

// The texts "NAME0=VALUE" to "NAMEn=VALUE" of a signal, sorted as a signal has them.
std::vector<std::string> changes(const std::vector<std::string>& names, const std::string& value) {
  std::vector<std::string> texts = names;
  std::sort(texts.begin(), texts.end());
  for (std::string& text : texts) text += "=" + value;
  return texts;
}

std::vector<std::string> numbered(const std::string& name, int count) {
  std::vector<std::string> names(static_cast<size_t>(count), name);
  for (size_t i = 0; i < names.size(); ++i) names[i] += std::to_string(i);
  return names;
}

class HostileTextsTest : public ServiceTest {
 protected:
  /// Serves `text` and the parameter `alive`, which must then answer. The start writes `log`.
  void serveHostile(const std::string& text, const std::vector<std::string>& log = {}) {
    const Clock::time_point before = Clock::now();
    serve(ALIVE + text);
    const auto taken = std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - before);
    RecordProperty("start_ms", std::to_string(taken.count()));
    EXPECT_EQ(daemon().newLogLines(), log);
    expectAlive("1");
  }

  void expectAlive(const std::string& value) {
    expectFacts({
        {"single_set('alive', '" + value + "')", "()", {"alive=" + value}},
        {"single_get('alive')", "'" + value + "'"},
    });
  }

  /// As expectFacts(), with a signal too long to be printed.
  void expectChanges(const std::string& call, const std::vector<std::string>& changed) {
    EXPECT_EQ(client().answer(call), "()") << call;
    const std::vector<std::vector<std::string>> signals = client().newSignals();
    ASSERT_EQ(signals.size(), 1U) << call;
    EXPECT_EQ(signals.front().size(), changed.size()) << call;
    EXPECT_TRUE(signals.front() == changed) << call;
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>()) << call;
  }

  void TearDown() override {
    if (HasFatalFailure()) return;
    expectAlive("2");
    const size_t peak = memoryOf(daemon().process().pid(), "VmHWM:");
    RecordProperty("peak_kib", std::to_string(peak));
    if (!isWatched()) {
      EXPECT_LT(peak, MAX_PEAK_KIB);
    }
    ServiceTest::TearDown();
  }
};

struct RefusedText {
  std::string text;
  std::string diagnostics;
};

TEST(HostileBytes, WhereNoneCanStandAreDiagnosed) {
  const RefusedText cases[] = {
      {"a\0b rw { }\n"s, "Error on line 1\nSyntax error\na\0b rw { }\n ^\n"s},
      {"a rw { \0 }\n"s, "Error on line 1\nSyntax error\na rw { \0 }\n       ^\n"s},
      {"a rw { default { \"x\0y\" } }\n"s,
       "Error on line 1\nSyntax error\na rw { default { \"x\0y\" } }\n                   ^\n"s},
      {"a r\xe9 { }\n", "Error on line 1\nInvalid parameter access type\na r\xe9 { }\n  ^\n"},
      {"a rw { rangeVal\xe9 { 1 } }\n",
       "Error on line 1\nSyntax error\na rw { rangeVal\xe9 { 1 } }\n       ^\n"},
      {"a rw { rangeValid { \xe9 } }\n",
       "Error on line 1\nSyntax error\na rw { rangeValid { \xe9 } }\n                    ^\n"},
      {"a rw { rangeValid { 1..\xe9 } }\n",
       "Error on line 1\nSyntax error\na rw { rangeValid { 1..\xe9 } }\n                       "
       "^\n"},
      {"a rw { ctrlRO ( b \xe9 1 ) }\n",
       "Error on line 1\nInvalid expression.\na rw { ctrlRO ( b \xe9 1 ) }\n"
       "                    ^\n"},
      {"a rw { valueChange { \xe9 -> 1 } }\n",
       "Error on line 1\nSyntax error\na rw { valueChange { \xe9 -> 1 } }\n"
       "                     ^\n"},
      {"a rw { ctrlRO ( b\xe9 == 1 ) }\n",
       "Error creating parameter definitions: b\xe9\n"
       "Error on line 1\nUndefined variable. b\xe9\na rw { ctrlRO ( b\xe9 == 1 ) }\n"
       "                ^\n"},
      {"a rw { index { \xe9 } }\n",
       "Internal error: Could not find index \"\xe9\"\n"
       "Error on line 1\nUndefined index. \xe9\na rw { index { \xe9 } }\n               ^\n"},
  };
  for (const RefusedText& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.text));
    const Ending ending = runToEnd(c.text);
    EXPECT_EQ(ending.status, 1);
    EXPECT_EQ(ending.err, c.diagnostics);
  }
}

TEST_F(HostileTextsTest, NulBytesInCommentsAreNothing) {
  serveHostile("# \0 \xe9\na rw {\n # \0\n}\n"s);
  expectFacts({{"single_set('a', '5')", "()", {"a=5"}}});
}

TEST_F(HostileTextsTest, LinesMayEndInCarriageReturns) {
  serveHostile("a rw {\r\nrangeValid\r\n{ 0..9,\r\n\"x\" }\r\ndefault { \"x\" }\r\n}\r\n");
  expectFacts({
      {"single_reset('a')", "()", {"a=x"}},
      {"start()", "3"},
      {"get_range(3, 'a')", "(['x'], [(0, 9)])"},
  });
}

TEST_F(HostileTextsTest, TheLastLineMayEndWithoutANewline) {
  serveHostile("a rw { rangeValid { 0..9 } }");
  expectFacts({{"single_set('a', '5')", "()", {"a=5"}}});
}

#define LATIN "\xe9"
#define MADE_VALID "\xef\xbf\xbd"

// The places that the tests of UTF-8 do not go through.
TEST_F(HostileTextsTest, StrayBytesReachTheBusValidFromEverywhere) {
  serveHostile(
      "mode rw { rangeValid { 0..3 } }\n"
      "into rw { valueChange { 1 -> \"" LATIN
      "\" } }\n"
      "from rw { rangeValid { 0..9 } valueChange { \"" LATIN
      "\" -> 7 } }\n"
      "when rw { rangeValid ( mode == 1 ) { \"" LATIN
      "\", 5 } rangeValid ( mode != 1 ) { "
      "\"o\" } }\n"
      "then rw { rangeValid { (mode), \"" LATIN
      "\" } }\n"
      "docs rw { rangeDoc { \"" LATIN
      "\", 1..2 } }\n"
      "made rw { default ( mode == 0 ) { (\"" LATIN
      "\") } default { \"no\" } }\n"
      "i index { rangeValid { \"" LATIN
      "\", 1 } }\n"
      "j index { rangeValid { \"x\", \"" LATIN "\" } valueChange { \"x\" -> \"" LATIN
      "\" } ctrlValid ( mode != 3 ) }\n"
      "inst rw { index { i } }\n"
      "refs rw { ctrlRO ( inst[" LATIN
      "] == 1 ) }\n"
      "copy rw { rangeValid { (into) } }\n");
  expectFacts({
      {"single_set('into', '1')", "()", {"copy=" MADE_VALID, "into=" MADE_VALID}},
      {"single_get('into')", "'" MADE_VALID "'"},
      {"single_get('copy')", "'" MADE_VALID "'"},
      {"single_set('mode', '1')",
       "()",
       {"made=", "mode=1", "then=" MADE_VALID, "when=" MADE_VALID}},
      {"single_get('when')", "'" MADE_VALID "'"},
      {"start()", "7"},
      {"get_range(7, 'when')", "(['" MADE_VALID "'], [(5, 5)])"},
      {"get_range(7, 'then')", "(['" MADE_VALID "'], [(1, 1)])"},
      {"get_range(7, 'docs')", "(['" MADE_VALID "'], [(1, 2)])"},
      {"get_range(7, 'copy')", "(['" MADE_VALID "'], [])"},
      {"get_range_bulk(7, ['docs', 'then'])",
       "([('docs', '" MADE_VALID "'), ('then', '" MADE_VALID "')], [('docs', 1, 2), ('then', 1, "
       "1)])"},
      {"get_deps('refs')", "['inst[" MADE_VALID "]']"},
      {"get_idx_range(7, 'i')", "(['" MADE_VALID "'], [(1, 1)])"},
      {"get_idx_range(7, 'j')", "(['x', '" MADE_VALID "'], [])"},
      {"set(7, 'mode', '0')", "()"},
      {"reset(7, 'made')", "()"},
      {"commit(7)", "()", {"made=" MADE_VALID, "mode=0", "when=o"}},
      {"get(7, 'made')", "'" MADE_VALID "'"},
      {"get_bulk(7, 2, ['made', 'into'])", "['" MADE_VALID "', '" MADE_VALID "']"},
      // A byte that a client cannot send names an instance that it cannot reach.
      {"single_set('inst[" MADE_VALID "]', '1')",
       "Commit failed because parameter index is invalid",
       {"refs="},
       {"set: ERROR \"inst\": Invalid index value[\"i\"=\"" MADE_VALID "\"]", "Var list begin",
        "Var list end", "commit: ERROR \"inst[" MADE_VALID "]\"=\"1\": ret=-3"}},
  });
}

TEST_F(HostileTextsTest, CommentsAndBlankLinesCostNothing) {
  const std::string comment = "# " + std::string(1000, 'c') + "\n";
  const std::string text = times(10'000, comment + "#\n\n \t \n" + times(500, "\n"));
  ASSERT_GT(text.size(), 14 * MEBIBYTE);
  serveHostile(text + "last rw { }\n" + text);
  expectFacts({{"single_set('last', '1')", "()", {"last=1"}}});
  if (isWatched()) return;
  // Half of what the text has.
  EXPECT_LT(memoryOf(daemon().process().pid(), "VmHWM:"), size_t{14} << 10U);
}

TEST_F(HostileTextsTest, LinesOfAMebibyteHoldBlanksCommentsTextsAndDefinitions) {
  const std::string text(MEBIBYTE, 't');
  // So long that no word lies across the end of a piece.
  constexpr std::string_view DEFINITION = "b rw { }        ";
  serveHostile(std::string(MEBIBYTE, ' ') + "a rw { default { \"" + text + "\" } }\n" +
               times(MEBIBYTE / 2, "# ") + "\n" +
               times(MEBIBYTE / DEFINITION.size(), std::string(DEFINITION)) + "\n");
  EXPECT_EQ(client().answer("single_reset('a')"), "()");
  EXPECT_TRUE(client().answer("single_get('a')") == "'" + text + "'");
  static_cast<void>(client().newSignals());
}

TEST(HostileLines, OfAMebibyteWithoutSenseAreDiagnosedWithOnePiece) {
  const std::string name(MEBIBYTE, 'n');
  const Ending ending = runToEnd(name + " rw { }\n");
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "Error on line 2\nInvalid parameter access type\n" +
                            std::string(MAX_PIECE, 'n') + "\n^\n");
}

TEST_F(HostileTextsTest, TenThousandNestedParenthesesAreReadCheckedAndEvaluated) {
  const int depth = 10000;
  serveHostile("mode rw { }\na rw { ctrlRO ( " + times(depth, "(") + "mode == 1" +
               times(depth, ")") + " ) }\n");
  expectFacts({
      {"single_set('a', '5')", "()", {"a=5"}},
      {"single_set('mode', '1')", "()", {"mode=1"}},
      {"single_set('a', '6')", "()"},
      {"single_get('a')", "'5'"},
  });
}

TEST_F(HostileTextsTest, ParenthesesThatNeverCloseAreNoCondition) {
  serveHostile("a rw { ctrlRO ( " + times(MEBIBYTE, "(") + "\n");
  expectFacts({
      {"single_set('a', '5')", "()", {"a=5"}},
  });
}

TEST_F(HostileTextsTest, AnExpressionOfAHundredThousandTokensIsEvaluated) {
  serveHostile("b rw { rangeValid { 0..1 } }\nsum ro { rangeValid { (b" + times(50000, "\n+ b") +
               ") } }\n");
  expectFacts({{"single_set('b', '1')", "()", {"b=1", "sum=50001"}}});
}

TEST_F(HostileTextsTest, AnExpressionOfAHundredThousandOpenOperandsIsEvaluated) {
  serveHostile("b rw { rangeValid { 0..1 } }\nsum ro { rangeValid { (" + times(50000, "b +\n(") +
               "b" + times(50000, ")") + ") } }\n");
  expectFacts({{"single_set('b', '1')", "()", {"b=1", "sum=50001"}}});
}

TEST_F(HostileTextsTest, AChainOfAHundredThousandParametersPassesAValueOn) {
  const int length = 100000;
  serveHostile("p0 rw { }\n" + repeated(length - 1, [](const std::string& i) {
                 const std::string next = std::to_string(std::stoi(i) + 1);
                 return "p" + next + " ro { rangeValid { (p" + i + ") } }\n";
               }));
  expectChanges("single_set('p0', '7')", changes(numbered("p", length), "7"));
  const Reply names = client().call("get_deps", g_variant_new("(s)", "p99999"));
  ASSERT_NE(names.value, nullptr) << names.errorMessage;
  const VariantPointer list(g_variant_get_child_value(names.value.get(), 0));
  EXPECT_EQ(g_variant_n_children(list.get()), 99999U);
  expectFacts({
      {"single_get('p99999')", "'7'"},
      {"start()", "4"},
      {"set(4, 'p0', '8')", "()"},
      {"get_range(4, 'p99999')", "([], [(8, 8)])"},
      {"get(4, 'p99999')", "'7'"},
  });
}

TEST(HostileChains, ThatAreClosedAreNamed) {
  const int length = 100000;
  const Ending ending = runToEnd(repeated(length, [](const std::string& i) {
    const std::string next = std::to_string((std::stoi(i) + 1) % length);
    return "p" + next + " rw { rangeValid { (p" + i + ") } }\n";
  }));
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "Error creating parameter definitions: p0\n");
}

TEST_F(HostileTextsTest, TenThousandMutualPairsAreEachOnOneLevel) {
  serveHostile(repeated(10000, [](const std::string& i) {
    return "low" + i + " rw { rangeValid { 0..(high" + i + ") } }\nhigh" + i +
           " rw { rangeValid { (low" + i + ")..9 } }\n";
  }));
  expectFacts({
      {"start()", "2"},
      {"set(2, 'high9999', '5')", "()"},
      {"get_range(2, 'low9999')", "([], [(0, 5)])"},
      {"commit(2)", "()", {"high9999=5", "low9999="}},
      {"set(2, 'low9999', '7')", "()"},
      {"commit(2)", "()", {"high9999=7", "low9999=7"}},
  });
}

TEST_F(HostileTextsTest, ALadderOfTenThousandMutualPairsIsOneLevel) {
  const int length = 10000;
  serveHostile(repeated(length,
                        [](const std::string& i) {
                          const std::string next = std::to_string(std::stoi(i) + 1);
                          return "p" + i + " rw { rangeValid { 0..(p" + next + ") }" +
                                 (i == "0" ? ""
                                           : " ctrlRO ( p" + std::to_string(std::stoi(i) - 1) +
                                                 " == 99 )") +
                                 " }\n";
                        }) +
               "p10000 rw { ctrlRO ( p9999 == 99 ) }\n");
  EXPECT_EQ(client().answer("single_set('p10000', '5')"), "()");
  EXPECT_EQ(client().newSignals().size(), 1U);
  expectFacts({
      {"start()", "3"},
      {"get_range(3, 'p9999')", "([], [(0, 5)])"},
      {"get_range(3, 'p0')", "([], [(0, 0)])"},
  });
}

TEST_F(HostileTextsTest, TwoThousandDependentsFollowOneParameter) {
  serveHostile("a rw { }\n" + repeated(2000, [](const std::string& i) {
                 return "p" + i + " ro { rangeValid { (a) } }\n";
               }));
  std::vector<std::string> names = numbered("p", 2000);
  names.emplace_back("a");
  expectChanges("single_set('a', '7')", changes(names, "7"));
}

TEST_F(HostileTextsTest, DiamondsTwentyLayersDeepAreWalkedOnce) {
  // From the top of them to the bottom lead 50^20 ways.
  const int layers = 20;
  const int width = 50;
  std::string text = "layer0_0 rw { }\n";
  std::vector<std::string> names = {"layer0_0"};
  for (int layer = 1; layer <= layers; ++layer) {
    const std::string below = "layer" + std::to_string(layer - 1) + "_";
    const std::string name = "layer" + std::to_string(layer) + "_";
    const int belowWidth = layer == 1 ? 1 : width;
    const std::string mean =
        "((" +
        repeated(
            belowWidth, [&](const std::string& i) { return below + i; }, "\n+ ") +
        ") / " + std::to_string(belowWidth) + ")";
    for (const std::string& parm : numbered(name, width)) {
      text += parm + " ro { rangeValid { " + mean + " } }\n";
      names.push_back(parm);
    }
  }
  serveHostile(text);
  expectChanges("single_set('layer0_0', '7')", changes(names, "7"));
  expectFacts({
      {"start()", "3"},
      {"set(3, 'layer0_0', '8')", "()"},
      {"get_range(3, 'layer20_0')", "([], [(8, 8)])"},
  });
}

TEST_F(HostileTextsTest, AHugeIndexCostsNothingByItself) {
  serveHostile("i index { rangeValid { 0..2147483647 } }\nmode rw { }\np rw { index { i } }\n");
  expectFacts({
      {"single_set('mode', '1')", "()", {"mode=1"}},
      {"single_set('p[2147483647]', '7')", "()", {"p[2147483647]=7"}},
      {"start()", "4"},
      {"get_idx_range(4, 'i')", "([], [(0, 2147483647)])"},
      {"get_parm_idx(4, 'p')", "['i']"},
      {"get_range(4, 'p[5]')", "([], [])"},
  });
}

TEST_F(HostileTextsTest, MoreInstancesThanAMillionAreNotCommitted) {
  serveHostile(
      "i index { rangeValid { 0..2147483647 } }\nj index { rangeValid { 1..1001 } }\n"
      "mode rw { }\np rw { index { i } ctrlRO ( mode == 1 ) }\n"
      "all rw { }\nq rw { index { i, i, i } ctrlRO ( all == 1 ) }\n"
      "some rw { }\nr rw { index { j, j } ctrlRO ( some == 1 ) }\n",
      {R"(start: ERROR "all": 18446744073709551615 dependent instances, 1000000 allowed)"});
  const std::string tooMany = "Commit failed because of internal error";
  const auto tooManyLine = [](const std::string& name, const std::string& count) {
    return std::vector<std::string>{"commit: ERROR \"" + name + "\": " + count +
                                    " dependent instances, 1000000 allowed"};
  };
  expectFacts({
      {"single_set('mode', '1')", tooMany, {}, tooManyLine("mode", "2147483648")},
      {"single_get('mode')", "''"},
      {"single_set('all', '1')", tooMany, {}, tooManyLine("all", "18446744073709551615")},
      {"single_set('some', '1')", tooMany, {}, tooManyLine("some", "1002001")},
      {"single_set('p[5]', '7')", "()", {"p[5]=7"}},
      {"single_set('r[5][6]', '7')", "()", {"r[5][6]=7"}},
  });
}

TEST_F(HostileTextsTest, AHugeIndexBesideOneWithoutValuesHasNoInstances) {
  serveHostile(
      "wide index { rangeValid { 0..49999999 } }\nnone index { }\nmode rw { }\n"
      "p rw { index { wide, none } ctrlRO ( mode == 1 ) }\n"
      "q rw { index { wide, wide, wide, none } ctrlRO ( mode == 1 ) }\n");
  expectFacts({
      {"single_set('mode', '1')", "()", {"mode=1"}},
      {"single_set('mode', '2')", "()", {"mode=2"}},
      {"single_set('p[49999999][x]', '7')", "()", {"p[49999999][x]=7"}},
  });
}

TEST_F(HostileTextsTest, TheRangeOfAHugeIndexWithConditionsIsFoundAtOnce) {
  serveHostile(
      "mode rw { }\n"
      "i index { rangeValid { -2147483648..2147483647, \"all\" } ctrlValid ( mode != 9 )\n"
      "rangeValid ( mode == 1 ) { 5..2147483647 }\n"
      "rangeValid ( mode == 2 ) { (mode)..(mode + 2000000000) }\n"
      "rangeValid ( mode > 2 ) { \"all\", -1 } valueChange { 7 -> 1 } }\n"
      "k index { rangeValid {\n" +
      repeated(
          20000,
          [](const std::string& i) {
            const int low = std::stoi(i) * 100000;
            return std::to_string(low) + ".." + std::to_string(low + 9);
          },
          ",\n") +
      " } rangeValid ( mode == 1 ) {\n" +
      repeated(
          20000,
          [](const std::string& i) {
            const int low = std::stoi(i) * 100000 + 5;
            return std::to_string(low) + ".." + std::to_string(low + 9);
          },
          ",\n") +
      " } }\n");
  expectFacts({
      {"single_set('mode', '1')", "()", {"mode=1"}},
      {"start()", "3"},
      {"get_idx_range(3, 'i')", "([], [(5, 6), (8, 2147483647)])"},
      {"set(3, 'mode', '2')", "()"},
      {"get_idx_range(3, 'i')", "([], [(2, 6), (8, 2000000002)])"},
      {"set(3, 'mode', '3')", "()"},
      {"get_idx_range(3, 'i')", "(['all'], [(-1, -1)])"},
      {"set(3, 'mode', '9')", "()"},
      {"get_idx_range(3, 'i')", "Get index range failed because index is not valid"},
      {"set(3, 'mode', '1')", "()"},
  });
  const Reply range = client().call("get_idx_range", g_variant_new("(us)", 3, "k"));
  ASSERT_NE(range.value, nullptr) << range.errorMessage;
  const VariantPointer spans(g_variant_get_child_value(range.value.get(), 1));
  EXPECT_EQ(g_variant_n_children(spans.get()), 20000U);
}

TEST_F(HostileTextsTest, AThousandDefinitionsOfOneNameAreOne) {
  serveHostile("mode rw { }\n" + repeated(1000, [](const std::string& i) {
                 return "a rw { rangeValid { " + i + " } default ( mode == " + i + " ) { " + i +
                        " } }\n";
               }));
  expectFacts({
      {"single_set('mode', '999')", "()", {"a=", "mode=999"}},
      {"single_reset('a')", "()", {"a=999"}},
      {"start()", "4"},
      {"get_range(4, 'a')", "([], [(0, 999)])"},
  });
}

TEST(HostileNames, ThatAreDefinedAThousandTimesAreDiagnosedEachTime) {
  std::string diagnostics;
  for (int line = 2; line <= 1000; ++line) {
    diagnostics += "Error on line " + std::to_string(line) +
                   "\nMultiple instances of conditional evaluating to non-0.\n"
                   "a rw { default { 1 } }\n                 ^\n";
  }
  const Ending ending = runToEnd(times(1000, "a rw { default { 1 } }\n"));
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, diagnostics);
}

TEST_F(HostileTextsTest, TheNamesOfAnIndexAreKnownToAllThatItIndexes) {
  // Each of 2,000 parameters depends on each of 500 names.
  const auto name = [](const std::string& i) { return "x" + i; };
  serveHostile(
      repeated(500, [](const std::string& i) { return "x" + i + " rw { }\n"; }) +
      "i index { rangeValid { 1..2 } ctrlValid ( 9 != " + repeated(500, name, "\n+ ") + " ) }\n" +
      repeated(2000, [](const std::string& i) { return "p" + i + " rw { index { i } }\n"; }));
  EXPECT_EQ(client().answer("single_set('x7', '5')"), "()");
  EXPECT_EQ(client().newSignals().size(), 1U);
  expectFacts({
      {"start()", "3"},
      {"get_parm_idx(3, 'p1999')", "['i']"},
      {"set(3, 'x8', '4')", "()"},
      {"get_parm_idx(3, 'p1999')", "[]"},
  });
}

// A name of three letters and digits, so that many fit into a short text.
std::string shortName(size_t number) {
  constexpr std::string_view DIGITS = "abcdefghijklmnopqrstuvwxyz0123456789";
  constexpr size_t BASE = DIGITS.size();
  return {DIGITS[number / BASE / BASE], DIGITS[number / BASE % BASE], DIGITS[number % BASE]};
}

// An index that names each of `names` parameters in its condition, and `parms` that it indexes.
std::string namesAndIndexed(size_t names, size_t parms) {
  std::string definitions;
  std::string sum;
  for (size_t i = 0; i < names; ++i) {
    definitions += shortName(i) + " rw{}\n";
    sum += (i == 0 ? "" : "\n+") + shortName(i);
  }
  std::string indexed;
  for (size_t i = 0; i < parms; ++i) indexed += shortName(names + i) + " rw{index{i}}\n";
  return definitions + "i index{rangeValid{1}ctrlValid(9!=" + sum + ")}\n" + indexed;
}

class NamesAndIndexedTest : public ServiceTest {
 protected:
  /// The peak of a daemon that serves such a text, and in which two of the names are set, in KiB.
  size_t peakOf(size_t names, size_t parms) {
    serve(ALIVE + namesAndIndexed(names, parms));
    for (const char* call : {"single_set('aaa', '1')", "single_set('aab', '2')"}) {
      EXPECT_EQ(client().answer(call), "()");
    }
    const std::vector<std::vector<std::string>> signals = client().newSignals();
    EXPECT_EQ(signals.size(), 2U);
    EXPECT_EQ(signals.front().size(), parms + 1);
    const size_t peak = memoryOf(daemon().process().pid(), "VmHWM:");
    expectOrderlyEnd();
    return peak;
  }

  void TearDown() override {}  // each daemon has been ended
};

TEST_F(NamesAndIndexedTest, TakeMemoryInProportionToTheText) {
  // The largest of them has 98 kB and ten million pairs of a name and a parameter.
  const size_t nothing = peakOf(2, 0);
  const size_t quarter = peakOf(875, 725);
  const size_t whole = peakOf(3500, 2900);
  RecordProperty("quarter_kib", std::to_string(quarter));
  RecordProperty("whole_kib", std::to_string(whole));
  if (isWatched()) return;
  EXPECT_LT(whole, size_t{20} << 10U);
  EXPECT_LT(whole - nothing, 5 * (quarter - nothing));
}

TEST_F(HostileTextsTest, TwentyThousandStatementsOfOneParameterAreAsked) {
  const auto each = [](const std::string& before, const std::string& after) {
    return repeated(20000, [&](const std::string& i) {
      return before + i + " ) " + after + "{ " + i + " }\n";
    });
  };
  serveHostile("b rw { }\nranges rw {" + each("rangeValid ( b == ", "") + "}\ndocs rw {" +
               each("rangeDoc ( b == ", "") + "}\ndefaults rw {" + each("default ( b == ", "") +
               "}\nlocked rw {" +
               repeated(20000, [](const std::string& i) { return "ctrlRO ( b == " + i + " )\n"; }) +
               "}\nmoved rw {" +
               repeated(20000,
                        [](const std::string& i) {
                          return "valueChange { " + i + " -> " + std::to_string(std::stoi(i) + 1) +
                                 " }\n";
                        }) +
               "}\n");
  expectFacts({
      {"single_set('moved', '5')", "()", {"moved=7"}},
      {"single_set('b', '19999')",
       "()",
       {"b=19999", "defaults=", "docs=", "locked=", "ranges=19999"}},
      {"single_reset('defaults')", "()", {"defaults=19999"}},
      {"single_set('locked', '1')", "()"},
      {"start()", "6"},
      {"get_range(6, 'docs')", "([], [(19999, 19999)])"},
  });
}

TEST_F(HostileTextsTest, TenThousandIndicesNameOneInstance) {
  const int count = 10000;
  serveHostile(
      repeated(count,
               [](const std::string& i) { return "i" + i + " index { rangeValid { 1 } }\n"; }) +
      "a rw { index { " +
      repeated(
          count, [](const std::string& i) { return "i" + i; }, ",\n") +
      " } }\n");
  const std::string name = "a" + times(count, "[1]");
  expectChanges("single_set('" + name + "', '7')", {name + "=7"});
  EXPECT_EQ(client().answer("single_get('" + name + "')"), "'7'");
}

TEST_F(HostileTextsTest, ALongIndexValueIsNotHandedToEveryName) {
  // The names that k depends on would have 50 MiB.
  const auto name = [](const std::string& i) { return "x" + i; };
  serveHostile(
      "any index { }\n" +
      repeated(50, [](const std::string& i) { return "x" + i + " rw { index { any } }\n"; }) +
      "k rw { index { any } ctrlRO ( " + repeated(50, name, " + ") + " ) }\n");
  const std::string value(MEBIBYTE, 'v');
  EXPECT_EQ(client().answer("start()"), "2");
  EXPECT_EQ(client().answer("get_deps('k[" + value + "]')"),
            "Get deps failed because of unknown error");
  EXPECT_EQ(client().answer("get_range(2, 'k[" + value + "]')"),
            "Get range failed because of internal error");
  EXPECT_EQ(client().answer("get_range(2, 'x7[" + value + "]')"), "([], [])");
  expectFacts({{"get_range(2, 'k[v]')", "([], [])"}});
}

}  // namespace

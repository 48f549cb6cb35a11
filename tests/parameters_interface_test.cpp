// The second interface, org.tavrel.parameters1: every member, flag, error and property.
#include <atomic>
#include <fstream>
#include <iterator>

#include "tests/harness/parameters_client.h"
#include "tests/harness/service_test.h"

namespace {

constexpr const char* TEXT = R"(# How it runs.
mode rw { rangeValid { "slow", "fast" } default { "slow" } }
# How fast it goes,
#   in steps.
rate rw {
  rangeValid (mode == "slow") { 1..10 }
  rangeValid (mode == "fast") { 1..100, "max" }
  ctrlRO (lock == 1)
  default { 5 }
  valueChange { "top" -> "max" }
}
lock rw { rangeValid { 0..1 } }

double ro { rangeValid { (rate * 2) } }
order wo { }
serial rostrict { }
boost rw { ctrlValid (mode == "fast") rangeValid { 0..1 } }
# The inputs.
input index { rangeValid { 8..11, "aux" }
  rangeValid (mode == "slow") { 9..10, "aux" } rangeValid (mode == "fast") { 8..11, "aux" } }
side index { rangeValid { "left", "right" } }
gain rw { index { input, side } rangeValid { 0..(double) } default { 0 } }
broken rw { rangeValid { 0..(7 / (rate - 5)) } }
far rw { rangeValid { (gain[9][left])..(gain[9][left] + 5) } }
)";

class ParametersInterfaceTest : public ServiceTest {
 protected:
  void SetUp() override {
    serve(TEXT);
    ASSERT_EQ(client().answer("single_set_bulk(['mode', 'rate'], ['slow', '5'])"), "()");
    static_cast<void>(client().newSignals());
  }
  void expectAnswers(const std::vector<std::pair<std::string, std::string>>& rows) {
    for (const auto& [call, answer] : rows) {
      const bool isOfFirst = findBusMethod(call.substr(0, call.find('('))) != nullptr;
      EXPECT_EQ(isOfFirst ? client().answer(call) : parameters_.answer(call), answer) << call;
    }
    static_cast<void>(client().newSignals());
    EXPECT_EQ(daemon().newLogLines(), std::vector<std::string>());
  }
  ParametersClient& parameters() { return parameters_; }
  std::atomic<int> replies_ = 0;

 private:
  ParametersClient parameters_{client()};
};

// The serials of an answer of History.
std::vector<uint32_t> serialsOf(const VariantPointer& history) {
  std::vector<uint32_t> serials;
  const VariantPointer list(g_variant_get_child_value(history.get(), 0));
  for (gsize i = 0; i < g_variant_n_children(list.get()); ++i) {
    guint32 serial = 0;
    g_variant_get_child(list.get(), i, "(utsa(sss))", &serial, nullptr, nullptr, nullptr);
    serials.push_back(serial);
  }
  return serials;
}

TEST_F(ParametersInterfaceTest, ListGivesDefinitionsByPattern) {
  expectAnswers({
      {"List('')",
       "[('boost', 'rw', [], 17, 1), ('broken', 'rw', [], 23, 2), ('double', 'ro', [], 14, "
       "2), ('far', 'rw', [], 24, 4), ('gain', 'rw', ['input', 'side'], 22, 3), ('input', "
       "'index', [], 19, 0), ('lock', 'rw', [], 12, 0), ('mode', 'rw', [], 2, 0), ('order', "
       "'wo', [], 15, 0), ('rate', 'rw', [], 5, 1), ('serial', 'rostrict', [], 16, 0), "
       "('side', 'index', [], 21, 0)]"},
      {"List('b*')", "[('boost', 'rw', [], 17, 1), ('broken', 'rw', [], 23, 2)]"},
      {"ListNames('?o*', @as [])", "['boost', 'double', 'lock', 'mode']"},
      {"ListNames('', ['index', 'wo'])", "['input', 'order', 'side']"},
      {"ListNames('', ['index', 'nonsense', ''])", "['input', 'side']"},
      {"ListNames('', ['nonsense'])", "[]"},
      {"List('?ate')", "[('rate', 'rw', [], 5, 1)]"},
      {"List('[io]*')", "[('input', 'index', [], 19, 0), ('order', 'wo', [], 15, 0)]"},
      {"List('[!a-l]*')",
       "[('mode', 'rw', [], 2, 0), ('order', 'wo', [], 15, 0), ('rate', 'rw', [], 5, 1), "
       "('serial', 'rostrict', [], 16, 0), ('side', 'index', [], 21, 0)]"},
      {"List('\\\\mode')", "[('mode', 'rw', [], 2, 0)]"},
      {"List('mode?')", "[]"},
      {"List('gain[9]')", "[]"},
      {"List('[')", "InvalidPattern: The pattern \"[\" is wrong: a \"[\" has no \"]\""},
      {"List('a\\\\')", "InvalidPattern: The pattern \"a\\\" is wrong: a \"\\\" is at its end"},
  });
}

TEST_F(ParametersInterfaceTest, ListInstancesGivesThoseThatExist) {
  expectAnswers({
      {"ListInstances(NONE, [])",
       "['broken', 'double', 'far', 'gain[9][left]', 'gain[9][right]', 'gain[10][left]', "
       "'gain[10][right]', 'gain[aux][left]', 'gain[aux][right]', 'lock', 'mode', 'order', "
       "'rate', 'serial']"},
      {"ListInstances(NONE, ['gain'])",
       "['gain[9][left]', 'gain[9][right]', 'gain[10][left]', 'gain[10][right]', "
       "'gain[aux][left]', 'gain[aux][right]']"},
      {"ListInstances(NONE, ['rate', 'mode', 'nosuch', 'input', 'rate', 'boost'])",
       "['mode', 'rate']"},
      {"ListInstances(NONE, ['nosuch'])", "[]"},
      {"start()", "1"},
      {"set(1, 'mode', 'fast')", "()"},
      {"ListInstances(1, ['gain', 'boost'])",
       "['boost', 'gain[8][left]', 'gain[8][right]', 'gain[9][left]', 'gain[9][right]', "
       "'gain[10][left]', 'gain[10][right]', 'gain[11][left]', 'gain[11][right]', "
       "'gain[aux][left]', 'gain[aux][right]']"},
      {"ListInstances(NONE, ['boost'])", "[]"},
      {"ListInstances(2, [])",
       "UnknownTransaction: No transaction 2 is open that this client may use"},
  });
}

TEST_F(ParametersInterfaceTest, GetDefinitionGivesAllOfOne) {
  expectAnswers({
      {"GetDefinition('mode')",
       "{'access': <'rw'>, 'indices': <@as []>, 'line': <uint32 2>, 'level': <uint32 0>, "
       "'statements': <[(uint32 2, 'rangeValid { \"slow\", \"fast\" }'), (2, 'default { "
       "\"slow\" }')]>, 'translations': <@a(ss) []>, 'uses': <@as []>, 'used-by': <['boost', "
       "'input', 'rate']>, 'description': <'How it runs.'>}"},
      {"GetDefinition('rate')",
       "{'access': <'rw'>, 'indices': <@as []>, 'line': <uint32 5>, 'level': <uint32 1>, "
       "'statements': <[(uint32 6, 'rangeValid (mode == \"slow\") { 1..10 }'), (7, "
       "'rangeValid (mode == \"fast\") { 1..100, \"max\" }'), (8, 'ctrlRO (lock == 1)'), (9, "
       "'default { 5 }'), (10, 'valueChange { \"top\" -> \"max\" }')]>, 'translations': "
       "<[('top', 'max')]>, 'uses': <['lock', 'mode']>, 'used-by': <['broken', 'double']>, "
       "'description': <'How fast it goes,\\nin steps.'>}"},
      {"GetDefinition('double')",
       "{'access': <'ro'>, 'indices': <@as []>, 'line': <uint32 14>, 'level': <uint32 2>, "
       "'statements': <[(uint32 14, 'rangeValid { (rate * 2) }')]>, 'translations': <@a(ss) "
       "[]>, 'uses': <['rate']>, 'used-by': <['gain']>, 'description': <''>}"},
      {"GetDefinition('gain')",
       "{'access': <'rw'>, 'indices': <['input', 'side']>, 'line': <uint32 22>, 'level': "
       "<uint32 3>, 'statements': <[(uint32 22, 'index { input, side }'), (22, 'rangeValid { "
       "0..(double) }'), (22, 'default { 0 }')]>, 'translations': <@a(ss) []>, 'uses': "
       "<['double']>, 'used-by': <['far']>, "
       "'description': <''>}"},
      {"GetDefinition('input')",
       "{'access': <'index'>, 'indices': <@as []>, 'line': <uint32 19>, 'level': <uint32 0>, "
       "'statements': <[(uint32 19, 'rangeValid { 8..11, \"aux\" }'), (20, 'rangeValid (mode "
       "== \"slow\") { 9..10, \"aux\" }'), (20, 'rangeValid (mode == \"fast\") { 8..11, "
       "\"aux\" }')]>, 'translations': <@a(ss) []>, 'uses': <['mode']>, 'used-by': "
       "<['gain']>, 'description': <'The inputs.'>}"},
      {"GetDefinition('side')",
       "{'access': <'index'>, 'indices': <@as []>, 'line': <uint32 21>, 'level': <uint32 0>, "
       "'statements': <[(uint32 21, 'rangeValid { \"left\", \"right\" }')]>, 'translations': "
       "<@a(ss) []>, 'uses': <@as []>, 'used-by': <['gain']>, 'description': <''>}"},
      {"GetDefinition('order')",
       "{'access': <'wo'>, 'indices': <@as []>, 'line': <uint32 15>, 'level': <uint32 0>, "
       "'statements': <@a(us) []>, 'translations': <@a(ss) []>, 'uses': <@as []>, 'used-by': "
       "<@as []>, 'description': <''>}"},
      {"GetUses(['gain[9][left]', 'double', 'nosuch'])", "[['double', 'mode'], ['rate'], []]"},
      {"GetDefinition('nosuch')", "UnknownParameter: No definition has the name \"nosuch\""},
      {"GetDefinition('gain[9][left]')",
       "UnknownParameter: No definition has the name \"gain[9][left]\""},
      {"GetDefinition('')", "UnknownParameter: No definition has the name \"\""},
  });
}

TEST_F(ParametersInterfaceTest, GetStateGivesFlagsValueAndLimits) {
  expectAnswers({
      {"GetState(NONE, [])", "[]"},
      {"GetState(NONE, ['rate', 'lock', 'double', 'order', 'serial', 'boost'])",
       "[('rate', 87, '5', [(1, 10)], []), ('lock', 23, '', [(0, 1)], []), ('double', 83, "
       "'10', [(10, 10)], []), ('order', 7, '', [], []), ('serial', 3, '', [], []), "
       "('boost', 17, '', [(0, 1)], [])]"},
      {"GetState(NONE, ['gain[9][left]', 'gain[8][left]', 'gain[9]', 'gain', 'broken'])",
       "[('gain[9][left]', 23, '', [(0, 10)], []), ('gain[8][left]', 33, '', [], []), "
       "('gain[9]', 33, '', [], []), ('gain', 33, '', [], []), ('broken', 39, '', [], [])]"},
      {"GetState(NONE, ['nosuch', '', 'input', 'rate', 'rate'])",
       "[('nosuch', 0, '', [], []), ('', 0, '', [], []), ('input', 0, '', [], []), ('rate', "
       "87, '5', [(1, 10)], []), ('rate', 87, '5', [(1, 10)], [])]"},
      {"start()", "1"},
      {"set(1, 'mode', 'fast')", "()"},
      {"set(1, 'rate', '300')", "()"},
      {"set(1, 'rate', '60')", "()"},
      {"set(1, 'lock', '1')", "()"},
      {"GetState(1, ['mode', 'rate', 'lock', 'boost', 'gain[8][left]', 'double'])",
       "[('mode', 95, 'fast', [], ['fast', 'slow']), ('rate', 91, '60', [(1, 100)], "
       "['max']), ('lock', 95, '1', [(0, 1)], []), ('boost', 23, '', [(0, 1)], []), "
       "('gain[8][left]', 23, '', [(0, 10)], []), ('double', 83, '10', [(10, 10)], [])]"},
      {"GetState(NONE, ['mode', 'rate', 'lock', 'boost'])",
       "[('mode', 87, 'slow', [], ['fast', 'slow']), ('rate', 87, '5', [(1, 10)], []), "
       "('lock', 23, '', [(0, 1)], []), ('boost', 17, '', [(0, 1)], [])]"},
      {"GetState(77, ['mode'])",
       "UnknownTransaction: No transaction 77 is open that this client may use"},
  });
}

TEST_F(ParametersInterfaceTest, ExplainAnswersFiveQuestions) {
  expectAnswers({
      {"Explain(NONE, 'rate')",
       "[('exists', 'yes', 0, '', {}), ('writable', 'yes', 8, 'ctrlRO (lock == 1)', {'lock': "
       "''}), ('limits', '1..10', 6, 'rangeValid (mode == \"slow\") { 1..10 }', {'mode': "
       "'slow'}), ('default', '5', 9, 'default { 5 }', {}), ('value', '5', 6, 'rangeValid "
       "(mode == \"slow\") { 1..10 }', {'mode': 'slow'})]"},
      {"Explain(NONE, 'boost')",
       "[('exists', 'no', 17, 'ctrlValid (mode == \"fast\")', {'mode': 'slow'}), "
       "('writable', 'no', 17, 'ctrlValid (mode == \"fast\")', {'mode': 'slow'}), ('limits', "
       "'0..1', 17, 'rangeValid { 0..1 }', {}), ('default', '', 0, '', {}), ('value', '', 0, "
       "'', {})]"},
      {"Explain(NONE, 'gain[8][left]')",
       "[('exists', 'no', 20, 'rangeValid (mode == \"slow\") { 9..10, \"aux\" }', {'input': '8', "
       "'mode': 'slow'}), ('writable', 'no', 20, 'rangeValid (mode == \"slow\") { 9..10, \"aux\" "
       "}', {'input': '8', 'mode': 'slow'}), ('limits', 'none', 0, '', {}), ('default', '0', 22, "
       "'default { 0 "
       "}', {}), ('value', '', 0, '', {})]"},
      {"Explain(NONE, 'double')",
       "[('exists', 'yes', 0, '', {}), ('writable', 'no', 14, 'ro', {}), ('limits', '10', "
       "14, 'rangeValid { (rate * 2) }', {'rate': '5'}), ('default', '', 0, '', {}), "
       "('value', '10', 14, 'rangeValid { (rate * 2) }', {'rate': '5'})]"},
      {"Explain(NONE, 'broken')",
       "[('exists', 'yes', 0, '', {}), ('writable', 'yes', 0, '', {}), ('limits', 'none', "
       "23, 'rangeValid { 0..(7 / (rate - 5)) }', {'rate': '5'}), ('default', '', 0, '', "
       "{}), ('value', '', 23, 'rangeValid { 0..(7 / (rate - 5)) }', {'rate': '5'})]"},
      {"Explain(NONE, 'nosuch')", "UnknownParameter: No parameter has the name \"nosuch\""},
      {"Explain(NONE, 'input')", "UnknownParameter: No parameter has the name \"input\""},
      {"Explain(NONE, 'gain[9]')",
       "UnknownParameter: No instance of its parameter has so many index values: \"gain[9]\""},
      {"start()", "1"},
      {"set(1, 'lock', '1')", "()"},
      {"Explain(1, 'rate')",
       "[('exists', 'yes', 0, '', {}), ('writable', 'no', 8, 'ctrlRO (lock == 1)', {'lock': "
       "'1'}), ('limits', '1..10', 6, 'rangeValid (mode == \"slow\") { 1..10 }', {'mode': "
       "'slow'}), ('default', '5', 9, 'default { 5 }', {}), ('value', '5', 6, 'rangeValid "
       "(mode == \"slow\") { 1..10 }', {'mode': 'slow'})]"},
      {"Explain(2, 'rate')",
       "UnknownTransaction: No transaction 2 is open that this client may use"},
  });
}

TEST_F(ParametersInterfaceTest, PreviewGivesWhatACommitWouldDo) {
  expectAnswers({
      {"Preview(NONE)", "([], [])"},
      {"start()", "1"},
      {"Preview(1)", "([], [])"},
      {"set(1, 'mode', 'fast')", "()"},
      {"set(1, 'rate', '60')", "()"},
      {"set(1, 'serial', '7')", "()"},
      {"set(1, 'gain[12][left]', '7')", "()"},
      {"Preview(1)",
       "([('boost', '', '', ['mode']), ('double', '10', '120', ['rate']), ('gain[11][left]', "
       "'', '', ['double', 'mode']), ('gain[11][right]', '', '', ['double', 'mode']), "
       "('mode', 'slow', 'fast', ['mode']), ('rate', '5', '60', ['rate', 'mode'])], "
       "[('gain[12][left]', 'does not exist, line 19: rangeValid { 8..11, \"aux\" }'), "
       "('serial', 'is read-only, line 16: rostrict')])"},
      {"Preview(1)",
       "([('boost', '', '', ['mode']), ('double', '10', '120', ['rate']), ('gain[11][left]', "
       "'', '', ['double', 'mode']), ('gain[11][right]', '', '', ['double', 'mode']), "
       "('mode', 'slow', 'fast', ['mode']), ('rate', '5', '60', ['rate', 'mode'])], "
       "[('gain[12][left]', 'does not exist, line 19: rangeValid { 8..11, \"aux\" }'), "
       "('serial', 'is read-only, line 16: rostrict')])"},
      {"single_get('rate')", "'5'"},
      {"get(1, 'rate')", "'60'"},
      {"Preview(2)", "UnknownTransaction: No transaction 2 is open that this client may use"},
  });
}

TEST_F(ParametersInterfaceTest, BeginOpensATransactionAndEndEndsIt) {
  expectAnswers({
      {"ListTransactions()", "[]"},
      {"start()", "1"},
      {"Begin()", "2"},
      {"ListTransactions()", "[(1, '', 0, 0), (2, 'ME', 0, 0)]"},
      {"set_bulk(2, ['rate', 'mode'], ['7', 'fast'])", "()"},
      {"get(2, 'rate')", "'7'"},
      {"reset(1, 'rate')", "()"},
      {"ListTransactions()", "[(1, '', 1, 0), (2, 'ME', 2, 0)]"},
      {"commit(2)", "()"},
      {"ListTransactions()", "[(1, '', 1, 0), (2, 'ME', 0, 0)]"},
      {"end(1)", "()"},
      {"end(2)", "()"},
      {"end(2)", "End failed because of invalid transaction id"},
      {"Preview(2)", "UnknownTransaction: No transaction 2 is open that this client may use"},
      {"Begin()", "3"},
      {"ListTransactions()", "[(3, 'ME', 0, 0)]"},
  });
  const Client other(bus().address());
  const std::string owner = g_dbus_connection_get_unique_name(client().connection());
  EXPECT_EQ(ParametersClient(other).answer("ListTransactions()"), "[(3, '" + owner + "', 0, 0)]");
}

TEST_F(ParametersInterfaceTest, ListTransactionsCountsSeconds) {
  expectAnswers({{"Begin()", "1"}});
  g_usleep(1'100'000);
  const std::string list = parameters().answer("ListTransactions()");
  EXPECT_TRUE(list == "[(1, 'ME', 0, 1)]" || list == "[(1, 'ME', 0, 2)]") << list;
}

TEST_F(ParametersInterfaceTest, AClientHasAThousandTransactionsOfItsOwn) {
  for (int i = 0; i < 999; ++i) parameters().callWithoutReply("Begin", nullptr);
  expectAnswers({
      {"Begin()", "1000"},
      {"Begin()", "TooLarge: A client has 1000 transactions of its own at most; end one"},
      {"start()", "1001"},  // not of its own
      {"Get('OpenTransactions')", "<uint32 1001>"},
      {"end(500)", "()"},
      {"Begin()", "1002"},
      {"Begin()", "TooLarge: A client has 1000 transactions of its own at most; end one"},
  });
  const Client other(bus().address());
  EXPECT_EQ(ParametersClient(other).answer("Begin()"), "1003");
}

TEST_F(ParametersInterfaceTest, SignalsComeAsTheyAreWatched) {
  const Client bystanding(bus().address());
  ParametersClient bystander(bystanding);
  const struct {
    std::string watch;
    std::string call;
    std::vector<std::string> signals;
  } cases[] = {
      {"Watch(true, true)",
       "single_set('rate', '7')",
       {"Changed (2, 'ME', [('double', '10', '14'), ('rate', '5', '7')])",
        "LimitsChanged (2, ['broken', 'double', 'gain'])"}},
      {"Watch(true, false)",
       "single_set('mode', 'fast')",
       {"Changed (3, 'ME', [('boost', '', ''), ('gain[11][left]', '', ''), "
        "('gain[11][right]', '', ''), ('gain[8][left]', '', ''), ('gain[8][right]', '', ''), "
        "('mode', 'slow', 'fast')])"}},
      // By way of the index, gain does.
      {"Watch(false, true)",
       "single_set('mode', 'slow')",
       {"LimitsChanged (4, ['boost', 'gain', 'rate'])"}},
      {"Watch(false, false)", "single_set('mode', 'fast')", {}},
      {"Watch(false, false)", "single_set('mode', 'slow')", {}},
      {"Watch(true, true)",
       "single_set('lock', '1')",
       {"Changed (7, 'ME', [('lock', '', '1')])", "LimitsChanged (7, ['rate'])"}},
      // What changes nothing is no commit, be it stored, refused or empty.
      {"Watch(true, true)", "single_set('lock', '1')", {}},
      {"Watch(true, true)", "single_set('rate', '8')", {}},
      // An order is one each time.
      {"Watch(true, true)",
       "single_set('order', '1')",
       {"Changed (8, 'ME', [('order', '', '1')])"}},
      {"Watch(true, true)",
       "single_set('order', '1')",
       {"Changed (9, 'ME', [('order', '1', '1')])"}},
      {"Watch(true, true)",
       "single_set('gain[9][left]', '99')",
       {"Changed (10, 'ME', [('far', '', '14'), ('gain[9][left]', '', '14')])",
        "LimitsChanged (10, ['far'])"}},
  };
  for (const auto& [watch, call, signals] : cases) {
    EXPECT_EQ(parameters().answer(watch), "()");
    EXPECT_EQ(client().answer(call), "()");
    EXPECT_EQ(parameters().newSignals(), signals) << watch << " " << call;
  }
  EXPECT_EQ(bystander.answer("Get('Commits')"), "<uint64 10>");
  EXPECT_EQ(bystander.newSignals(), std::vector<std::string>());
}

// Whoever commits does not wait for what others watch.
TEST_F(ParametersInterfaceTest, SignalsComeBehindTheAnswerAndBeforeTheNextOne) {
  EXPECT_EQ(parameters().answer("Watch(true, true)"), "()");
  std::vector<std::string> came;  // filled by the thread of the connection
  const guint filter = g_dbus_connection_add_filter(
      client().connection(),
      [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer list) {
        const gchar* const member = g_dbus_message_get_member(message);
        if (isIncoming != FALSE) {
          static_cast<std::vector<std::string>*>(list)->emplace_back(member ? member : "answer");
        }
        return message;
      },
      &came, nullptr);
  client().send("single_set('rate', '7')");
  client().send("single_get('rate')");
  EXPECT_EQ(client().collectAnswers(), (std::vector<std::string>{"()", "'7'"}));
  g_dbus_connection_remove_filter(client().connection(), filter);
  EXPECT_EQ(came, (std::vector<std::string>{"transaction", "answer", "Changed", "LimitsChanged",
                                            "answer"}));
}

TEST_F(ParametersInterfaceTest, SignalsNameTheClientThatCommits) {
  EXPECT_EQ(parameters().answer("Watch(true, false)"), "()");
  const Client other(bus().address());
  EXPECT_EQ(other.answer("single_set('lock', '0')"), "()");
  EXPECT_EQ(parameters().answer("Get('Commits')"), "<uint64 2>");
  const std::string name = g_dbus_connection_get_unique_name(other.connection());
  EXPECT_EQ(parameters().newSignals(),
            std::vector<std::string>{"Changed (2, '" + name + "', [('lock', '', '0')])"});
}

TEST_F(ParametersInterfaceTest, AFailedCommitTellsWhatItHasStored) {
  expectAnswers({{"Watch(true, false)", "()"}, {"start()", "1"}});
  EXPECT_EQ(client().answer("set_bulk(1, ['lock', 'gain[7][left]'], ['1', '3'])"), "()");
  EXPECT_EQ(client().answer("commit(1)"), "Commit failed because parameter index is invalid");
  EXPECT_EQ(parameters().newSignals(),
            std::vector<std::string>{"Changed (2, 'ME', [('lock', '', '1')])"});
  static_cast<void>(daemon().newLogLines());
}

TEST_F(ParametersInterfaceTest, AWatcherThatLeavesIsForgotten) {
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 0>");
  {
    const Client leaving(bus().address());
    EXPECT_EQ(ParametersClient(leaving).answer("Watch(true, true)"), "()");
    EXPECT_EQ(ParametersClient(leaving).answer("Watch(false, true)"), "()");
    EXPECT_EQ(parameters().answer("Watch(true, true)"), "()");
    EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 2>");
  }
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 1>");
  EXPECT_EQ(parameters().answer("Watch(false, false)"), "()");
  EXPECT_EQ(parameters().answer("Watch(false, false)"), "()");
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 0>");
}

TEST_F(ParametersInterfaceTest, HistoryGivesTheLastCommits) {
  const auto now = static_cast<uint64_t>(g_get_real_time());
  for (const char* value : {"1", "0"}) {
    EXPECT_EQ(client().answer("single_set('lock', '" + std::string(value) + "')"), "()");
  }
  EXPECT_EQ(serialsOf(parameters().ask("History(0)")), (std::vector<uint32_t>{1, 2, 3}));
  EXPECT_EQ(serialsOf(parameters().ask("History(2)")), (std::vector<uint32_t>{2, 3}));
  EXPECT_EQ(serialsOf(parameters().ask("History(3)")), (std::vector<uint32_t>{1, 2, 3}));
  EXPECT_EQ(serialsOf(parameters().ask("History(4294967295)")), (std::vector<uint32_t>{1, 2, 3}));
  const VariantPointer last = parameters().ask("History(1)");
  const VariantPointer list(g_variant_get_child_value(last.get(), 0));
  guint64 time = 0;
  const gchar* caller = nullptr;
  GVariant* changes = nullptr;
  g_variant_get_child(list.get(), 0, "(ut&s@a(sss))", nullptr, &time, &caller, &changes);
  const VariantPointer changesOwner(changes);
  EXPECT_GE(time, now);
  EXPECT_LE(time, static_cast<uint64_t>(g_get_real_time()));
  EXPECT_STREQ(caller, g_dbus_connection_get_unique_name(client().connection()));
  EXPECT_EQ(printed(changes), "[('lock', '1', '0')]");
}

TEST_F(ParametersInterfaceTest, HistoryKeepsAThousandCommits) {
  for (int i = 0; i < 1100; ++i) {
    client().send("single_set('lock', '" + std::to_string(i % 2) + "')");
  }
  static_cast<void>(client().collectAnswers());
  const std::vector<uint32_t> serials = serialsOf(parameters().ask("History(0)"));
  ASSERT_EQ(serials.size(), 1000U);
  EXPECT_EQ(serials.front(), 102U);
  EXPECT_EQ(serials.back(), 1101U);
}

TEST_F(ParametersInterfaceTest, HistoryKeepsAMebibyte) {
  const std::string large(300000, 'x');
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(client().answer("single_set('order', '" + large + "')"), "()");
  }
  // Both values of the last two, and the first with one.
  EXPECT_EQ(serialsOf(parameters().ask("History(0)")), (std::vector<uint32_t>{4}));
  EXPECT_EQ(client().answer("single_set('order', '" + large + large + large + "')"), "()");
  EXPECT_EQ(serialsOf(parameters().ask("History(0)")), (std::vector<uint32_t>{4}));
  EXPECT_EQ(client().answer("single_set('order', 'short')"), "()");
  EXPECT_EQ(serialsOf(parameters().ask("History(0)")), (std::vector<uint32_t>{6}));
}

TEST_F(ParametersInterfaceTest, PropertiesTellOfTheDaemon) {
  const Ending version = runToEnd("", {"--version"});
  const std::string line = version.out.substr(0, version.out.find('\n'));
  expectAnswers({
      {"Get('Version')", "<'" + line + "'>"},
      {"Get('Definitions')", "<uint32 12>"},
      {"Get('Commits')", "<uint64 1>"},
      {"Get('OpenTransactions')", "<uint32 0>"},
      {"Get('Watchers')", "<uint32 0>"},
      {"Get('Nosuch')",
       "org.freedesktop.DBus.Error.UnknownProperty: There is no property \"Nosuch\""},
      {"Set('Version', <'1'>)",
       "org.freedesktop.DBus.Error.PropertyReadOnly: The property \"Version\" is read-only"},
      {"Set('Nosuch', <'1'>)",
       "org.freedesktop.DBus.Error.UnknownProperty: There is no property \"Nosuch\""},
      {"GetAll('org.example')",
       "org.freedesktop.DBus.Error.UnknownInterface: The interface \"org.example\" has no "
       "properties here; org.tavrel.parameters1 has"},
  });
  const std::string all = parameters().answer("GetAll('org.tavrel.parameters1')");
  EXPECT_EQ(parameters().answer("GetAll('')"), all);
  const std::string started = parameters().answer("Get('Started')");
  EXPECT_EQ(all, "{'Version': <'" + line +
                     "'>, 'Definitions': <uint32 12>, 'Commits': <uint64 1>, 'OpenTransactions': "
                     "<uint32 0>, 'Watchers': <uint32 0>, 'Started': " +
                     started + ", 'Ready': <true>}");
  const auto now = static_cast<double>(g_get_real_time());
  EXPECT_NEAR(std::stod(started.substr(started.find(' '))), now, 60e6);
}

class SmallDeviceTest : public ServiceTest {};

// A "rostrict" parameter is never announced, but what it decides about is.
TEST_F(SmallDeviceTest, WhatIsNeverAnnouncedChangesLimits) {
  serve("alarm rostrict { }\nsilent rw { ctrlRO (alarm == 1) }\n");
  ParametersClient parameters(client());
  EXPECT_EQ(parameters.answer("Watch(true, true)"), "()");
  EXPECT_EQ(client().answer("start()"), "0");
  const struct {
    const char* alarm;
    const char* preview;
    std::vector<std::string> signals;
  } cases[] = {
      {"1",
       "([('silent', '', '', ['alarm'])], [])",
       {"Changed (1, 'ME', [('silent', '', '')])", "LimitsChanged (1, ['silent'])"}},
      {"0", "([], [])", {"LimitsChanged (2, ['silent'])"}},
      {"0", "([], [])", {}},
  };
  for (const auto& [alarm, preview, signals] : cases) {
    EXPECT_EQ(client().answer("set_status(0, 'alarm', '" + std::string(alarm) + "')"), "()");
    EXPECT_EQ(parameters.answer("Preview(0)"), preview);
    EXPECT_EQ(client().answer("commit(0)"), "()");
    EXPECT_EQ(parameters.newSignals(), signals);
  }
  EXPECT_EQ(serialsOf(parameters.ask("History(0)")), (std::vector<uint32_t>{1}));
  static_cast<void>(client().newSignals());
}

TEST_F(SmallDeviceTest, ChangesThatAreTooLongForOneSignalComeInSeveral) {
  serve("i index { rangeValid { 1..40 } }\nnote rw { index { i } }\n");
  ParametersClient parameters(client());
  EXPECT_EQ(parameters.answer("Watch(true, true)"), "()");
  EXPECT_EQ(client().answer("start()"), "0");
  const std::string value(size_t{1} << 20U, 'x');
  for (int i = 1; i <= 40; ++i) {
    const std::string name = "note[" + std::to_string(i) + "]";
    const Reply set = client().call("set", g_variant_new("(uss)", 0U, name.c_str(), value.c_str()));
    EXPECT_NE(set.value, nullptr) << set.errorMessage;
  }
  EXPECT_EQ(client().answer("commit(0)"), "()");
  const std::vector<std::string> signals = parameters.newSignals();
  size_t seen = 0;
  for (const std::string& signal : signals) {
    EXPECT_TRUE(signal.starts_with("Changed (1, 'ME', [('note["));
    for (size_t at = 0; (at = signal.find("note[", at)) != std::string::npos; ++at) ++seen;
  }
  EXPECT_EQ(seen, 40U);
  EXPECT_GT(signals.size(), 1U);
  EXPECT_EQ(serialsOf(parameters.ask("History(0)")), std::vector<uint32_t>());
  static_cast<void>(client().newSignals());
}

class LargeDeviceTest : public ServiceTest {};

TEST_F(LargeDeviceTest, WhatIsTooMuchForACallIsAnError) {
  serve(
      "mode rw { }\ni index { rangeValid { 1..1000000 } }\nj index { rangeValid { 1..1000 } }\n"
      "wide rw { index { i, j } ctrlValid (i > 1000000) rangeValid { 0..(mode) } }\n");
  const ParametersClient parameters(client());
  EXPECT_EQ(client().answer("start()"), "0");
  EXPECT_EQ(client().answer("set(0, 'mode', '5')"), "()");
  const std::string tooMuch = "TooLarge: More depends on what is staged than a commit takes";
  const std::pair<const char*, std::string> cases[] = {
      {"ListInstances(NONE, ['wide'])",
       "TooLarge: ListInstances would take longer than a call may"},
      {"ListInstances(0, ['mode'])", tooMuch},
      {"GetState(0, ['mode'])", tooMuch},
      {"Explain(0, 'mode')", tooMuch},
      {"Preview(0)", tooMuch},
      {"GetState(NONE, ['mode'])", "[('mode', 7, '', [], [])]"},
  };
  for (const auto& [call, answer] : cases) EXPECT_EQ(parameters.answer(call), answer) << call;
  const std::vector<std::string> lines = {
      "start: ERROR \"mode\": 1000000000 dependent instances, 1000000 allowed",
      "work: ERROR \"wide\": 2000000804 units of work, 2000000000 allowed"};
  EXPECT_EQ(daemon().newLogLines(), lines);
}

TEST_F(LargeDeviceTest, AReplyThatIsTooLongIsAnError) {
  serve("note rw { }\ni index { rangeValid { 1..100000 } }\nwide rw { index { i } }\n");
  const ParametersClient parameters(client());
  const std::string large(size_t{1} << 20U, 'x');
  EXPECT_EQ(client().answer("single_set('note', '" + large + "')"), "()");
  std::string names = "'note'";
  for (int i = 1; i < 70; ++i) names += ", 'note'";
  EXPECT_EQ(parameters.answer("GetState(NONE, [" + names + "])"),
            "TooLarge: The reply of GetState is too long for a message");
  EXPECT_EQ(parameters.answer("GetState(NONE, ['nosuch'])"), "[('nosuch', 0, '', [], [])]");
  static_cast<void>(client().newSignals());
}

struct NodeUnref {
  void operator()(GDBusNodeInfo* node) const { g_dbus_node_info_unref(node); }
};

std::string introspected(const Client& client, const std::string& path) {
  const Reply reply =
      client.callObject(path, "org.freedesktop.DBus.Introspectable", "Introspect", nullptr);
  if (reply.value == nullptr) return reply.errorName;
  const gchar* text = nullptr;
  g_variant_get(reply.value.get(), "(&s)", &text);
  return text;
}

std::string interfacesAndNodes(const std::string& xml) {
  const std::unique_ptr<GDBusNodeInfo, NodeUnref> node(
      g_dbus_node_info_new_for_xml(xml.c_str(), nullptr));
  if (node == nullptr) return "no document: " + xml;
  std::string text;
  for (GDBusInterfaceInfo** each = node->interfaces; each != nullptr && *each != nullptr; ++each) {
    text += std::string((*each)->name) + " ";
  }
  for (GDBusNodeInfo** each = node->nodes; each != nullptr && *each != nullptr; ++each) {
    text += "/" + std::string((*each)->path) + " ";
  }
  return text;
}

std::string contentOf(const char* file) {
  std::ifstream stream(file);
  return {std::istreambuf_iterator<char>(stream), {}};
}

TEST_F(ParametersInterfaceTest, IntrospectionIsTheFileOfTheTree) {
  const std::string text = contentOf(INTERFACE_FILE);
  const std::string seen = introspected(client(), PARAMETERS_PATH);
  const size_t end = text.rfind("</node>");
  ASSERT_NE(end, std::string::npos);
  EXPECT_EQ(seen.substr(0, end), text.substr(0, end));
  EXPECT_EQ(interfacesAndNodes(seen),
            "org.tavrel.parameters1 org.freedesktop.DBus.Introspectable "
            "org.freedesktop.DBus.Properties ");
  EXPECT_EQ(interfacesAndNodes(introspected(client(), "/")), "/parameters /transaction ");
  EXPECT_EQ(introspected(client(), OBJECT_PATH), contentOf(TRANSACTION_INTROSPECTION));
}

TEST_F(ParametersInterfaceTest, CallsThatAreNoneAreErrors) {
  constexpr const char* PEER = "org.freedesktop.DBus.Peer";
  constexpr const char* PROPERTIES = "org.freedesktop.DBus.Properties";
  const struct {
    const char* path;
    const char* interface;
    const char* method;
    const char* arguments;
    const char* answer;
  } cases[] = {
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "Nosuch", "()",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"Nosuch\" with signature \"\" on "
       "interface \"org.tavrel.parameters1\" doesn't exist\n"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "start", "()",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"start\" with signature \"\" on "
       "interface \"org.tavrel.parameters1\" doesn't exist\n"},
      {PARAMETERS_PATH, INTERFACE_NAME, "start", "()",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"start\" with signature \"\" on "
       "interface \"org.tavrel.transaction\" doesn't exist\n"},
      {PARAMETERS_PATH, INTERFACE_NAME, "List", "('',)",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"List\" with signature \"s\" on "
       "interface \"org.tavrel.transaction\" doesn't exist\n"},
      {OBJECT_PATH, PARAMETERS_INTERFACE, "List", "('',)",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"List\" with signature \"s\" on "
       "interface \"org.tavrel.parameters1\" doesn't exist\n"},
      {"/", PARAMETERS_INTERFACE, "List", "('',)",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"List\" with signature \"s\" on "
       "interface \"org.tavrel.parameters1\" doesn't exist\n"},
      {"/parameters/x", PARAMETERS_INTERFACE, "List", "('',)",
       "org.freedesktop.DBus.Error.UnknownMethod: Method \"List\" with signature \"s\" on "
       "interface \"org.tavrel.parameters1\" doesn't exist\n"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "List", "()",
       "org.freedesktop.DBus.Error.InvalidArgs: List takes (s), not ()"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "List", "('a', 'b')",
       "org.freedesktop.DBus.Error.InvalidArgs: List takes (s), not (ss)"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "GetState", "(1, ['a'])",
       "org.freedesktop.DBus.Error.InvalidArgs: GetState takes (uas), not (ias)"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "Begin", "(1,)",
       "org.freedesktop.DBus.Error.InvalidArgs: Begin takes (), not (i)"},
      {PARAMETERS_PATH, PARAMETERS_INTERFACE, "Watch", "(true, 1)",
       "org.freedesktop.DBus.Error.InvalidArgs: Watch takes (bb), not (bi)"},
      {PARAMETERS_PATH, PROPERTIES, "Get", "('Version',)",
       "org.freedesktop.DBus.Error.InvalidArgs: Get takes (ss), not (s)"},
      {PARAMETERS_PATH, PROPERTIES, "Get", "('org.tavrel.transaction', 'Version')",
       "org.freedesktop.DBus.Error.UnknownInterface: The interface "
       "\"org.tavrel.transaction\" has no properties here; org.tavrel.parameters1 has"},
      {PARAMETERS_PATH, PROPERTIES, "Set", "('org.tavrel.parameters1', 'Version', 'x')",
       "org.freedesktop.DBus.Error.InvalidArgs: Set takes (ssv), not (sss)"},
      {PARAMETERS_PATH, PEER, "Ping", "()", "()"},
  };
  for (const auto& [path, interface, method, arguments, answer] : cases) {
    GVariant* const tuple = g_variant_parse(nullptr, arguments, nullptr, nullptr, nullptr);
    EXPECT_EQ(textOf(client().callObject(path, interface, method, tuple)), answer)
        << path << " " << interface << "." << method << arguments;
  }
  EXPECT_EQ(parameters().answer("List('mode')"), "[('mode', 'rw', [], 2, 0)]");
}

TEST_F(ParametersInterfaceTest, CallsWithoutAReplyAreServedInSilence) {
  const guint filter = g_dbus_connection_add_filter(
      client().connection(),
      [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer count) {
        const GDBusMessageType type = g_dbus_message_get_message_type(message);
        const bool isReply =
            type == G_DBUS_MESSAGE_TYPE_METHOD_RETURN || type == G_DBUS_MESSAGE_TYPE_ERROR;
        if (isIncoming != FALSE && isReply) ++*static_cast<std::atomic<int>*>(count);
        return message;
      },
      &replies_, nullptr);
  parameters().callWithoutReply("Begin", nullptr);
  parameters().callWithoutReply("Preview", g_variant_new("(u)", 77U));
  parameters().callWithoutReply("List", nullptr);
  parameters().callWithoutReply("Watch", g_variant_new("(bb)", TRUE, FALSE));
  parameters().callWithoutReply("List", g_variant_new("(s)", ""));
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 1>");
  EXPECT_EQ(replies_, 1);
  g_dbus_connection_remove_filter(client().connection(), filter);
  EXPECT_EQ(parameters().answer("ListTransactions()"), "[(1, 'ME', 0, 0)]");
}

TEST(ParametersPath, HasTheSuffixOfTheObjectPath) {
  const PrivateBus bus;
  Client client(bus.address());
  client.setTarget("org.tavrel.transaction.x", "/transaction/a/b");
  Daemon daemon({.text = TEXT,
                 .arguments = {"--debug", "-b", "x", "-o", "a/b"},
                 .busAddress = bus.address()});
  ASSERT_TRUE(client.waitForService(daemon.process()));
  ParametersClient parameters(client, "/parameters/a/b");
  EXPECT_EQ(parameters.answer("Watch(true, false)"), "()");
  EXPECT_EQ(client.answer("single_set('order', '1')"), "()");
  EXPECT_EQ(parameters.newSignals(),
            std::vector<std::string>{"Changed (1, 'ME', [('order', '', '1')])"});
  EXPECT_EQ(interfacesAndNodes(introspected(client, "/")), "/parameters /transaction ");
  EXPECT_EQ(interfacesAndNodes(introspected(client, "/parameters/a")), "/b ");
  EXPECT_NE(ParametersClient(client).answer("Begin()"), "1");
  EXPECT_EQ(client.answer("die()"), "()");
  EXPECT_EQ(daemon.waitForEnd().status, 1);
}

}  // namespace

// Transactions that belong to one client: guessed ids, owners that leave in the middle of whatever
// they do, hoarders, and clients that watch and never read.
#include <memory>
#include <string>
#include <vector>

#include "tests/harness/deaf_client.h"
#include "tests/harness/hostile_test.h"
#include "tests/harness/parameters_client.h"

namespace {

class HostileOwnershipTest : public HostileTest {
 protected:
  // How many transactions are open, of which 0 is one, and how many clients watch.
  std::string openAndWatching() {
    return parameters_.answer("Get('OpenTransactions')") + " " +
           parameters_.answer("Get('Watchers')");
  }
  // What is open and watching in the end: the bus may tell of a client's end after our call.
  std::string whatIsLeft() {
    const gint64 deadline = g_get_monotonic_time() + 5 * G_TIME_SPAN_SECOND;
    while (openAndWatching() != NOTHING_LEFT && g_get_monotonic_time() < deadline) g_usleep(10000);
    return openAndWatching();
  }
  const std::string NOTHING_LEFT = "<uint32 1> <uint32 0>";
  ParametersClient& parameters() { return parameters_; }
  size_t memoryNow() { return memoryOf(daemon().process().pid(), "VmRSS:"); }

 private:
  ParametersClient parameters_{client()};
};

// A call of every method that takes an id, with `id`.
std::vector<std::string> callsWith(const std::string& id) {
  std::vector<std::string> calls;
  for (const BusMethod& method : busMethods()) {
    const bool takesId = !method.in.empty() && method.in.front().type == "u";
    if (!takesId || method.name.starts_with("single_")) continue;
    std::string call = method.name + "(" + id;
    for (size_t i = 1; i < method.in.size(); ++i) {
      const std::string& type = method.in[i].type;
      call += type == "u" ? ", 1" : type == "as" ? ", ['level']" : i == 1 ? ", 'level'" : ", '9'";
    }
    calls.push_back(call + ")");
  }
  return calls;
}

std::string withoutNumber(std::string text, const std::string& number) {
  for (size_t at = 0; (at = text.find(number, at)) != std::string::npos;) {
    text.replace(at, number.size(), "ID");
  }
  return text;
}

TEST_F(HostileOwnershipTest, AGuessedIdIsAnInvalidOneInEveryMethod) {
  const std::string owned = parameters().answer("Begin()");
  const std::string absent = "400000";
  ASSERT_EQ(client().answer("set(" + owned + ", 'level', '3')"), "()");
  const std::vector<std::string> hers = callsWith(owned);
  const std::vector<std::string> nobodys = callsWith(absent);
  ASSERT_EQ(hers.size(), 18U);
  const Client guessing(bus().address());
  const ParametersClient guesser(guessing);
  for (size_t i = 0; i < hers.size(); ++i) {
    const std::string answer = guessing.answer(hers[i]);
    EXPECT_EQ(answer, guessing.answer(nobodys[i])) << hers[i];
    EXPECT_TRUE(answer.ends_with("because of invalid transaction id")) << hers[i] << answer;
  }
  for (const char* call : {"ListInstances(ID, [])", "GetState(ID, ['level'])",
                           "Explain(ID, 'level')", "Explain(ID, 'nosuch')", "Preview(ID)"}) {
    const auto answerWith = [&](const std::string& id) {
      std::string text = call;
      text.replace(text.find("ID"), 2, id);
      return withoutNumber(guesser.answer(text), id);
    };
    EXPECT_EQ(answerWith(owned), answerWith(absent)) << call;
    EXPECT_EQ(answerWith(owned),
              "UnknownTransaction: No transaction ID is open that this client may use");
  }
  EXPECT_EQ(client().answer("get(" + owned + ", 'level')"), "'3'");
  EXPECT_EQ(parameters().answer("Preview(" + owned + ")"),
            "([('level', '5', '3', ['level'])], [])");
  EXPECT_EQ(client().answer("commit(" + owned + ")"), "()");
  EXPECT_EQ(guessing.answer("single_get('level')"), "'3'");
  EXPECT_EQ(client().answer("end(" + owned + ")"), "()");
  // What is everybody's stays so on both interfaces.
  EXPECT_EQ(guessing.answer("set(0, 'note', 'a')"), "()");
  EXPECT_EQ(guesser.answer("Preview(0)"), "([('note', '', 'a', ['note'])], [])");
  EXPECT_EQ(client().answer("end(0)"), "()");
  static_cast<void>(client().answer("single_set('level', '5')"));
  expectSound();
}

TEST_F(HostileOwnershipTest, GoingThroughAllIdsFindsNothing) {
  std::vector<std::unique_ptr<Client>> owners;
  for (int i = 0; i < 10; ++i) {
    owners.push_back(std::make_unique<Client>(bus().address()));
    const ParametersClient owner(*owners.back());
    for (int j = 0; j < 100; ++j) owner.callWithoutReply("Begin", nullptr);
    EXPECT_EQ(owner.answer("Get('OpenTransactions')"),
              "<uint32 " + std::to_string(100 * (i + 1) + 1) + ">");
  }
  Client guessing(bus().address());
  for (int id = 1; id <= 1100; ++id) guessing.send("end(" + std::to_string(id) + ")");
  for (const std::string& answer : guessing.collectAnswers()) {
    EXPECT_EQ(answer, "End failed because of invalid transaction id");
  }
  EXPECT_EQ(parameters().answer("Get('OpenTransactions')"), "<uint32 1001>");
  owners.clear();
  EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  expectSound();
}

TEST_F(HostileOwnershipTest, AnOwnerThatLeavesEndsItsTransactionsAlone) {
  const std::string mine = parameters().answer("Begin()");
  std::string hers;
  std::string started;
  {
    const Client leaving(bus().address());
    hers = ParametersClient(leaving).answer("Begin()");
    started = leaving.answer("start()");
    for (const std::string& id : {hers, started}) {
      EXPECT_EQ(leaving.answer("set(" + id + ", 'note', 'left')"), "()");
    }
  }
  EXPECT_EQ(client().answer("get(" + hers + ", 'note')"),
            "Get failed because of invalid transaction id");
  EXPECT_EQ(client().answer("get(" + started + ", 'note')"), "'left'");
  EXPECT_EQ(client().answer("set(" + mine + ", 'note', 'here')"), "()");
  EXPECT_EQ(parameters().answer("Preview(" + mine + ")"), "([('note', '', 'here', ['note'])], [])");
  EXPECT_EQ(client().answer("end(" + mine + ")"), "()");
  EXPECT_EQ(client().answer("end(" + started + ")"), "()");
  expectSound();
}

// A client's well-known names come and go; it is still the same.
TEST_F(HostileOwnershipTest, ANameThatIsGivenUpEndsNothing) {
  const std::string id = parameters().answer("Begin()");
  EXPECT_EQ(parameters().answer("Watch(true, true)"), "()");
  const auto ofBus = [&](const char* method, GVariant* arguments) {
    const VariantPointer reply(g_dbus_connection_call_sync(
        client().connection(), "org.freedesktop.DBus", "/org/freedesktop/DBus",
        "org.freedesktop.DBus", method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr));
    return reply == nullptr ? std::string("refused") : printed(reply.get());
  };
  EXPECT_EQ(ofBus("RequestName", g_variant_new("(su)", "org.example.Owner", 0U)), "(1,)");
  EXPECT_EQ(ofBus("ReleaseName", g_variant_new("(s)", "org.example.Owner")), "(1,)");
  EXPECT_EQ(client().answer("get(" + id + ", 'level')"), "'5'");
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 1>");
  // Nobody can take the name of another one.
  EXPECT_EQ(ofBus("RequestName", g_variant_new("(su)", ":1.777", 0U)), "refused");
}

// A signal like the bus's own, from a client.
TEST_F(HostileOwnershipTest, AClientCannotSayThatAnotherHasLeft) {
  const std::string id = parameters().answer("Begin()");
  const Client lying(bus().address());
  const char* const name = g_dbus_connection_get_unique_name(client().connection());
  for (const char* destination : {static_cast<const char*>(nullptr), INTERFACE_NAME}) {
    EXPECT_NE(g_dbus_connection_emit_signal(
                  lying.connection(), destination, "/org/freedesktop/DBus", "org.freedesktop.DBus",
                  "NameOwnerChanged", g_variant_new("(sss)", name, name, ""), nullptr),
              FALSE);
  }
  EXPECT_EQ(lying.answer("single_get('level')"), "'5'");
  EXPECT_EQ(client().answer("get(" + id + ", 'level')"), "'5'");
}

TEST_F(HostileOwnershipTest, OnesThatLeaveInTheMiddleOfACallLeaveNothing) {
  std::string names;
  for (int i = 1; i <= 100000; ++i) names += "'wide[" + std::to_string(i) + "]',";
  names.pop_back();
  const std::string instances = "[" + names + "]";
  for (const char* call : {"reset_bulk", "set_bulk", "get_range_bulk"}) {
    Client leaving(bus().address());
    const std::string id = ParametersClient(leaving).answer("Begin()");
    leaving.send(std::string(call) + "(" + id + ", " + instances +
                 (std::string(call) == "set_bulk" ? ", " + instances : std::string()) + ")");
    EXPECT_NE(g_dbus_connection_flush_sync(leaving.connection(), nullptr, nullptr), FALSE);
    EXPECT_NE(g_dbus_connection_close_sync(leaving.connection(), nullptr, nullptr), FALSE);
    static_cast<void>(leaving.collectAnswers());  // that the connection is closed
  }
  EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  expectSound();
}

// The daemon sees the calls and the end of their client at once.
TEST_F(HostileOwnershipTest, OnesThatHaveLeftBeforeTheirCallsAreServedGetNothing) {
  for (const bool isServedAtOnce : {false, true}) {
    if (!isServedAtOnce) pause();
    {
      const Client leaving(bus().address());
      const ParametersClient parameters(leaving);
      for (int i = 0; i < 10; ++i) {
        parameters.callWithoutReply("Begin", nullptr);
        parameters.callWithoutReply("Watch", g_variant_new("(bb)", TRUE, TRUE));
      }
      EXPECT_NE(g_dbus_connection_flush_sync(leaving.connection(), nullptr, nullptr), FALSE);
    }
    if (!isServedAtOnce) resume();
    EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  }
  expectSound();
}

TEST_F(HostileOwnershipTest, AHundredThousandBeginsAndAwayLeaveNothing) {
  constexpr size_t ALLOWED = size_t{8} << 10U;  // in KiB
  const auto beginAndLeave = [&](int clients) {
    for (int i = 0; i < clients; ++i) {
      const Client leaving(bus().address());
      const ParametersClient parameters(leaving);
      const long first = std::stol(parameters.answer("Begin()"));
      for (int j = 1; j < 1000; ++j) parameters.callWithoutReply("Begin", nullptr);
      parameters.callWithoutReply("Watch", g_variant_new("(bb)", TRUE, TRUE));
      EXPECT_EQ(leaving.answer("set(" + std::to_string(first + 999) + ", 'note', 'x')"), "()");
    }
  };
  beginAndLeave(10);
  EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  const size_t before = memoryNow();
  beginAndLeave(90);
  EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  EXPECT_LT(isWatched() ? 0 : memoryNow(), before + ALLOWED);
  expectSound();
}

TEST_F(HostileOwnershipTest, AHoarderIsStoppedAndOthersAreNot) {
  const Client hoarding(bus().address());
  const ParametersClient hoarder(hoarding);
  for (int i = 0; i < 20000; ++i) hoarder.callWithoutReply("Begin", nullptr);
  EXPECT_EQ(hoarder.answer("Get('OpenTransactions')"), "<uint32 1001>");
  EXPECT_EQ(parameters().answer("Begin()"), "1003");  // after those of two single calls before
  EXPECT_EQ(client().answer("start()"), "1004");
  EXPECT_EQ(client().answer("end(1003)"), "()");
  EXPECT_EQ(client().answer("end(1004)"), "()");
  expectSound();
}

// An id that outlives the daemon is one that somebody else may get.
TEST_F(HostileOwnershipTest, AnIdOfBeforeARestartIsNobodyElses) {
  EXPECT_EQ(client().answer("end(0)"), "()");
  expectOrderlyEnd();
  serve("note rw { }");
  const Client other(bus().address());
  EXPECT_EQ(ParametersClient(other).answer("Begin()"), "0");
  EXPECT_EQ(other.answer("set(0, 'note', 'hers')"), "()");
  EXPECT_EQ(client().answer("set(0, 'note', 'mine')"),
            "Set failed because of invalid transaction id");
  EXPECT_EQ(client().answer("commit(0)"), "Commit failed because of invalid transaction id");
  EXPECT_EQ(client().answer("end(0)"), "End failed because of invalid transaction id");
  EXPECT_EQ(other.answer("get(0, 'note')"), "'hers'");
}

TEST_F(HostileOwnershipTest, WatchersThatNeverReadDoNotHoldUpTheOthers) {
  std::vector<std::unique_ptr<DeafClient>> deaf;
  for (int i = 0; i < 10; ++i) {
    deaf.push_back(std::make_unique<DeafClient>(bus().address()));
    deaf.back()->watch();
  }
  const std::string text(100000, 'x');
  const auto commitLong = [&](int times) {
    for (int i = 0; i < times; ++i) {
      const std::string value = std::to_string(i) + text;
      const Reply set = client().call("single_set", g_variant_new("(ss)", "note", value.c_str()));
      EXPECT_NE(set.value, nullptr) << set.errorMessage;
    }
  };
  commitLong(50);
  EXPECT_EQ(parameters().answer("Get('Watchers')"), "<uint32 10>");
  const size_t before = memoryNow();
  commitLong(100);
  EXPECT_LT(isWatched() ? 0 : memoryNow(), before + (size_t{16} << 10U));
  deaf.clear();
  EXPECT_EQ(whatIsLeft(), NOTHING_LEFT);
  expectSound();
}

}  // namespace

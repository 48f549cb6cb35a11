// Clients that behave badly as a whole: very many, ones that vanish, never read, hoard transactions
// or take others' for their own, and one that ends the service under everybody.
#include <memory>
#include <vector>

#include "tests/harness/deaf_client.h"
#include "tests/harness/hostile_test.h"

namespace {

class HostileClientsTest : public HostileTest {
 protected:
  std::vector<std::unique_ptr<Client>> connect(size_t count) {
    std::vector<std::unique_ptr<Client>> clients;
    for (size_t i = 0; i < count; ++i) clients.push_back(std::make_unique<Client>(bus().address()));
    return clients;
  }
};

TEST_F(HostileClientsTest, ManyAtOnceEachHaveTheirOwnTransaction) {
  constexpr size_t CALLS = 100;
  struct Own {
    std::unique_ptr<Client> client;
    std::string id;
    std::vector<std::string> answers;
  };
  std::vector<Own> all;
  for (std::unique_ptr<Client>& client : connect(50)) {
    const std::string id = client->answer("start()");
    all.push_back({std::move(client), id, {}});
  }
  for (size_t call = 0; call < CALLS; ++call) {
    for (Own& own : all) {
      const std::string value = "'" + own.id + "-" + std::to_string(call) + "'";
      own.client->send("set(" + own.id + ", 'note', " + value + ")");
      own.answers.emplace_back("()");
      own.client->send("get(" + own.id + ", 'note')");
      own.answers.push_back(value);
    }
  }
  for (Own& own : all) EXPECT_EQ(own.client->collectAnswers(), own.answers);
  all.clear();
  expectSound();
}

std::string hundredThousandInstances() {
  std::string names;
  for (int i = 1; i <= 100000; ++i) names += "'wide[" + std::to_string(i) + "]',";
  names.pop_back();
  return "[" + names + "]";
}

TEST_F(HostileClientsTest, OnesThatVanishInMidCallLeaveNothing) {
  const std::string instances = hundredThousandInstances();
  for (const std::string& call :
       {"reset_bulk(0, " + instances + ")", std::string("commit(0)"),
        "get_range_bulk(0, " + instances + ")", "single_get_bulk(4294967295, " + instances + ")"}) {
    Client vanishing(bus().address());
    vanishing.send(call);
    EXPECT_NE(g_dbus_connection_flush_sync(vanishing.connection(), nullptr, nullptr), FALSE);
    EXPECT_NE(g_dbus_connection_close_sync(vanishing.connection(), nullptr, nullptr), FALSE);
    static_cast<void>(vanishing.collectAnswers());  // that the connection is closed
    // The bus may read on from others first, and the next call is about what this one stages.
    const int tries = call.starts_with("reset") ? 10000 : 0;
    for (int i = 0; i < tries && client().answer("get(0, 'wide[100000]')") != "'3'"; ++i) {
    }
  }
  for (int i = 0; i < 100; ++i) {
    DeafClient vanishing(bus().address());
    vanishing.send("start");
    vanishing.send("single_get", "level");
  }
  expectSound();
  // What they staged and committed has been done all the same.
  EXPECT_EQ(client().answer("single_get('wide[100000]')"), "'3'");
}

TEST_F(HostileClientsTest, OnesThatNeverReadDoNotHoldUpTheOthers) {
  const std::string mebibyte(size_t{1} << 20U, 'x');
  const Reply set = client().call("single_set", g_variant_new("(ss)", "note", mebibyte.c_str()));
  ASSERT_NE(set.value, nullptr) << set.errorMessage;
  DeafClient deaf(bus().address());
  deaf.subscribe();
  for (int i = 0; i < 100; ++i) deaf.send("single_get", "note");
  for (int i = 0; i < 1000; ++i) {
    EXPECT_EQ(client().answer("single_set('level', '" + std::to_string(i % 10) + "')"), "()");
  }
  expectSound();
  for (int i = 0; i < 1000; ++i) deaf.send("no_such_method");
  expectSound();
}

// Calls of `method` for which no reply is wanted, so that none is in the way.
void callWithoutReply(const Client& client, const char* method, guint times) {
  for (guint i = 0; i < times; ++i) {
    g_dbus_connection_call(client.connection(), INTERFACE_NAME, OBJECT_PATH, INTERFACE_NAME, method,
                           nullptr, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr,
                           nullptr);
  }
}

TEST_F(HostileClientsTest, AHundredThousandOpenTransactionsAreServed) {
  callWithoutReply(client(), "start", 100000);
  // 0 was open, and two calls before had one each for themselves.
  EXPECT_EQ(client().answer("start()"), "100003");
  expectSound();
  // With something staged in many of them.
  for (guint id = 3; id < 100003; id += 100) {
    client().send("set(" + std::to_string(id) + ", 'note', '" + std::to_string(id) + "')");
  }
  for (const std::string& answer : client().collectAnswers()) EXPECT_EQ(answer, "()");
  EXPECT_EQ(client().answer("get(3, 'note')"), "'3'");
  EXPECT_EQ(client().answer("get(4, 'note')"), "''");
  EXPECT_EQ(client().answer("get(99903, 'note')"), "'99903'");
  EXPECT_EQ(client().answer("commit(50003)"), "()");
  EXPECT_EQ(client().answer("get(4, 'note')"), "'50003'");
  EXPECT_EQ(client().answer("get(3, 'note')"), "'3'");
  expectSound();
}

TEST_F(HostileClientsTest, TransactionsEndedByOthersAreRefused) {
  const std::string id = client().answer("start()");
  EXPECT_EQ(client().answer("set(" + id + ", 'note', 'mine')"), "()");
  Client other(bus().address());
  EXPECT_EQ(other.answer("set(" + id + ", 'note', 'theirs')"), "()");
  EXPECT_EQ(client().answer("get(" + id + ", 'note')"), "'theirs'");
  EXPECT_EQ(other.answer("end(" + id + ")"), "()");
  EXPECT_EQ(client().answer("commit(" + id + ")"),
            "Commit failed because of invalid transaction id");
  EXPECT_EQ(client().answer("single_get('note')"), "''");
  expectSound();
}

TEST_F(HostileClientsTest, DieIsAnsweredAndAllCallsComeBackToAll) {
  std::vector<std::unique_ptr<Client>> clients = connect(20);
  for (const std::unique_ptr<Client>& other : clients) {
    for (int i = 0; i < 50; ++i) other->send("single_get('witness')");
  }
  client().send("die()");
  for (const std::unique_ptr<Client>& other : clients) {
    for (int i = 0; i < 50; ++i) other->send("single_set('note', 'x')");
    other->send("die()");
  }
  EXPECT_EQ(client().collectAnswers(), std::vector<std::string>({"()"}));
  for (const std::unique_ptr<Client>& other : clients) {
    for (const std::string& answer : other->collectAnswers()) {
      // Either the call was served, or the bus tells that nobody will.
      EXPECT_TRUE(answer == "'7'" || answer == "()" ||
                  answer.starts_with("org.freedesktop.DBus.Error."))
          << answer;
      EXPECT_EQ(answer.find("Timeout"), std::string::npos) << answer;
    }
  }
  const Ending ending = daemon().waitForEnd();
  EXPECT_EQ(ending.status, 1);
  EXPECT_EQ(ending.err, "");
  forgetDaemon();
}

}  // namespace

// Transactions of clients that have left: they are served, and what they take is bounded.
#include <unistd.h>

#include "tests/harness/service_test.h"

namespace {

constexpr const char* UNKNOWN = "Get failed because of invalid transaction id";

class VanishedClientsTest : public ServiceTest {
 protected:
  void SetUp() override { serve("note rw { }"); }
  size_t memoryNow() { return memoryOf(daemon().process().pid(), "VmRSS:"); }
  static std::string getNote(long id) { return "get(" + std::to_string(id) + ", 'note')"; }
};

void callWithoutReply(const Client& client, const char* method, GVariant* arguments) {
  g_dbus_connection_call(client.connection(), INTERFACE_NAME, OBJECT_PATH, INTERFACE_NAME, method,
                         arguments, nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr,
                         nullptr);
}

// Opens transactions for a client that nobody disturbs, and stages so many bytes in each. Returns
// the first id.
long openMany(const Client& client, int count, size_t bytes) {
  const long first = std::stol(client.answer("start()"));
  const std::string value(bytes, 'x');
  for (int i = 0; i < count; ++i) {
    if (i > 0) callWithoutReply(client, "start", nullptr);
    if (bytes == 0) continue;
    callWithoutReply(
        client, "set",
        g_variant_new("(uss)", static_cast<guint32>(first + i), "note", value.c_str()));
  }
  EXPECT_EQ(client.answer("get(" + std::to_string(first + count - 1) + ", 'note')"),
            "'" + value + "'");
  return first;
}

TEST_F(VanishedClientsTest, WhatTheyLeaveBehindIsBounded) {
  struct LeavingCase {
    const char* what;
    int clients;
    int transactions;  // of each
    size_t bytes;      // in each transaction
  };
  const LeavingCase cases[] = {
      {"empty", 100, 1500, 0}, {"small", 100, 200, 1000}, {"large", 100, 1, size_t{1} << 20U}};
  constexpr size_t ALLOWED = size_t{64} << 10U;  // in KiB: 32 MiB, and what the allocator keeps
  const size_t before = memoryNow();
  for (const LeavingCase& c : cases) {
    SCOPED_TRACE(c.what);
    long first = -1;
    long last = -1;
    for (int i = 0; i < c.clients; ++i) {
      const Client vanishing(bus().address());
      last = openMany(vanishing, c.transactions, c.bytes);
      if (first < 0) first = last;
    }
    // The bus tells the daemon of the last one's end ahead of this client's next call.
    EXPECT_EQ(client().answer("single_get('note')"), "''");
    EXPECT_EQ(client().answer(getNote(first)), UNKNOWN);
    EXPECT_EQ(client().answer(getNote(last)), "'" + std::string(c.bytes, 'x') + "'");
    RecordProperty(c.what, std::to_string(memoryNow() - before));
    EXPECT_LT(isWatched() ? 0 : memoryNow(), before + ALLOWED);
  }
}

TEST_F(VanishedClientsTest, ThoseOfClientsThatStayAreKept) {
  const long id = openMany(client(), 40, size_t{1} << 20U);
  for (int i = 0; i < 40; ++i) {
    const Client vanishing(bus().address());
    openMany(vanishing, 1, size_t{1} << 20U);
  }
  const std::string value = "'" + std::string(size_t{1} << 20U, 'x') + "'";
  for (int i = 0; i < 40; ++i) EXPECT_EQ(client().answer(getNote(id + i)), value);
}

TEST_F(VanishedClientsTest, WhoKnowsTheIdGoesOn) {
  long id = -1;
  {
    const Client vanishing(bus().address());
    id = openMany(vanishing, 1, 3);
  }
  const std::string number = std::to_string(id);
  EXPECT_EQ(client().answer("single_get('note')"), "''");
  EXPECT_EQ(client().answer("set(" + number + ", 'note', 'mine')"), "()");
  EXPECT_EQ(client().answer("commit(" + number + ")"), "()");
  EXPECT_EQ(client().answer("single_get('note')"), "'mine'");
  EXPECT_EQ(client().answer("end(" + number + ")"), "()");
  EXPECT_EQ(client().answer(getNote(id)), UNKNOWN);
  static_cast<void>(client().newSignals());
}

TEST_F(VanishedClientsTest, WhatOthersStageInThemIsBounded) {
  std::vector<long> ids;
  for (int i = 0; i < 40; ++i) {
    const Client vanishing(bus().address());
    ids.push_back(openMany(vanishing, 1, 0));
  }
  const std::string value(size_t{1} << 20U, 'x');
  for (const long id : ids) {
    const Reply set = client().call(
        "set", g_variant_new("(uss)", static_cast<guint32>(id), "note", value.c_str()));
    EXPECT_NE(set.value, nullptr) << set.errorMessage;
  }
  EXPECT_EQ(client().answer(getNote(ids[0])), UNKNOWN);
  EXPECT_EQ(client().answer(getNote(ids[7])), UNKNOWN);
  for (size_t i = 9; i < ids.size(); ++i) {
    EXPECT_EQ(client().answer(getNote(ids[i])), "'" + value + "'") << i;
  }
}

}  // namespace

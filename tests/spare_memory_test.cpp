// What transactions take, and that it goes back to the system.
#include <unistd.h>

#include "tests/harness/service_test.h"

namespace {

constexpr int PARAMETERS = 10'000;
constexpr int TRANSACTIONS = 20;
constexpr size_t KIB_OF_A_TRANSACTION = 1024;  // at the least: 10,000 values of a hundred bytes

using SpareMemoryTest = ServiceTest;

std::string nameOf(int number) { return "p" + std::to_string(number); }

// A list of as many texts as there are parameters.
template <typename TextOf>
std::string listOf(const TextOf& textOf) {
  std::string list = "[";
  for (int i = 0; i < PARAMETERS; ++i) {
    list.append(i > 0 ? ", '" : "'").append(textOf(i)).append("'");
  }
  return list + "]";
}

size_t memoryNow(Daemon& daemon) { return memoryOf(daemon.process().pid(), "VmRSS:"); }

// Opens transactions that stage all parameters, ends them, and sees what they took go.
void expectMemoryToGoBack(Client& client, Daemon& daemon, int firstId) {
  const size_t atFirst = memoryNow(daemon);
  const std::string lists = listOf(nameOf) + ", " + listOf([](int) { return "1"; });
  for (int id = firstId; id < firstId + TRANSACTIONS; ++id) {
    ASSERT_EQ(client.answer("start()"), std::to_string(id));
    ASSERT_EQ(client.answer("set_bulk(" + std::to_string(id) + ", " + lists + ")"), "()");
  }
  const size_t open = memoryNow(daemon);
  for (int id = firstId; id < firstId + TRANSACTIONS; ++id) {
    ASSERT_EQ(client.answer("end(" + std::to_string(id) + ")"), "()");
  }
  if (isWatched()) return;
  EXPECT_GT(open, atFirst + TRANSACTIONS * KIB_OF_A_TRANSACTION);
  const size_t expected = atFirst + 2 * KIB_OF_A_TRANSACTION;
  for (int tenths = 0; tenths < 10 * PATIENCE && memoryNow(daemon) > expected; ++tenths) {
    usleep(100'000);
  }
  EXPECT_LE(memoryNow(daemon), expected);
}

TEST_F(SpareMemoryTest, GoesBackEachTimeThatTransactionsAreEnded) {
  std::string text;
  for (int i = 0; i < PARAMETERS; ++i) text += nameOf(i) + " rw { }\n";
  serve(text);
  for (int i = 0; i < 3 && !HasFailure(); ++i) {
    SCOPED_TRACE(i);
    expectMemoryToGoBack(client(), daemon(), i * TRANSACTIONS);
  }
}

TEST_F(SpareMemoryTest, OfReadingGoesBackBeforeTheServiceStarts) {
  serve("");
  const size_t least = memoryNow(daemon());
  expectOrderlyEnd();
  // What is read takes far more than what is made of it.
  std::string text = "p rw { default { (0\n";
  for (int i = 0; i < 300'000; ++i) text += "+ 1\n";
  serve(text + ") } }\n");
  if (isWatched()) return;
  EXPECT_GT(memoryOf(daemon().process().pid(), "VmHWM:"), least + 20'000);  // KiB
  EXPECT_LT(memoryNow(daemon()), least + 5'000);
}

}  // namespace

#include "sw/dbus/method_frame.h"

#include <gtest/gtest.h>

#include <new>
#include <string>
#include <vector>

#include "base/system_log.h"
#include "tests/support/mappings.h"
#include "tests/support/service.h"

namespace {

char heap[100];
char* heapEnd = heap;

}  // namespace

// In the place of the C library's.
extern "C" void* sbrk(intptr_t /*more*/) noexcept { return heapEnd; }

namespace {

TEST(Serve, HoldsTheLockDuringTheOperation) {
  TestService service("");
  GMutex* lock = service.state().lock();
  const auto isHeld = [lock]() -> gboolean {
    if (g_mutex_trylock(lock) == FALSE) return TRUE;
    g_mutex_unlock(lock);
    return FALSE;
  };
  EXPECT_EQ(serve({"test", service.object(), nullptr}, METHOD_GET, isHeld), TRUE);
  EXPECT_EQ(isHeld(), FALSE);
}

TEST(Serve, MakesAnErrorOfAnException) {
  struct ExceptionCase {
    MethodFamily family;
    const char* message;
  };
  const ExceptionCase cases[] = {
      {METHOD_START,
       "dbus_tavrel_transaction: Start failed because of an \"out of memory\" condition"},
      {METHOD_GET, "dbus_tavrel_transaction: Get failed because of internal error"},
      {METHOD_GET_DEPS, "dbus_tavrel_transaction: Get deps failed because of unknown error"},
  };
  TestService service("");
  for (const ExceptionCase& c : cases) {
    SCOPED_TRACE(c.message);
    GError* error = nullptr;
    const auto operation = []() -> gboolean { throw std::bad_alloc(); };
    EXPECT_EQ(serve({"test", service.object(), &error}, c.family, operation), FALSE);
    ASSERT_NE(error, nullptr);
    EXPECT_STREQ(error->message, c.message);
    g_error_free(error);
  }
  // The lock is free again.
  EXPECT_EQ(serve({"test", service.object(), nullptr}, METHOD_GET, [] { return TRUE; }), TRUE);
}

TEST(Serve, MakesAnErrorOfAPassedBudgetAndTellsTheLog) {
  std::vector<std::string> log;
  const LogRedirection redirection([&](const std::string& line) { log.push_back(line); });
  TestService service("gain rw { }");
  const std::string name = "gain";
  const auto tooMuch = [&]() -> gboolean {
    Work::spendOn(name);
    Work::add(WORK_BUDGET + 1);
    return TRUE;
  };
  GError* error = nullptr;
  EXPECT_EQ(serve({"test", service.object(), &error}, METHOD_COMMIT, tooMuch), FALSE);
  ASSERT_NE(error, nullptr);
  EXPECT_STREQ(error->message, "dbus_tavrel_transaction: Commit failed because of internal error");
  g_error_free(error);
  EXPECT_EQ(log, (std::vector<std::string>{
                     R"(work: ERROR "gain": 2000000001 units of work, 2000000000 allowed)"}));
  // The next call has a budget of its own.
  const auto asMuchAsAllowed = []() -> gboolean {
    Work::add(WORK_BUDGET);
    return TRUE;
  };
  EXPECT_EQ(serve({"test", service.object(), nullptr}, METHOD_COMMIT, asMuchAsAllowed), TRUE);
}

TEST(ServeDeathTest, StopsTheProgramWithoutAnObject) {
  TestService service("");
  const auto operation = [] { return TRUE; };
  EXPECT_DEATH(serve({"the_method", nullptr, nullptr}, METHOD_GET, operation),
               "the_method: Assertion `obj != NULL' failed");
}

TEST(InOwnTransaction, TakesAnIdAndOpensNothing) {
  TestService service("");
  const MethodCall call = {"test", service.object(), nullptr};
  const auto operation = [&](Transaction&) {
    return service.state().transactions().find(0) == nullptr ? 0 : 1;
  };
  EXPECT_EQ(inOwnTransaction(call, METHOD_GET, operation), TRUE);
  EXPECT_EQ(inOwnTransaction(call, METHOD_GET, [](Transaction&) { return 1; }), FALSE);
  EXPECT_EQ(service.state().transactions().find(0), nullptr);
  EXPECT_EQ(service.state().transactions().find(1), nullptr);
  uint32_t id = 0;
  service.state().transactions().open(id);
  EXPECT_EQ(id, 2U);  // each took an id
}

// Where the heap has grown, and where it has not.
TEST(Serve, LooksForHeadroomWhereAMethodKeepsMemory) {
  TestService service("");
  const auto succeeds = [&](MethodFamily family) {
    GError* error = nullptr;
    const bool done =
        serve({"test", service.object(), &error}, family, [] { return TRUE; }) == TRUE;
    g_clear_error(&error);
    return done;
  };
  for (const MethodFamily family : {METHOD_START, METHOD_SET, METHOD_GET, METHOD_COMMIT}) {
    SCOPED_TRACE(family);
    ++heapEnd;
    Mappings::succeed = false;
    EXPECT_EQ(succeeds(family), !keepsMemory(family));
    EXPECT_EQ(succeeds(family), !keepsMemory(family));  // it is not known yet that there is any
    Mappings::succeed = true;
    Mappings::most = 0;
    EXPECT_TRUE(succeeds(family));
    EXPECT_EQ(Mappings::most, keepsMemory(family) ? HEADROOM : 0);
    EXPECT_TRUE(succeeds(METHOD_SET));
    Mappings::succeed = false;
    EXPECT_TRUE(succeeds(family));
    Mappings::succeed = true;
  }
}

TEST(Serve, TakesTheMethodsThatKeepMemory) {
  for (int family = METHOD_START; family <= METHOD_GET_INDEX_RANGE; ++family) {
    const bool keeps = family == METHOD_START || family == METHOD_VALIDATE ||
                       family == METHOD_SET || family == METHOD_SET_STATUS ||
                       family == METHOD_RESET || family == METHOD_RESET_STATUS;
    EXPECT_EQ(keepsMemory(static_cast<MethodFamily>(family)), keeps) << family;
  }
}

}  // namespace

#include "sw/dbus/end_signals.h"

#include <gtest/gtest.h>

namespace {

TEST(EndSignals, EachHasTheMainLoopCallTheFunctionOnce) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    SCOPED_TRACE(signal);
    int calls = 0;
    const EndSignals endSignals([&] { ++calls; });
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(calls, 0);
    raise(signal);
    EXPECT_EQ(calls, 0);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(calls, 1);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(calls, 1);
  }
}

// The first source of a process has the number 1.
TEST(EndSignals, LeaveOtherSourcesAlone) {
  int complaints = 0;
  const auto count = [](const char*, GLogLevelFlags, const char*, gpointer data) {
    ++*static_cast<int*>(data);
  };
  auto* const before = g_log_set_default_handler(count, &complaints);
  g_idle_add([](gpointer) { return static_cast<gboolean>(G_SOURCE_CONTINUE); }, nullptr);
  const bool isThere = g_main_context_find_source_by_id(nullptr, 1) != nullptr;
  for (const bool isRaised : {false, true}) {
    SCOPED_TRACE(isRaised);
    int calls = 0;
    {
      const EndSignals endSignals([&] { ++calls; });
      if (isRaised) raise(SIGTERM);
      g_main_context_iteration(nullptr, FALSE);
    }
    EXPECT_EQ(calls, isRaised ? 1 : 0);
    EXPECT_EQ(complaints, 0);
    EXPECT_EQ(g_main_context_find_source_by_id(nullptr, 1) != nullptr, isThere);
  }
  g_idle_remove_by_data(nullptr);
  g_log_set_default_handler(before, nullptr);
}

TEST(EndSignals, OneThatWasIgnoredStaysIgnored) {
  auto* const before = std::signal(SIGHUP, SIG_IGN);
  {
    int calls = 0;
    const EndSignals endSignals([&] { ++calls; });
    raise(SIGHUP);
    raise(SIGHUP);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_EQ(calls, 0);
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
}

TEST(EndSignalsDeathTest, TheSecondOfAKindEndsTheProcess) {
  const auto raiseTwice = [] {
    const EndSignals endSignals([] {});
    raise(SIGTERM);
    raise(SIGTERM);
  };
  EXPECT_EXIT(raiseTwice(), testing::KilledBySignal(SIGTERM), "");
}

TEST(EndSignalsDeathTest, WhatWasBeforeIsThereAgain) {
  {
    const EndSignals endSignals([] {});
  }
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    EXPECT_EXIT(raise(signal), testing::KilledBySignal(signal), "");
  }
}

}  // namespace

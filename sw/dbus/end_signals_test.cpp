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
  EXPECT_EXIT(raise(SIGINT), testing::KilledBySignal(SIGINT), "");
}

}  // namespace

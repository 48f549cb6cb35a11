#include "play/bus_call.h"

#include <gtest/gtest.h>

namespace {

VariantHolder valueOf(const char* text) {
  return VariantHolder(g_variant_parse(nullptr, text, nullptr, nullptr, nullptr));
}

std::string textOf(GVariant* value) {
  const VariantHolder held(g_variant_ref_sink(value));
  gchar* const printed = g_variant_print(held.get(), FALSE);
  std::string text = printed;
  g_free(printed);
  return text;
}

TEST(BusCall, ArgumentsAreWhatTheMethodTakes) {
  const struct {
    Call call;
    const char* expected;
  } cases[] = {
      {{"start"}, "()"},
      {{"commit", 7}, "(7,)"},
      {{"set", 7, {"a[1]"}, {"on"}}, "(7, 'a[1]', 'on')"},
      {{"set_bulk", 7, {"a", "b"}, {"1", "2"}}, "(7, ['a', 'b'], ['1', '2'])"},
      {{"get_bulk", 7, {"a", "b"}}, "(7, 2, ['a', 'b'])"},
      {{"single_get_bulk", 7, {"a"}}, "(1, ['a'])"},
      {{"single_reset", 7, {"a"}}, "('a',)"},
  };
  for (const auto& [call, expected] : cases) EXPECT_EQ(textOf(busArguments(call)), expected);
  EXPECT_EQ(busArguments({"try"}), nullptr);
}

TEST(BusCall, WhatTheServiceIgnoresIsLeftOut) {
  const struct {
    const char* method;
    const char* arguments;
    std::vector<std::string> names;
    std::vector<std::string> values;
  } cases[] = {
      {"get_bulk", "(uint32 7, uint32 1, ['a', 'b'])", {"a"}, {}},
      {"get_bulk", "(uint32 7, uint32 9, ['a', 'b'])", {"a", "b"}, {}},
      {"set_bulk", "(uint32 7, ['a', 'b'], ['1'])", {"a"}, {"1"}},
      {"single_set_bulk", "(['a'], ['1', '2'])", {"a"}, {"1"}},
      {"reset_bulk", "(uint32 7, @as [])", {}, {}},
      {"is_valid", "(uint32 7, 'a', '')", {"a"}, {""}},
  };
  for (const auto& [method, arguments, names, values] : cases) {
    const std::optional<Call> call = busCall(method, *valueOf(arguments));
    ASSERT_TRUE(call) << method << arguments;
    EXPECT_EQ(call->method, method);
    EXPECT_EQ(call->names, names) << arguments;
    EXPECT_EQ(call->values, values) << arguments;
    EXPECT_EQ(call->transaction, method == std::string_view("single_set_bulk") ? 0U : 7U);
  }
}

TEST(BusCall, OtherCallsAreNone) {
  EXPECT_FALSE(busCall("die", *valueOf("()")));
  EXPECT_FALSE(busCall("set", *valueOf("(uint32 7, 'a')")));
  EXPECT_FALSE(busCall("commit", *valueOf("(7,)")));
}

TEST(BusCall, AnswersHoldWhatTheReplyHas) {
  EXPECT_EQ(busAnswer(*valueOf("(uint32 7,)")).transaction, 7U);
  EXPECT_TRUE(busAnswer(*valueOf("(true,)")).isValid);
  EXPECT_EQ(busAnswer(*valueOf("('on',)")).texts, (std::vector<std::string>{"on"}));
  EXPECT_EQ(busAnswer(*valueOf("(['a', 'b'],)")).texts, (std::vector<std::string>{"a", "b"}));
  const Answer range = busAnswer(*valueOf("(['auto'], [(0, 9), (20, 20)])"));
  ASSERT_EQ(range.ranges.size(), 1U);
  EXPECT_EQ(range.ranges[0].texts, (std::vector<std::string>{"auto"}));
  EXPECT_EQ(range.ranges[0].spans, (Spans{{0, 9}, {20, 20}}));
  const Answer ranges = busAnswer(*valueOf("([('b', 'auto')], [('a', 0, 9), ('b', 20, 20)])"));
  ASSERT_EQ(ranges.ranges.size(), 2U);
  EXPECT_EQ(ranges.ranges[0].name, "a");
  EXPECT_EQ(ranges.ranges[0].spans, (Spans{{0, 9}}));
  EXPECT_EQ(ranges.ranges[1].name, "b");
  EXPECT_EQ(ranges.ranges[1].texts, (std::vector<std::string>{"auto"}));
}

TEST(BusCall, OnlyTheServicesErrorsAreErrorsOfIts) {
  EXPECT_EQ(busError("dbus_tavrel_transaction: Set failed because of x"),
            "Set failed because of x");
  EXPECT_EQ(busError("GDBus.Error:org.x.Code0: dbus_tavrel_transaction: Get failed"), "Get failed");
  EXPECT_EQ(busError("No such method \"sett\""), std::nullopt);
}

}  // namespace

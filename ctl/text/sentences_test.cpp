#include "ctl/text/sentences.h"

#include <gtest/gtest.h>

namespace {

using Lines = std::vector<std::string>;

const Reason EXISTS = {"exists", "yes", 0, "", {}};
const Reason WRITABLE = {"writable", "yes", 0, "", {}};
const Reason NO_LIMITS = {"limits", "any", 0, "", {}};
const Reason NO_DEFAULT = {"default", "", 0, "", {}};
const Reason RANGE = {"limits", "0..5", 7, "rangeValid { 0..(mode) }", {{"mode", "5"}}};

TEST(Sentences, SayWhatAnInstanceIsAndWhy) {
  struct Case {
    InstanceState state;
    std::vector<Reason> reasons;
    Lines lines;
  };
  const uint32_t writable = STATE_KNOWN | STATE_EXISTS | STATE_WRITABLE;
  const Case cases[] = {
      {{.name = "a", .flags = writable, .value = "x y"},
       {EXISTS, WRITABLE, NO_LIMITS, NO_DEFAULT},
       {R"(a is "x y")", "it can be written", "it takes any value", "it has no default"}},
      {{.name = "a[1]", .flags = writable | STATE_LIMITED, .value = "3", .spans = {{0, 5}}},
       {{"exists", "yes", 3, "ctrlValid (b)", {{"b", "1"}}},
        {"exists", "yes", 4, "ctrlValid (c)", {}},
        {"writable", "yes", 5, "ctrlRO (d == 1 && e)", {{"d", ""}, {"e", "2"}}},
        RANGE,
        {"default", "4", 8, "default { 4 }", {}}},
       {"a[1] is 3", "it exists: line 3, ctrlValid (b), where b is 1",
        "  and line 4, ctrlValid (c)",
        R"(it can be written: line 5, ctrlRO (d == 1 && e), where d is "" and e is 2)",
        "it takes 0..5: line 7, rangeValid { 0..(mode) }, where mode is 5",
        "its default is 4: line 8, default { 4 }"}},
      {{.name = "a", .flags = STATE_KNOWN | STATE_EXISTS | STATE_NO_LIMITS},
       {EXISTS, {"writable", "no", 5, "ro", {}}, RANGE, NO_DEFAULT},
       {R"(a is "")", "it cannot be written now: line 5, ro",
        "what it takes cannot be computed now: line 7, rangeValid { 0..(mode) }, where mode is 5",
        "it has no default"}},
      // A statement is not to be taken for what a terminal obeys.
      {{.name = "a", .flags = writable | STATE_LIMITED, .value = "r", .texts = {"x\x1b[31mr"}},
       {EXISTS,
        WRITABLE,
        {"limits", "", 2, "rangeValid { \"x\x1b[31mr\" }", {}},
        {"default", "\x1b", 3, "default { \"\x1b\" }", {}}},
       {"a is r", "it can be written",
        R"(it takes "x\x1b[31mr": line 2, rangeValid { "x\x1b[31mr" })",
        R"(its default is "\x1b": line 3, default { "\x1b" })"}},
      // Of what does not exist there is no more to say.
      {{.name = "a", .flags = STATE_KNOWN | STATE_NO_LIMITS},
       {{"exists", "no", 3, "ctrlValid (b)", {{"b", "0"}}},
        {"writable", "no", 3, "ctrlValid (b)", {{"b", "0"}}},
        NO_LIMITS,
        NO_DEFAULT},
       {R"(a is "")", "it does not exist now: line 3, ctrlValid (b), where b is 0"}},
  };
  for (const Case& c : cases) EXPECT_EQ(reasonLines(c.state, c.reasons), c.lines);
}

TEST(Sentences, SayWhatBecameOfAValue) {
  const InstanceState stored = {
      .name = "a", .flags = STATE_KNOWN | STATE_LIMITED, .value = "5", .spans = {{0, 5}}};
  EXPECT_EQ(cutText("5", "5", stored, {RANGE}), "");
  EXPECT_EQ(cutText("0x5", "0x5", stored, {RANGE}), "");
  EXPECT_EQ(cutText("9", "9", stored, {RANGE}), "cut from 9: 0..5, line 7");
  EXPECT_EQ(cutText("9", "9", stored, {NO_LIMITS}), "cut from 9: 0..5");
  EXPECT_EQ(cutText("full", "5", stored, {RANGE}), "translated from full");
  EXPECT_EQ(cutText("too much", "9", stored, {RANGE}), R"(cut from "too much": 0..5, line 7)");
}

TEST(Sentences, ListNames) {
  EXPECT_EQ(namesText({}), "");
  EXPECT_EQ(namesText({"a"}), "a");
  EXPECT_EQ(namesText({"a", "b"}), "a and b");
  EXPECT_EQ(namesText({"a", "b c", "d"}), R"(a, "b c" and d)");
  EXPECT_EQ(namesText({"a", "b", "c", "d"}, 4), "a, b, c and d");
  EXPECT_EQ(namesText({"a", "b", "c", "d"}, 2), "a, b and 2 more");
}

}  // namespace

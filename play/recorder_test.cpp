#include "play/recorder.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Lines = std::vector<std::string>;

class RecorderTest : public testing::Test {
 protected:
  // A call of a client that is answered at once.
  void talk(const Call& call, Answer answer = {}) {
    const uint32_t serial = ++serial_;
    recorder_.called("a", serial, call, true);
    if (!answer.changes.empty()) recorder_.announced(answer.changes);
    recorder_.answered("a", serial, std::move(answer));
  }
  Lines lines() { return std::exchange(lines_, {}); }
  Recorder& recorder() { return recorder_; }

 private:
  Lines lines_;
  Recorder recorder_{[this](const std::string& line) { lines_.push_back(line); }};
  uint32_t serial_ = 0;
};

TEST_F(RecorderTest, EachMethodIsALine) {
  talk({"start"}, {.transaction = 7});
  const struct {
    Call call;
    Answer answer;
    const char* expected;
  } cases[] = {
      {{"set", 7, {"mode"}, {"720p/50"}}, {}, "t7: set mode 720p/50            ->"},
      {{"set", 7, {"title"}, {"two words"}}, {}, "t7: set title \"two words\"       ->"},
      {{"set_bulk", 7, {"a", "b"}, {"1", ""}}, {}, "t7: set a 1 b \"\"                ->"},
      {{"set_status_bulk", 7, {"a"}, {"1"}}, {}, "t7: set_status a 1              ->"},
      {{"reset_bulk", 7, {}}, {}, "# reset_bulk of no names"},
      {{"get", 7, {"a"}}, {.texts = {""}}, "t7: get a                       -> \"\""},
      {{"get_bulk", 7, {"a", "b"}},
       {.texts = {"1", "2"}},
       "t7: get a b                     -> 1 2"},
      {{"is_valid", 7, {"a"}, {"1"}}, {.isValid = true}, "t7: validate a 1                -> true"},
      {{"get_range", 7, {"a"}},
       {.ranges = {{{}, {"on"}, {{0, 9}}}}},
       "t7: range a                     -> 0..9 \"on\""},
      {{"get_range_bulk", 7, {"a"}},
       {.ranges = {{"a", {}, {{0, 9}}}}},
       "t7: range a                     -> 0..9"},
      {{"get_range_bulk", 7, {"a", "b"}},
       {.ranges = {{"a", {}, {{0, 9}}}, {"b", {"x"}, {}}}},
       "t7: range a b                   -> a: 0..9 b: \"x\""},
      {{"get_parm_idx", 7, {"a"}}, {.texts = {"i"}}, "t7: indices a                   -> i"},
      {{"get_idx_range", 7, {"i"}},
       {.ranges = {{{}, {}, {{1, 2}}}}},
       "t7: index range i               -> 1..2"},
      {{"start"}, {.error = "Start failed"}, "# start: Start failed"},
      {{"get_deps", 0, {"a"}}, {.texts = {"b", "c"}}, "deps a                          -> b c"},
      {{"single_set", 0, {"a"}, {"9"}},
       {.changes = {"a=5", "b=1"}},
       "single_set a 9                  -> a=5 b=1"},
      {{"single_get_bulk", 0, {"a", "b"}},
       {.texts = {"1", "2"}},
       "single_get a b                  -> 1 2"},
      {{"commit", 7}, {.changes = {"a=1"}}, "t7: commit                      -> a=1"},
      {{"commit", 7},
       {.error = "Commit failed because parameter index is invalid", .changes = {"a=2"}},
       "t7: commit                      -> a=2 refused: parameter index is invalid"},
      {{"end", 7}, {}, "end t7                          ->"},
      {{"set_bulk", 7, {"a", "b"}, {"1", "2"}},
       {.error = "Set bulk failed because of invalid transaction id"},
       "t7: set a 1 b 2                 -> refused: invalid transaction id"},
  };
  EXPECT_EQ(lines(), (Lines{"start t7                        ->"}));
  for (const auto& [call, answer, expected] : cases) {
    talk(call, answer);
    EXPECT_EQ(lines(), (Lines{expected}));
  }
}

TEST_F(RecorderTest, OperationsAreInTheOrderOfTheirAnswers) {
  recorder().called("a", 1, {"single_set", 0, {"x"}, {"1"}}, true);
  recorder().called("b", 1, {"single_set", 0, {"y"}, {"2"}}, true);
  recorder().announced({"y=2"});
  recorder().answered("b", 1, {});
  recorder().announced({"x=1"});
  recorder().announced({"z=1"});
  recorder().answered("a", 1, {});
  EXPECT_EQ(lines(), (Lines{"single_set y 2                  -> y=2",
                            "single_set x 1                  -> x=1 z=1"}));
}

TEST_F(RecorderTest, ACallThatWantsNoAnswerComesBeforeTheNextThatIsAnswered) {
  recorder().called("a", 1, {"single_set", 0, {"x"}, {"1"}}, false);
  recorder().announced({"x=1"});
  talk({"single_get", 0, {"x"}}, {.texts = {"1"}});
  EXPECT_EQ(lines(), (Lines{"# wanted no answer:", "single_set x 1",
                            "single_get x                    -> 1"}));
  // What was announced may be either's.
  recorder().called("b", 1, {"single_set", 0, {"x"}, {"1"}}, false);
  talk({"single_set", 0, {"y"}, {"1"}}, {.changes = {"y=1"}});
  EXPECT_EQ(lines(), (Lines{"# wanted no answer:", "single_set x 1", "single_set y 1"}));
  recorder().called("b", 2, {"single_set", 0, {"x"}, {"1"}}, false);
  recorder().finish();
  EXPECT_EQ(lines(), (Lines{"# wanted no answer:", "single_set x 1"}));
}

TEST_F(RecorderTest, TransactionsFromBeforeAreNotCompared) {
  talk({"set", 3, {"a"}, {"1"}});
  talk({"get", 3, {"b"}}, {.texts = {"8"}});
  talk({"commit", 3}, {.changes = {"a=1", "b=8"}});
  talk({"commit", 3});
  EXPECT_EQ(lines(),
            (Lines{"# t3 was open before; what it held is not known:", "start t3", "t3: set a 1",
                   "t3: get b", "t3: commit", "t3: commit                      ->"}));
}

TEST_F(RecorderTest, ATransactionThatNeverWasIsRefused) {
  talk({"get", 9, {"b"}}, {.error = "Get failed because of invalid transaction id"});
  EXPECT_EQ(lines(), (Lines{"start t9", "end t9",
                            "t9: get b                       -> refused: invalid transaction id"}));
}

TEST_F(RecorderTest, WhatIsForgottenIsNotWritten) {
  recorder().called("a", 1, {"single_set", 0, {"x"}, {"1"}}, true);
  recorder().called("a", 2, {"single_set", 0, {"x"}, {"1"}}, false);
  recorder().announced({"x=1"});
  recorder().begin();
  recorder().forget("a", 1);
  recorder().answered("a", 1, {});
  talk({"single_set", 0, {"y"}, {"1"}}, {.changes = {"y=1"}});
  EXPECT_EQ(lines(), (Lines{"single_set y 1                  -> y=1"}));
  EXPECT_EQ(recorder().count(), 1U);
}

}  // namespace

#include "check/proof/proof.h"

#include <gtest/gtest.h>

#include <set>

#include "base/work.h"
#include "check/static/static_checks.h"
#include "vid_std.h"

namespace {

using Codes = std::multiset<std::string_view>;

// Something for each question: found where it is asked.
const char* const WRONG =
    "i index { rangeValid { 1..4 } rangeValid (a > 5) { 9 } ctrlValid (a < 9) }\n"
    "a rw { rangeValid { 0..9 } default { 0 } }\n"
    "b rw { rangeValid (a > 20) { 0 } rangeValid (a < 30) { 1 } default { 0 } }\n"
    "c rw { rangeValid { 0..(a * 1000000000) } default (a > 2) { 1 } default (a > 3) { 2 } }\n"
    "d rw { index { i } rangeValid { (a)..5, (9 / a) } default { 77 } }\n"
    "e rw { rangeValid (a == 1 || a == 20) { 1 } default { 1 } }\n"
    "f rw { rangeValid (a < 5) { 0..3 } rangeValid (a >= 5) { 5..9 } }\n"
    "g rw { rangeValid (f < 3) { 0..3 } rangeValid (f >= 3) { 7..9 } }\n"
    "h rw { rangeValid { (a)..5, (9 / a) } default { 5 } }\n";

// A text that the engine has built, with what its proofs find.
struct Proved {
  explicit Proved(const std::string& text, const ProofLimits& limits = {}) : source("text", text) {
    initVidStdTables();
    Findings faults;
    readText(source, read, faults);
    variant = buildVariant(source, read, {}, faults);
    EXPECT_TRUE(variant.isBuilt) << text;
    const ExplainedPlaces explained;
    prove({source, read, choices, variant}, explained, limits, findings, undecided);
  }

  SourceText source;
  ReadText read;
  ConstantChoices choices;
  Variant variant;
  Findings findings;
  Findings undecided;
};

Codes codesOf(const Findings& findings) {
  Codes codes;
  for (const Finding& finding : findings.all()) codes.insert(finding.code);
  return codes;
}

std::set<std::string_view> kindsOf(const Findings& findings) {
  const Codes codes = codesOf(findings);
  return {codes.begin(), codes.end()};
}

const Deadline PAST = Deadline(Deadline::Clock::now());

TEST(Deadlines, AreOverFromTheirMomentOn) {
  EXPECT_TRUE(PAST.isOver());
  EXPECT_FALSE(Deadline(Deadline::Clock::now() + std::chrono::hours(1)).isOver());
  EXPECT_FALSE(Deadline().isOver());
}

TEST(Proofs, AfterTheDeadlineLeaveEveryQuestionUndecided) {
  const Proved intime(WRONG);
  const Proved late(WRONG, {PAST});
  EXPECT_EQ(codesOf(late.findings), Codes());
  EXPECT_GE(kindsOf(intime.findings).size(), 10U);
  // What is found in time is a question afterwards, at the same place. What it is called in the
  // end only the answer tells where a figure is missing.
  std::set<std::pair<TextPlace, std::string_view>> questions;
  for (const Finding& question : late.undecided.all()) {
    EXPECT_TRUE(question.witness.empty());
    questions.emplace(question.at, question.code);
  }
  for (const Finding& finding : intime.findings.all()) {
    EXPECT_TRUE(questions.contains({finding.at, finding.code}))
        << finding.at.line << ":" << finding.at.column << " " << finding.code;
  }
}

TEST(Proofs, AfterTheDeadlineHaveNothingToLeaveOfATextWithoutQuestions) {
  // The text as a whole may have too much work or not come to rest.
  EXPECT_EQ(codesOf(Proved("a rw { rangeValid { 0..9 } }", {PAST}).undecided),
            (Codes{"over-budget", "unsettled"}));
}

TEST(Proofs, AskPartsThatTogetherFindWhatOneFinds) {
  const Proved whole(WRONG);
  for (const size_t parts : {2U, 3U, 20U}) {
    Codes found;
    Codes undecided;
    for (size_t part = 0; part < parts; ++part) {
      const Proved proved(WRONG, {{}, parts, part});
      found.merge(codesOf(proved.findings));
      undecided.merge(codesOf(proved.undecided));
    }
    EXPECT_EQ(found, codesOf(whole.findings)) << parts;
    EXPECT_EQ(undecided, codesOf(whole.undecided)) << parts;
  }
}

TEST(Proofs, KnowWhoJudgesAnIndex) {
  const char* const right[] = {
      // An index that follows another is judged by each instance.
      "lim rw { rangeValid { 0..3 } default { 1 } }\n"
      "der rw { rangeValid { 0..(lim) } default { 0 } }\n"
      "i index { rangeValid { 1..3 } }\n"
      "j index { rangeValid (der == 1 && i == 2) { 1..2 } rangeValid (der != 1 || i != 2) { 1..3 } "
      "}"
      "\np rw { index { i, j } rangeValid { 0..5 } default { 1 } }\n",
      // What the condition of an index compares with is tried, too: 50.
      "mode rw { rangeValid { 0..100 } default { 1 } }\n"
      "sub rw { rangeValid (mode > 5) { 0..3 } rangeValid (mode <= 5) { 0..1 } default { 0 } }\n"
      "k index { rangeValid { 1..2 } ctrlValid (mode == 50) }\n"
      "q rw { index { k } rangeValid (sub > 2) { 0..3 } rangeValid (sub <= 2) { 0..1 } }\n"
      "t rw { index { k } rangeValid (q == 3) { 0..3 } rangeValid (q != 3) { 0..1 } }\n"};
  for (const char* const text : right) {
    EXPECT_EQ(codesOf(Proved(text).findings).count("never-true"), 0U) << text;
  }
}

TEST(Proofs, Decide) {
  const struct {
    const char* text;
    Codes codes;
  } cases[] = {
      // What is not available keeps its value, and can lock or release others with it.
      {"enabled rw { rangeValid { 0..1 } default { 1 } }\n"
       "input rw { ctrlValid (enabled == 1) rangeValid { \"sdi\", \"ip\" } default { \"sdi\" } }\n"
       "level rw { rangeValid { 0..9 } ctrlRO (enabled == 1 || input == \"ip\") default { 0 } }\n"
       "e rw { ctrlValid (enabled == 0) rangeValid { 0..9 } ctrlRO (input == \"ip\") }\n"
       "x rw { rangeValid { 0..9 } default (enabled == 0 && input == \"ip\") { 7 } default { 0 } "
       "}\n",
       {}},
      {"x rw { rangeValid { 0..9 } default { 0 } ctrlRO (y == 1) }\n"
       "y rw { ctrlValid (x == 5) rangeValid { 0..2 } default { 0 } }\n"
       "z rw { ctrlValid (x != 5) rangeValid { 0..9 } default { 0 } }\n"
       "v rw { rangeValid { 0..9 } default (x == 3) { 1 } default { 0 } }\n",
       {}},
      // A default counts where those before it do not.
      {"a rw { rangeValid { 0..9 } default { 0 } }\n"
       "b rw { rangeValid { (a) } default (a > 2) { 4 } default (a <= 3) { 3 } }\n",
       {"default-outside"}},
      {"a rw { rangeValid { 0..9 } default { 0 } }\n"
       "b rw { rangeValid { (a) } default (a > 2) { (a) } default (a > 0) { 3 } default { 0 } }\n",
       {"default-outside"}},
      {"a rw { rangeValid { 0..9 } default { 0 } }\n"
       "b rw { rangeValid { (a) } default (a > 3) { 4 } default (a > 2) { 3 } default { 0 } }\n",
       {}},
      // Whether an unknown text contains another is open, but the same each time.
      {"name rw { }\n"
       "n rw { rangeValid (name $ \"x\") { 0..1 } rangeValid ((name $ \"x\") == 0) { 0..2 } }\n",
       {}},
      // A total that two parameters share: a client can set both to 20 in one commit, and neither
      // has a range then.
      {"a rw { rangeValid { 0..(10 - b) } default { 3 } }\n"
       "b rw { rangeValid { 0..(10 - a) } default { 3 } }\n"
       "c rw { rangeValid (a + b > 10) { 0 } rangeValid (a + b <= 10) { 0..3 } }\n",
       {}},
      // The start judges values of one level by each other.
      {"a rw { rangeValid { 0..(b) } default { 5 } }\n"
       "b rw { rangeValid { 0..(a) } default { 5 } }\n",
       {}},
      {"a rw { rangeValid { 0..(b) } default { 5 } }\n"
       "b rw { rangeValid { 0..(a) } default { 3 } }\n",
       {"default-outside"}},
      // What is not there at the start is empty.
      {"a rw { rangeValid { 2..5 } ctrlValid (b <= 1) default { 5 } }\n"
       "b rw { rangeValid { 0..9 } default (a == 3) { 9 } default { 8 } }\n"
       "s rw { rangeValid { 0..9 } default { 0 } ctrlRO (a == 0) }\n"
       "t rw { rangeValid { 0..9 } default { 0 } ctrlRO (a > 1) }\n",
       {}},
      // Mutual limits, with an index.
      {"i index { rangeValid { 1..2 } }\n"
       "lo rw { index { i } rangeValid { 0..(hi - 1) } default { 2 } }\n"
       "hi rw { index { i } rangeValid { (lo + 1)..9 } default { 5 } }\n",
       {}},
      // Of two ranges one takes every value, and the other one corrects: "b" is kept.
      {"p rw { rangeValid { 0..1 } default { 0 } }\n"
       "q rw { rangeValid { (p - p + 1) } rangeValid (p < 1) { 0..(p - 2) }\n"
       "  rangeValid (p < 1) { \"b\", 1 } default { 1 } }\n"
       "r rw { rangeValid (q == 1) { 0 } rangeValid (q != 1) { 1 } default { 0 } }\n",
       {"empty-range"}},
      // A range that is empty while the partner's staged value is seen, as its end wraps around.
      {"a rw { rangeValid { (b + 1) } default { 1 } }\n"
       "b rw { rangeValid { 0..(3 - a) } default { 1 } }\n",
       {"overflow"}},
      // What is staged together with b = 9 is judged by that: a = 7 is kept.
      {"a rw { rangeValid { 0..(b) } default { 0 } }\n"
       "b rw { rangeValid { (a & 1) } default { 0 } }\n"
       "q rw { rangeValid { 0..9 } default { 0 } ctrlRO (a > 5) }\n",
       {}},
      // Likewise by a default, which no range limits: a is 9 at the start.
      {"a rw { rangeValid { (b + 1) } default { 1 } }\n"
       "b rw { rangeValid { 0..1 } default (a != 2) { 8 } default { 0 } }\n"
       "q rw { rangeValid { 0..9 } default { 0 } ctrlRO (a > 5) }\n",
       {"unsettled"}},
      // Small rings are walked through; where both are set together, each carries the other.
      {"a rw { rangeValid (b == 0) { 0 } rangeValid (b == 1) { 1 } default { 0 } }\n"
       "b rw { rangeValid (a == 0) { 0 } rangeValid (a == 1) { 1 } default { 0 } }\n",
       {}},
      {"a rw { rangeValid (b < 5) { 0..4 } rangeValid (b >= 5) { 5..9 } default { 0 } }\n"
       "b rw { rangeValid (a < 5) { 0..4 } rangeValid (a >= 5) { 5..9 } default { 0 } }\n",
       {}},
      {"a rw { rangeValid { 0..9 } default { 0 } ctrlValid (b) }\n"
       "b rw { rangeValid { 0..9 } default { 0 } ctrlValid (a) }\n",
       {}},
      // What is never there is told of once.
      {"x rw { rangeValid { 0..9 } default { 0 } ctrlRO (y == 1) }\n"
       "y rw { rangeValid { 0..2 } default { 0 } ctrlValid (x == 1) ctrlValid (x == 2) }\n",
       {"never-true"}},
      // Reset in one commit, a[1] is absent and empty, and b takes every value then.
      {"i index { rangeValid { 1..2 } }\n"
       "a rw { index { i } rangeValid { 2..5 } ctrlValid (b <= 0 && a[2] > 0) default { 8 } }\n"
       "b ro { rangeValid (a[1] <= 1) { 0..(12 / a[1]) } default (a[1] == a[2]) { 8 }\n"
       "  default { 1 } }\n"
       "s rw { rangeValid { 0..9 } default { 0 } ctrlRO (a[1] == 0) }\n",
       {"uncovered"}},
      // One that does not rest after the start has no other situations to tell of.
      {"a rw { rangeValid { (b + 1)..10 } default { 5 } }\n"
       "b rw { rangeValid { (a + 1)..10 } default { 5 } }\n",
       {"unsettled"}},
      {"a rw { rangeValid (b == \"x\") { \"y\" } rangeValid (b != \"x\") { \"x\" } default { \"x\" "
       "} }\n"
       "b rw { rangeValid (a == \"x\") { \"x\" } rangeValid (a != \"x\") { \"y\" } default { \"y\" "
       "} }\n",
       {"unsettled"}},
      // The target of "x" is corrected back to "x", which is the default.
      {"a rw { rangeValid { \"x\", \"y\" } valueChange { \"x\" -> 1 } default { \"x\" } }\n", {}},
      // What is left out is told of where that is written.
      {"m rw { rangeValid { 0..3 } ctrlValid (0) default { 1 } }\n"
       "gain rw { rangeValid { 0..9 } ctrlRO (m == 2) default { 0 } }\n",
       {}}};
  for (const auto& [text, codes] : cases) {
    const Proved proved(text);
    EXPECT_EQ(codesOf(proved.findings), codes) << text;
    EXPECT_EQ(codesOf(proved.undecided), Codes()) << text;
  }
}

TEST(Proofs, TellOfDerivedValuesThatAreHeld) {
  const struct {
    const char* ranges;  // with "t", 0..9, and "f[i]", 0..1
    Codes codes;
  } cases[] = {
      {"rangeValid (t == 1 || f) { 1 } rangeValid (t != 1) { 0 }", {"overlap"}},
      {"rangeValid (t == 1 && f) { 1 } rangeValid (t != 1 || f == 0) { 0 }", {}},
      // One of several pairs is enough.
      {"rangeValid (t) { 2 } rangeValid (f) { 1 } rangeValid (t == 0) { 0 }", {"overlap"}},
      // A value that is given twice is held on purpose.
      {"rangeValid (t == 1) { 1 } rangeValid (t != 1 && f) { 1 } rangeValid (t != 1) { 0 }", {}},
      // A hysteresis has two limits; with one limit it is none.
      {"rangeValid (t > 4) { 1 } rangeValid (t < 6) { 0 }", {}},
      {"rangeValid (t > 4 - f) { 1 } rangeValid (t <= 4) { 0 }", {}},
      {"rangeValid (t >= 4) { 1 } rangeValid (t <= 4) { 0 }", {"overlap"}},
      // What is replaced is not held.
      {"rangeValid (t) { 1 } rangeValid (f || t == 0) { \"a\" } valueChange { \"a\" -> 1 }", {}},
      // Both count only where the parameter is not available.
      {"ctrlValid (f[1] == 0) rangeValid (t || f[1]) { 1 } rangeValid (t == 0) { 0 }", {}}};
  for (const auto& [ranges, codes] : cases) {
    const Proved proved(
        "i index { rangeValid { 1..2 } }\n"
        "t rw { rangeValid { 0..9 } default { 0 } }\n"
        "f rw { index { i } rangeValid { 0..1 } default { 0 } }\n"
        "d ro { index { i } " +
        std::string(ranges) + " }");
    EXPECT_EQ(codesOf(proved.findings), codes) << ranges;
    EXPECT_EQ(codesOf(proved.undecided), Codes()) << ranges;
  }
}

TEST(Proofs, TellOfValuesThatFollowersLose) {
  const struct {
    const char* text;
    Codes codes;
  } cases[] = {
      // One number of many, and one text of all.
      {"a rw { rangeValid { 0..100 } default { 0 } } d ro { rangeValid { (a == 37) } }\n"
       "f rw { rangeValid { 0..9 } default { 0 } ctrlRO (d == 0) }",
       {"late-follower"}},
      {"a rw { } d ro { rangeValid { (a $ \"x\") } }\n"
       "f rw { rangeValid (d) { 0..9 } rangeValid (d == 0) { 0 } default { 0 } }",
       {"late-follower"}},
      // Of an instance, where two have to be right.
      {"i index { rangeValid { 1..2 } } a rw { rangeValid { 0..1 } default { 0 } }\n"
       "b rw { index { i } rangeValid { 0..1 } default { 0 } }\n"
       "d ro { index { i } rangeValid { (a && b) } }\n"
       "f rw { index { i } rangeValid { 0..9 } default { 0 } ctrlValid (a) ctrlRO (d == 0) }",
       {"late-follower"}},
      // All that lies between is what is set: it is seen at once.
      {"a rw { rangeValid { 1..9 } default { 9 } } b rw { rangeValid { 0..(a) } default { 0 } }\n"
       "f rw { rangeValid { 0..(b) } default { 0 } }",
       {}}};
  for (const auto& [text, codes] : cases) {
    const Proved proved(text);
    EXPECT_EQ(codesOf(proved.findings), codes) << text;
    EXPECT_EQ(codesOf(proved.undecided), Codes()) << text;
  }
}

TEST(Proofs, TellOfControlsThatAreLocked) {
  const struct {
    const char* statements;  // with "a", 0..1, and "b", 0..2
    Codes codes;
  } cases[] = {{"ctrlRO (a == 0) ctrlRO (a == 1)", {"always-true"}},
               {"ctrlRO (a == 0) ctrlRO (b == 1)", {}},
               {"ctrlRO (b == 0) ctrlRO (b == 1) ctrlRO (b == 2)", {"always-true"}},
               {"ctrlRO (b == 0) ctrlRO (b == 1)", {}},
               {"ctrlValid (a) ctrlRO (a == 1)", {"always-true"}},
               {"ctrlValid (a) ctrlRO (a == 0)", {}},
               {"ctrlValid (a) ctrlRO (a == 0) ctrlRO (b == 1)", {}},
               {"ctrlValid (b) ctrlValid (b != 1) ctrlRO (b == 2)", {"always-true"}},
               {"ctrlValid (a) ctrlValid (a == 0)", {"never-true"}},
               {"ctrlValid (a) ctrlValid (b < 2) ctrlValid (b == 2)", {"never-true"}},
               // One that is told of alone says enough.
               {"ctrlRO (a < 2) ctrlRO (a == 1)", {"always-true"}},
               {"ctrlValid (a == 2) ctrlValid (a == 1)", {"never-true"}},
               // A ctrlRO knows the index value.
               {"ctrlRO (i == 1) ctrlRO (i == 2)", {"always-true"}},
               {"ctrlValid (a) ctrlRO (i == 1) ctrlRO (a == 0)", {}},
               // What is decided when the text is read may be meant.
               {"ctrlRO (1) ctrlRO (a == 0)", {}}};
  for (const auto& [statements, codes] : cases) {
    const Proved proved(
        "i index { rangeValid { 1..2 } }\n"
        "a rw { rangeValid { 0..1 } default { 0 } }\n"
        "b rw { rangeValid { 0..2 } default { 0 } }\n"
        "c rw { index { i } rangeValid { 0..9 } default { 0 } " +
        std::string(statements) + " }");
    EXPECT_EQ(codesOf(proved.findings), codes) << statements;
    EXPECT_EQ(codesOf(proved.undecided), Codes()) << statements;
  }
}

TEST(Proofs, TellOfDeadPartsOfAnExpression) {
  const struct {
    const char* expression;  // of "a" and "b", 1..3
    Codes codes;
  } cases[] = {{"a == 1 || (a == 2 && a == 3)", {"dead-comparison"}},
               {"a == 1 || (a == 2 && b == 3)", {}},
               {"b == 1 && (a != 2 || a != 3)", {"dead-comparison"}},
               {"b == 1 && (a != 2 || b != 3)", {}},
               // All of a row together, and with what is within.
               {"b == 2 || (a == 2 && b == 1 && a == 3)", {"dead-comparison"}},
               {"b == 2 || (a == 2 && (b == 1 || a == 1) && b == 3)", {"dead-comparison"}},
               // Once, where a part of it is told.
               {"b == 1 || (a == 4 && a == 3)", {"dead-comparison"}},
               {"b == 1 || (a == 3 && (b == 2 || (a == 1 && a == 2)))", {"dead-comparison"}},
               // The whole is told as a condition.
               {"a == 2 && a == 3 && b == 1", {"never-true"}}};
  for (const auto& [expression, codes] : cases) {
    const Proved proved(
        "a rw { rangeValid { 1..3 } default { 1 } }\n"
        "b rw { rangeValid { 1..3 } default { 1 } }\n"
        "c rw { rangeValid { 0..9 } default { 0 } ctrlRO (" +
        std::string(expression) + ") }");
    EXPECT_EQ(codesOf(proved.findings), codes) << expression;
    EXPECT_EQ(codesOf(proved.undecided), Codes()) << expression;
  }
}

// A text under proof, before any question.
struct Asked {
  Asked() : proof(checked, limits, findings, undecided) {}

  Proved built{"a rw { rangeValid { 0..9 } default { 3 } }\nb rw { rangeValid (a > 20) { 1 } }"};
  CheckedText checked{built.source, built.read, built.choices, built.variant};
  ProofLimits limits;
  Findings findings;
  Findings undecided;
  Proof proof;
};

TEST(AProof, AnswersNothingAfterItsDeadline) {
  Asked asked;
  const Subject& b = asked.proof.text().subjects()[1];
  const Goal goal{&b, {{{&*b.rangeValid.front().condition, WANT_TRUE}}}};
  EXPECT_TRUE(asked.proof.isImpossible(goal));
  EXPECT_EQ(asked.proof.findHealthy(goal).verdict, VERDICT_IMPOSSIBLE);
  EXPECT_FALSE(asked.proof.isCutShort());
  asked.limits.deadline = PAST;
  EXPECT_FALSE(asked.proof.isImpossible(goal));
  EXPECT_EQ(asked.proof.findHealthy(goal).verdict, VERDICT_UNDECIDED);
  EXPECT_TRUE(asked.proof.isCutShort());
  EXPECT_FALSE(asked.proof.addIfHealthy(goal, {"never-true", {2, 0, 1}, "text"}));
  EXPECT_EQ(codesOf(asked.undecided), Codes{"never-true"});
  EXPECT_FALSE(asked.proof.ask([] { FAIL(); }));
}

TEST(AProof, EndsAQuestionThatIsTooMuchWork) {
  Asked asked;
  ParmDef& a = asked.proof.text().subjects()[0].parm->parm;
  EXPECT_FALSE(asked.proof.ask([&] {
    a.store({}, "7");
    for (;;) Work::add(QUESTION_WORK / 10);
  }));
  EXPECT_TRUE(asked.proof.isCutShort());
  EXPECT_EQ(a.committedText({}), "");
  // The next one has as much again.
  EXPECT_TRUE(asked.proof.ask([] { Work::add(QUESTION_WORK); }));
  EXPECT_FALSE(asked.proof.isCutShort());
}

}  // namespace

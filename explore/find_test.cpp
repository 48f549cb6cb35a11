#include "explore/find.h"

#include <gtest/gtest.h>

#include "play/engine_device.h"
#include "play/player.h"
#include "play/session_reader.h"
#include "tests/support/lying_device.h"
#include "vid_std.h"

namespace {

// Whether all expectations of a session are met.
class Outcomes final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override { areMet = areMet && played.isAsExpected; }
  bool areMet = true;
};

bool isMet(const std::string& text, const StartDevice& start) {
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [](const std::string&, std::string&) { return 1; };
  readSession("s", text, readFile, session, errors);
  for (const SessionError& error : errors) ADD_FAILURE() << shownError(error) << text;
  Outcomes outcomes;
  const std::optional<SessionError> error = playSession(session, start, {}, outcomes);
  if (error) ADD_FAILURE() << shownError(*error);
  return outcomes.areMet;
}

struct FaultCase {
  const char* what;
  const char* text;
  Lie lie;
  std::vector<WalkStep> steps;  // the last one shows it
  std::optional<WalkStep> other;
  Property property;
  const char* session;
};

const std::string NOISE = "noise rw { rangeValid { 0..9 } default { 1 } }\n";
const WalkStep QUIET = {"set", "noise", "3"};

std::vector<FaultCase> faultCases() {
  std::vector<FaultCase> cases;
  cases.push_back({"a word of three translations",
                   "p rw { rangeValid { 0..(q) } valueChange { 1 -> 2 } valueChange { 2 -> 3 } "
                   "valueChange { 3 -> 4 } default { 9 } } q rw { default { 9 } }",
                   {},
                   {QUIET, {"set", "q", "8"}, QUIET, {"set", "p", "1"}},
                   {},
                   PROPERTY_LIMITS,
                   "# p holds 3, which is not what it may be: it would become 4\n"
                   "up\n"
                   "single_set p 1\n"
                   "single_set_status p 3 ->\n"});
  cases.push_back({"a default that looks at its own value",
                   "p rw { default (p == q) { 2 } default { 1 } } q rw { default { 7 } }",
                   {},
                   {QUIET, {"set", "q", "1"}, {"set", "p", "9"}, QUIET, {"reset", "p"}},
                   {},
                   PROPERTY_REPEAT,
                   "# the commit of p once more changes p=1\n"
                   "up\n"
                   "single_set q 1\n"
                   "single_reset p\n"
                   "single_reset p ->\n"});
  cases.push_back({"ranges that refuse each other's values",
                   "p rw { rangeValid { 0..9 } rangeValid (q == 1) { 20..29 } default { 1 } } "
                   "q rw { rangeValid { 0..1 } default { 0 } }",
                   {},
                   {{"set", "p", "5"}, QUIET, {"set", "q", "1"}},
                   {},
                   PROPERTY_REFUSAL,
                   "# the commit of q=1 fails, which set has taken: Commit failed because "
                   "parameter definition is invalid\n"
                   "up\n"
                   "set q 1\n"
                   "range q\n"
                   "commit -> q=1\n"});
  cases.push_back({"a trial that lies",
                   "p rw { rangeValid { 0..9 } default { 1 } }",
                   [](const Call& call, Answer& answer) {
                     if (call.method == "try" && answer.changes == Call::Texts{"p=7"}) {
                       answer.changes = {"p=6"};
                     }
                   },
                   {QUIET, {"set", "p", "7"}},
                   {},
                   PROPERTY_TRIAL,
                   "# try says p=6, and commit does p=7\n"
                   "up\n"
                   "set p 7\n"
                   "try\n"
                   "commit -> p=6\n"});
  cases.push_back({"an order of the start that is wrong",
                   "b rw { default (z == 5) { 7 } } z rw { default { 5 } }",
                   [](const Call& call, Answer& answer) {
                     if (call.method == "get_deps") answer.texts.clear();
                   },
                   {},
                   {},
                   PROPERTY_START,
                   "# b is empty when the device is up, and a reset makes it 7\n"
                   "up\n"
                   "single_reset_status b ->\n"});
  cases.push_back({"a commit that depends on another one in secret",
                   "a rw { rangeValid { 0..9 } default { 1 } } b rw { default { 1 } }",
                   [isChanged = false](const Call& call, Answer& answer) mutable {
                     if (call.method == "start" && answer.transaction == 0) isChanged = false;
                     for (const std::string& change : answer.changes) {
                       isChanged = isChanged || (call.method != "try" && change == "a=4");
                     }
                     if (call.method == "try" && isChanged) {
                       for (std::string& change : answer.changes) {
                         if (change == "b=2") change = "b=3";
                       }
                     }
                   },
                   {QUIET, {"set", "a", "2"}, {"set", "a", "4"}},
                   WalkStep{"set", "b", "2"},
                   PROPERTY_ORDER,
                   "# b does not depend on a, but its commit does b=2 before the one of that, and "
                   "b=3 after it\n"
                   "up\n"
                   "start other\n"
                   "other: set b 2\n"
                   "other: try -> b=2\n"
                   "single_set a 4\n"
                   "other: try -> b=2\n"});
  return cases;
}

class Finds : public testing::Test {
 protected:
  Finds() { initVidStdTables(); }
};

TEST_F(Finds, AreMadeShortAndFailAsSessions) {
  for (const FaultCase& c : faultCases()) {
    SCOPED_TRACE(c.what);
    const std::string text = NOISE + c.text;
    const StartDevice start = startLying(text, c.lie);
    const std::optional<KnownDevice> known = start({})->known();
    ASSERT_TRUE(known);
    const DeviceNames names(*known);
    Find find = {{{}, true, c.steps}, {.property = c.property, .other = c.other}};
    // The definition that is at fault is that of the expected session.
    for (const std::string& parm : names.parms()) {
      find.fault.failed = parm;
      if (std::optional<Fault> fault = foundAgain(find, start, names)) {
        find.fault = *std::move(fault);
        break;
      }
    }
    ASSERT_FALSE(find.fault.text.empty()) << "is not found";
    const std::string session = sessionOf(shrunk(find, start, names));
    EXPECT_EQ(session, c.session);
    EXPECT_FALSE(isMet(session, start));
  }
}

// Constants are told, and odd names and values are quoted.
TEST_F(Finds, AreWrittenAsWordsOfASession) {
  const Find find = {{{{"MODEL", "a b"}}, false, {{"set", "#x", "1 2"}, {"reset", "y"}}},
                     {.property = PROPERTY_REPEAT, .name = "y", .text = "so", .expected = "y=1"}};
  EXPECT_EQ(sessionOf(find),
            "# so\nconstants MODEL=\"a b\"\nsingle_set \"#x\" \"1 2\"\nsingle_reset y\n"
            "single_reset y -> y=1\n");
}

TEST_F(Finds, AreNoneInADeviceThatKeepsItsWord) {
  const char* const text =
      "mode rw { rangeValid { \"1080i/50\", \"625i/50\" } default { \"1080i/50\" } }"
      "i index { rangeValid { 1..3 } rangeValid (n > 0) { 1..(n) } rangeValid (n == 0) { 1..3 } }"
      "n rw { rangeValid { 1..3 } default { 2 } }"
      "p rw { index { i } rangeValid { 0..(vidStd::mode::spal) } default { 900 } }"
      "go wo { rangeValid { 0..(n) } default { 0 } }"
      "t rw { ctrlRO (n == 1) ctrlValid (mode $ \"i/50\") default { \"x\" } }";
  const StartDevice start = startLying(text, {});
  const std::unique_ptr<Device> device = start({});
  const DeviceNames names(*device->known());
  Probe probe(*device, names);
  const auto expectNone = [](const std::optional<Fault>& fault) {
    EXPECT_FALSE(fault) << fault->text;
  };
  expectNone(probe.bringUp(*device->known()));
  const WalkStep other = {"set", "go", "1"};
  for (const WalkStep& step : std::vector<WalkStep>{{"set", "p[2]", "1900"},
                                                    {"set", "mode", "625i/50"},
                                                    {"set", "go", "2"},
                                                    {"set", "go", "2"},
                                                    {"set", "n", "1"},
                                                    {"set", "p[2]", "5"},
                                                    {"reset", "t"},
                                                    {"set_status", "t", "y"},
                                                    {"set", "mode", "wrong"},
                                                    {"reset_status", "n"}}) {
    expectNone(probe.commit(step, step.name == "mode" ? &other : nullptr));
  }
  expectNone(probe.look());
  EXPECT_EQ(probe.commits(), 9U);
}

// What was never given a value may be refused as empty. A device in use has none of that.
TEST_F(Finds, AreNoneBeforeTheDeviceIsUp) {
  const StartDevice start = startLying(
      "level rw { rangeValid { 0..9 } default { 5 } }"
      "gain rw { rangeValid { 0..99 } rangeValid (level > 5) { 2..15 } default { 3 } }",
      {});
  const std::unique_ptr<Device> device = start({});
  const DeviceNames names(*device->known());
  Probe probe(*device, names);
  EXPECT_FALSE(probe.commit({"set", "level", "8"}, nullptr));
  EXPECT_FALSE(probe.bringUp(*device->known()));
  EXPECT_FALSE(probe.commit({"set", "level", "8"}, nullptr));
}

TEST_F(Finds, AreOfOrderOnlyWhereNothingDependsOnBoth) {
  const std::string text =
      "a rw { } b rw { } c rw { rangeValid { 0..(a + 1) } } d rw { ctrlRO (c) } "
      "e rw { ctrlRO (b) }";
  const auto areIndependent = [&](const Lie& lie, const char* parm, const char* other) {
    const std::unique_ptr<Device> device = startLying(text, lie)({});
    return DependencyMap(*device, *device->known()).areIndependent(parm, other);
  };
  EXPECT_TRUE(areIndependent({}, "a", "b"));
  EXPECT_TRUE(areIndependent({}, "d", "e"));
  EXPECT_FALSE(areIndependent({}, "a", "a"));
  EXPECT_FALSE(areIndependent({}, "a", "d"));
  EXPECT_FALSE(areIndependent({}, "d", "c"));
  const Lie isTooLong = [](const Call& call, Answer& answer) {
    if (call.method == "get_deps" && call.names.front() == "e") answer = {.error = "too long"};
  };
  EXPECT_FALSE(areIndependent(isTooLong, "a", "b"));
}

}  // namespace

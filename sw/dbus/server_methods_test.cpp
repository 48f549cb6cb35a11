#include "sw/dbus/server_methods.h"

#include <gtest/gtest.h>

#include "base/system_log.h"
#include "base/value_limit.h"
#include "sw/dbus/reply.h"
#include "tests/support/reply.h"
#include "tests/support/service.h"

namespace {

using Signals = std::vector<Texts>;

constexpr guint32 NO_TRANSACTION = 99;

const char* const DEFINITIONS =
    "mode rw { rangeValid { \"film\", \"video\" } default { \"video\" } }\n"
    "channel index { rangeValid { 1..3 } ctrlValid (mode != \"film\") }\n"
    "gain rw {\n"
    "  index { channel }\n"
    "  rangeValid (mode == \"film\") { 0..100 }\n"
    "  rangeValid (mode != \"film\") { 0..255 }\n"
    "  default { 64 }\n"
    "}\n"
    "level rw { rangeValid { 0..9, 20..29, \"auto\", \"off\" } default { \"auto\" } }\n"
    "twin rw { rangeValid { 0..(level) } }\n"
    "note rw {}\n"
    "alarm rostrict {}\n";

// Frees the error.
void expectError(GError* error, const std::string& text) {
  ASSERT_NE(error, nullptr);
  EXPECT_EQ(error->message, "dbus_tavrel_transaction: " + text);
  g_error_free(error);
}

// A list of texts as the methods take it.
class TextArguments {
 public:
  TextArguments(const Texts& texts) : texts_(texts) {  // NOLINT: reads as a list in the calls
    for (std::string& text : texts_) pointers_.push_back(text.data());
    pointers_.push_back(nullptr);
  }
  TextArguments(const TextArguments&) = delete;
  TextArguments& operator=(const TextArguments&) = delete;
  char** get() { return pointers_.data(); }

 private:
  Texts texts_;
  std::vector<char*> pointers_;
};

class ServerMethods : public testing::Test {
 protected:
  // The error of a call without what all begin with; empty for success.
  template <typename Method, typename... Arguments>
  std::string call(Method* method, Arguments... arguments) {
    GError* error = nullptr;
    const gboolean done = method(service_.object(), arguments..., &error);
    EXPECT_EQ(done == TRUE, error == nullptr);
    if (error == nullptr) return {};
    const std::string text = error->message;
    g_error_free(error);
    const std::string begin = "dbus_tavrel_transaction: ";
    EXPECT_TRUE(text.starts_with(begin)) << text;
    return text.substr(begin.size());
  }

  guint32 start() {
    guint32 id = NO_TRANSACTION;
    EXPECT_EQ(call(value_object_start, &id), "");
    return id;
  }
  std::string get(guint32 id, const char* name) {
    char* value = nullptr;
    const std::string error = call(value_object_get, id, name, &value);
    return valueOf(error, value);
  }
  std::string singleGet(const char* name) {
    char* value = nullptr;
    const std::string error = call(value_object_single_get, name, &value);
    return valueOf(error, value);
  }
  std::vector<Texts> newSignals() { return service_.newSignals(); }
  TestService& service() { return service_; }

 private:
  static std::string valueOf(const std::string& error, char* value) {
    std::string result = error.empty() ? value : error;
    g_free(value);
    return result;
  }

  TestService service_{DEFINITIONS};
};

TEST_F(ServerMethods, GiveIdsFromZeroAlsoToSingleCalls) {
  EXPECT_EQ(start(), 0U);
  EXPECT_EQ(start(), 1U);
  EXPECT_EQ(singleGet("note"), "");
  EXPECT_EQ(start(), 3U);
}

TEST_F(ServerMethods, RefuseATransactionThatIsNotOpen) {
  char* text = nullptr;
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  gboolean valid = FALSE;
  TextArguments names({"note"});
  const char* const name = "note";
  const guint32 id = NO_TRANSACTION;
  const std::string because = " failed because of invalid transaction id";
  EXPECT_EQ(call(value_object_get, id, name, &text), "Get" + because);
  EXPECT_EQ(call(value_object_get_bulk, id, 1U, names.get(), &texts), "Get bulk" + because);
  EXPECT_EQ(call(value_object_is_valid, id, name, "1", &valid), "Validate" + because);
  EXPECT_EQ(call(value_object_check_set, id, name, "1", &valid), "Validate" + because);
  EXPECT_EQ(call(value_object_set, id, name, "1"), "Set" + because);
  EXPECT_EQ(call(value_object_set_status, id, name, "1"), "Set status" + because);
  EXPECT_EQ(call(value_object_set_bulk, id, names.get(), names.get()), "Set" + because);
  EXPECT_EQ(call(value_object_set_status_bulk, id, names.get(), names.get()),
            "Set status" + because);
  EXPECT_EQ(call(value_object_reset, id, name), "Reset" + because);
  EXPECT_EQ(call(value_object_reset_status, id, name), "Reset status" + because);
  EXPECT_EQ(call(value_object_reset_bulk, id, names.get()), "Reset" + because);
  EXPECT_EQ(call(value_object_reset_status_bulk, id, names.get()), "Reset status" + because);
  EXPECT_EQ(call(value_object_commit, id), "Commit" + because);
  EXPECT_EQ(call(value_object_end, id), "End" + because);
  EXPECT_EQ(call(value_object_get_range, id, name, &texts, &spans), "Get range" + because);
  EXPECT_EQ(call(value_object_get_range_bulk, id, names.get(), &spans, &spans),
            "Get range" + because);
  EXPECT_EQ(call(value_object_get_parm_idx, id, name, &texts), "Get parm index" + because);
  EXPECT_EQ(call(value_object_get_idx_range, id, name, &texts, &spans),
            "Get index range" + because);
  EXPECT_EQ(text, nullptr);
  EXPECT_EQ(texts, nullptr);
  EXPECT_EQ(spans, nullptr);
}

TEST_F(ServerMethods, StageInTheTransactionOnly) {
  const guint32 id = start();
  EXPECT_EQ(call(value_object_set, id, "level", "5"), "");
  EXPECT_EQ(get(id, "level"), "5");
  EXPECT_EQ(singleGet("level"), "");
  EXPECT_EQ(call(value_object_commit, id), "");
  EXPECT_EQ(newSignals(), (Signals{{"level=5", "twin="}}));
  EXPECT_EQ(singleGet("level"), "5");
  EXPECT_EQ(call(value_object_commit, id), "");
  EXPECT_EQ(newSignals(), Signals{});
}

TEST_F(ServerMethods, ReadUnknownNamesAsEmpty) { EXPECT_EQ(get(start(), "nothing"), ""); }

TEST_F(ServerMethods, EndDropsWhatIsStaged) {
  const guint32 id = start();
  EXPECT_EQ(call(value_object_set, id, "level", "5"), "");
  EXPECT_EQ(call(value_object_end, id), "");
  EXPECT_EQ(singleGet("level"), "");
  EXPECT_EQ(call(value_object_end, id), "End failed because of invalid transaction id");
}

TEST_F(ServerMethods, GetAsManyValuesAsThereAreNamesAndTheCountAllows) {
  EXPECT_EQ(call(value_object_single_set, "level", "5"), "");
  const guint32 id = start();
  struct CountCase {
    guint32 count;
    Texts values;
  };
  const CountCase cases[] = {
      {0, {}},
      {1, {"5"}},
      {2, {"5", ""}},
      {3, {"5", ""}},  // the third entry is the end already
      {UINT32_MAX, {"5", ""}},
  };
  for (const CountCase& c : cases) {
    SCOPED_TRACE(c.count);
    TextArguments names({"level", "nothing"});
    char** values = nullptr;
    ASSERT_EQ(call(value_object_get_bulk, id, c.count, names.get(), &values), "");
    EXPECT_EQ(taken(values), c.values);
    ASSERT_EQ(call(value_object_single_get_bulk, c.count, names.get(), &values), "");
    EXPECT_EQ(taken(values), c.values);
  }
}

TEST_F(ServerMethods, GetValuesInTheOrderOfTheirNamesHoweverManyTheyAre) {
  EXPECT_EQ(call(value_object_single_set, "level", "5"), "");
  EXPECT_EQ(call(value_object_single_set, "note", "x"), "");
  Texts names;
  Texts expected;
  for (guint32 count = 1; count <= 50; ++count) {
    SCOPED_TRACE(count);
    const bool isThird = count % 3 == 0;
    names.emplace_back(isThird ? "level" : count % 3 == 1 ? "note" : "nothing");
    expected.emplace_back(isThird ? "5" : count % 3 == 1 ? "x" : "");
    TextArguments arguments(names);
    char** values = nullptr;
    ASSERT_EQ(call(value_object_single_get_bulk, count, arguments.get(), &values), "");
    EXPECT_EQ(taken(values), expected);
  }
}

TEST_F(ServerMethods, TakeValuesUpToAMebibyte) {
  const std::string longest(MAX_VALUE_BYTES, 'x');
  const std::string tooLong = longest + "x";
  EXPECT_EQ(call(value_object_single_set, "note", longest.c_str()), "");
  EXPECT_TRUE(singleGet("note") == longest);
  EXPECT_EQ(call(value_object_single_set, "note", tooLong.c_str()),
            "Set failed because parameter value is invalid");
  EXPECT_TRUE(singleGet("note") == longest);
  gboolean valid = TRUE;
  EXPECT_EQ(call(value_object_single_is_valid, "note", tooLong.c_str(), &valid), "");
  EXPECT_EQ(valid, FALSE);
}

// So many texts fill a message, each with this share of it.
constexpr size_t MANY_TEXTS = 32;
constexpr size_t MESSAGE_SHARE = MAX_MESSAGE_BYTES / MANY_TEXTS;

TEST_F(ServerMethods, RefuseValuesThatFitIntoNoMessageTogether) {
  const std::string value(MESSAGE_SHARE - 5, 'x');  // with its length and its end
  EXPECT_EQ(call(value_object_single_set, "note", value.c_str()), "");
  Texts listed(MANY_TEXTS, "note");
  listed.emplace_back("alarm");
  TextArguments names(listed);
  char** values = nullptr;
  ASSERT_EQ(call(value_object_single_get_bulk, guint32{MANY_TEXTS}, names.get(), &values), "");
  EXPECT_TRUE(taken(values) == Texts(MANY_TEXTS, value));
  EXPECT_EQ(call(value_object_single_get_bulk, guint32{MANY_TEXTS + 1}, names.get(), &values),
            "Get bulk failed because of internal error");
}

// Two parameters that take texts, each of which takes its share of a message with `more` beside it,
// but the last, which leaves room for two spans of `spanBytes`; and two spans or three.
std::string rangesWithTexts(size_t more, size_t spanBytes) {
  std::string texts;
  for (size_t i = 0; i < MANY_TEXTS; ++i) {
    const size_t spans = i + 1 == MANY_TEXTS ? 2 * spanBytes : 0;
    const std::string start = std::to_string(10 + i) + "x";
    texts +=
        '"' + start + std::string(MESSAGE_SHARE - more - 5 - spans - start.size(), 'x') + "\", ";
  }
  return "two rw { rangeValid { " + texts + "0..1, 3..4 } }\n" + "three rw { rangeValid { " +
         texts + "0..1, 3..4, 6..7 } }\n";
}

TEST(ServerMethodsWithLargeRanges, RefuseTextsAndSpansThatFitIntoNoMessageTogether) {
  constexpr size_t SPAN_BYTES = 8;
  TestService service(rangesWithTexts(0, SPAN_BYTES));
  guint32 id = NO_TRANSACTION;
  ASSERT_EQ(value_object_start(service.object(), &id, nullptr), TRUE);
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  ASSERT_EQ(value_object_get_range(service.object(), id, "two", &texts, &spans, nullptr), TRUE);
  EXPECT_EQ(taken(texts).size(), MANY_TEXTS);
  EXPECT_EQ(taken(spans, spanType()), (Texts{"0,1", "3,4"}));
  GError* error = nullptr;
  EXPECT_EQ(value_object_get_range(service.object(), id, "three", &texts, &spans, &error), FALSE);
  expectError(error, "Get range failed because of internal error");
}

TEST(ServerMethodsWithLargeRanges, RefuseRangesThatFitIntoNoMessageTogether) {
  constexpr size_t NAME_BYTES = 8;  // before the text and before each span
  constexpr size_t SPAN_BYTES = NAME_BYTES + 8;
  TestService service(rangesWithTexts(NAME_BYTES, SPAN_BYTES));
  guint32 id = NO_TRANSACTION;
  ASSERT_EQ(value_object_start(service.object(), &id, nullptr), TRUE);
  GPtrArray* texts = nullptr;
  GPtrArray* spans = nullptr;
  TextArguments two({"two"});
  ASSERT_EQ(value_object_get_range_bulk(service.object(), id, two.get(), &texts, &spans, nullptr),
            TRUE);
  EXPECT_EQ(taken(texts, namedTextType()).size(), MANY_TEXTS);
  EXPECT_EQ(taken(spans, namedSpanType()), (Texts{"two,0,1", "two,3,4"}));
  GError* error = nullptr;
  TextArguments three({"three"});
  EXPECT_EQ(value_object_get_range_bulk(service.object(), id, three.get(), &texts, &spans, &error),
            FALSE);
  expectError(error, "Get range failed because of internal error");
}

TEST_F(ServerMethods, ValidateWithoutStaging) {
  struct ValidCase {
    const char* name;
    const char* value;
    bool valid;
  };
  const ValidCase cases[] = {{"level", "5", true},
                             {"level", "10", false},
                             {"level", "off", true},
                             {"nothing", "5", false}};
  const guint32 id = start();
  for (const ValidCase& c : cases) {
    SCOPED_TRACE(std::string(c.name) + "=" + c.value);
    gboolean valid = c.valid ? FALSE : TRUE;
    EXPECT_EQ(call(value_object_is_valid, id, c.name, c.value, &valid), "");
    EXPECT_EQ(valid, c.valid ? TRUE : FALSE);
    valid = c.valid ? FALSE : TRUE;
    EXPECT_EQ(call(value_object_single_is_valid, c.name, c.value, &valid), "");
    EXPECT_EQ(valid, c.valid ? TRUE : FALSE);
    EXPECT_EQ(get(id, c.name), "");
    valid = c.valid ? FALSE : TRUE;
    EXPECT_EQ(call(value_object_single_check_set, c.name, c.value, &valid), "");
    EXPECT_EQ(valid, c.valid ? TRUE : FALSE);
    EXPECT_EQ(singleGet(c.name), "");
  }
  EXPECT_EQ(newSignals(), Signals{});
}

TEST_F(ServerMethods, CheckSetStagesWhatValidates) {
  const guint32 id = start();
  gboolean valid = FALSE;
  EXPECT_EQ(call(value_object_check_set, id, "level", "5", &valid), "");
  EXPECT_EQ(valid, TRUE);
  EXPECT_EQ(call(value_object_check_set, id, "level", "10", &valid), "");
  EXPECT_EQ(valid, FALSE);
  EXPECT_EQ(get(id, "level"), "5");
}

TEST_F(ServerMethods, TellInvalidNamesAndValuesApart) {
  const guint32 id = start();
  const std::string name = " failed because parameter name is invalid";
  const std::string value = " failed because parameter value is invalid";
  EXPECT_EQ(call(value_object_set, id, "nothing", "1"), "Set" + name);
  EXPECT_EQ(call(value_object_set, id, "level", "10"), "Set" + value);
  EXPECT_EQ(call(value_object_set_status, id, "nothing", "1"), "Set status" + name);
  EXPECT_EQ(call(value_object_set_status, id, "level", "10"), "Set status" + value);
  EXPECT_EQ(call(value_object_single_set, "nothing", "1"), "Set" + name);
  EXPECT_EQ(call(value_object_single_set_status, "level", "10"), "Set status" + value);
  EXPECT_EQ(call(value_object_reset, id, "nothing"), "Reset" + name);
  EXPECT_EQ(call(value_object_reset_status, id, "nothing"), "Reset status" + name);
  EXPECT_EQ(call(value_object_single_reset, "nothing"), "Reset" + name);
  EXPECT_EQ(call(value_object_single_reset_status, "nothing"), "Reset status" + name);
}

TEST_F(ServerMethods, SetEveryPairOfTheListsInSpiteOfFailures) {
  const guint32 id = start();
  TextArguments names({"nothing", "level", "note"});
  TextArguments values({"1", "10"});
  EXPECT_EQ(call(value_object_set_bulk, id, names.get(), values.get()),
            "Set failed because parameter name is invalid");  // the first of two
  TextArguments better({"level", "note", "alarm"});
  TextArguments betterValues({"5", "x"});
  EXPECT_EQ(call(value_object_set_bulk, id, better.get(), betterValues.get()), "");
  TextArguments more({"level", "nothing", "note"});
  TextArguments moreValues({"10", "1", "y", "z"});
  EXPECT_EQ(call(value_object_set_status_bulk, id, more.get(), moreValues.get()),
            "Set status failed because parameter value is invalid");
  EXPECT_EQ(get(id, "level"), "5");
  EXPECT_EQ(get(id, "note"), "y");
}

TEST_F(ServerMethods, CommitSingleCallsAlsoAfterAFailure) {
  TextArguments names({"nothing", "level"});
  TextArguments values({"1", "5"});
  EXPECT_EQ(call(value_object_single_set_bulk, names.get(), values.get()),
            "Set failed because parameter name is invalid");
  EXPECT_EQ(newSignals(), (Signals{{"level=5", "twin="}}));
  TextArguments statusNames({"alarm", "nothing"});
  EXPECT_EQ(call(value_object_single_set_status_bulk, statusNames.get(), values.get()),
            "Set status failed because parameter name is invalid");
  EXPECT_EQ(singleGet("alarm"), "1");
}

TEST_F(ServerMethods, SingleCallsReportThatTheCommitFails) {
  Texts log;
  const LogRedirection redirection([&log](const std::string& line) { log.push_back(line); });
  EXPECT_EQ(call(value_object_single_set, "gain[7]", "1"),
            "Commit failed because parameter index is invalid");
  EXPECT_FALSE(log.empty());
}

TEST_F(ServerMethods, ResetToTheDefault) {
  const guint32 id = start();
  EXPECT_EQ(call(value_object_reset, id, "gain[1]"), "");
  TextArguments names({"mode", "nothing", "gain[2]"});
  const char* const error = " failed because parameter name is invalid";
  EXPECT_EQ(call(value_object_reset_bulk, id, names.get()), std::string("Reset") + error);
  EXPECT_EQ(call(value_object_reset_status_bulk, id, names.get()),
            std::string("Reset status") + error);
  EXPECT_EQ(call(value_object_reset_status, id, "level"), "");
  EXPECT_EQ(call(value_object_commit, id), "");
  EXPECT_EQ(singleGet("mode"), "video");
  EXPECT_EQ(singleGet("gain[1]"), "64");
  EXPECT_EQ(singleGet("gain[2]"), "64");
  EXPECT_EQ(singleGet("level"), "auto");
  EXPECT_EQ(call(value_object_single_reset, "gain[3]"), "");
  EXPECT_EQ(singleGet("gain[3]"), "64");
  EXPECT_EQ(call(value_object_single_reset_status, "level"), "");
  TextArguments levels({"level", "nothing"});
  EXPECT_EQ(call(value_object_single_reset_bulk, levels.get()), std::string("Reset") + error);
  EXPECT_EQ(call(value_object_single_reset_status_bulk, levels.get()),
            std::string("Reset status") + error);
}

TEST_F(ServerMethods, OnlyStatusCallsWriteWhatIsReadOnly) {
  EXPECT_EQ(call(value_object_single_set, "alarm", "1"), "");
  EXPECT_EQ(singleGet("alarm"), "");
  EXPECT_EQ(call(value_object_single_set_status, "alarm", "1"), "");
  EXPECT_EQ(singleGet("alarm"), "1");
}

TEST_F(ServerMethods, GetDependenciesOfAnInstanceOrOfTheWholeParameter) {
  struct DependencyCase {
    const char* name;
    Texts dependencies;
    const char* error;
  };
  const DependencyCase cases[] = {
      {"gain[1]", {"mode"}, ""},
      {"gain", {"mode"}, ""},  // no instance: asked for as a whole
      {"note", {}, ""},
      {"gain[7]", {}, "Get deps failed because of invalid parameter index"},
      {"gain[1][1]", {}, "Get deps failed because of invalid parameter index"},
      {"nothing", {}, "Get deps failed because of invalid parameter name"},
  };
  for (const DependencyCase& c : cases) {
    SCOPED_TRACE(c.name);
    char** dependencies = nullptr;
    EXPECT_EQ(call(value_object_get_deps, c.name, &dependencies), c.error);
    ASSERT_EQ(dependencies == nullptr, *c.error != '\0');
    if (dependencies != nullptr) {
      EXPECT_EQ(taken(dependencies), c.dependencies);
    }
  }
}

TEST_F(ServerMethods, GetTextsAndSpansOfARange) {
  const guint32 id = start();
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  ASSERT_EQ(call(value_object_get_range, id, "level", &texts, &spans), "");
  EXPECT_EQ(taken(texts), (Texts{"auto", "off"}));
  EXPECT_EQ(taken(spans, spanType()), (Texts{"0,9", "20,29"}));
  ASSERT_EQ(call(value_object_get_range, id, "note", &texts, &spans), "");
  EXPECT_EQ(taken(texts), Texts{});
  EXPECT_EQ(taken(spans, spanType()), Texts{});
}

TEST_F(ServerMethods, GetTheRangeThatFollowsAStagedValue) {
  const guint32 id = start();
  EXPECT_EQ(call(value_object_set, id, "level", "7"), "");
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  ASSERT_EQ(call(value_object_get_range, id, "twin", &texts, &spans), "");
  EXPECT_EQ(taken(texts), Texts{});
  EXPECT_EQ(taken(spans, spanType()), Texts{"0,7"});
}

TEST_F(ServerMethods, RefuseTheRangeOfWhatIsNoInstance) {
  const guint32 id = start();
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  EXPECT_EQ(call(value_object_get_range, id, "gain", &texts, &spans),
            "Get range failed because of invalid bounds (1)");
  TextArguments names({"level", "nothing", "gain[1]"});
  GPtrArray* namedTexts = nullptr;
  EXPECT_EQ(call(value_object_get_range_bulk, id, names.get(), &namedTexts, &spans),
            "Get range failed because of invalid bounds (1)");
  EXPECT_EQ(texts, nullptr);
  EXPECT_EQ(namedTexts, nullptr);
  EXPECT_EQ(spans, nullptr);
}

TEST_F(ServerMethods, GetRangesInNameOrderEachOnce) {
  const guint32 id = start();
  TextArguments names({"mode", "level", "gain[2]", "mode", "note"});
  GPtrArray* texts = nullptr;
  GPtrArray* spans = nullptr;
  ASSERT_EQ(call(value_object_get_range_bulk, id, names.get(), &texts, &spans), "");
  EXPECT_EQ(taken(texts, namedTextType()),
            (Texts{"level,auto", "level,off", "mode,film", "mode,video"}));
  EXPECT_EQ(taken(spans, namedSpanType()), (Texts{"gain[2],0,255", "level,0,9", "level,20,29"}));
}

TEST_F(ServerMethods, GetTheIndicesThatExist) {
  const guint32 id = start();
  char** indices = nullptr;
  ASSERT_EQ(call(value_object_get_parm_idx, id, "gain[1]", &indices), "");
  EXPECT_EQ(taken(indices), Texts{"channel"});
  EXPECT_EQ(call(value_object_set, id, "mode", "film"), "");
  ASSERT_EQ(call(value_object_get_parm_idx, id, "gain", &indices), "");
  EXPECT_EQ(taken(indices), Texts{});
  ASSERT_EQ(call(value_object_get_parm_idx, id, "note", &indices), "");
  EXPECT_EQ(taken(indices), Texts{});
  EXPECT_EQ(call(value_object_get_parm_idx, id, "nothing", &indices),
            "Get parm index failed because parm not found");
}

TEST_F(ServerMethods, GetTheValuesOfAnIndex) {
  const guint32 id = start();
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  ASSERT_EQ(call(value_object_get_idx_range, id, "channel", &texts, &spans), "");
  EXPECT_EQ(taken(texts), Texts{});
  EXPECT_EQ(taken(spans, spanType()), Texts{"1,3"});
  EXPECT_EQ(call(value_object_get_idx_range, id, "gain", &texts, &spans),
            "Get index range failed because index not found");
  EXPECT_EQ(call(value_object_set, id, "mode", "film"), "");
  EXPECT_EQ(call(value_object_get_idx_range, id, "channel", &texts, &spans),
            "Get index range failed because index is not valid");
}

TEST_F(ServerMethods, WorkWithoutTheLockAfterDie) {
  EXPECT_EQ(call(value_object_die), "");
  EXPECT_EQ(service().state().lock(), nullptr);
  EXPECT_EQ(singleGet("level"), "");
  EXPECT_EQ(call(value_object_die), "");
}

TEST_F(ServerMethods, DieEndsTheMainLoop) {
  ASSERT_EQ(service().state().createMainLoop(), 0);
  GMainLoop* loop = service().state().mainLoop();
  const auto die = [](gpointer object) {
    value_object_die(static_cast<ValueObject*>(object), nullptr);
    return static_cast<gboolean>(G_SOURCE_REMOVE);
  };
  g_idle_add(die, service().object());
  g_main_loop_run(loop);
  EXPECT_EQ(g_main_loop_is_running(loop), FALSE);
}

using ServerMethodsDeathTest = ServerMethods;

// Of any arguments: the object is looked at before them.
template <typename... Arguments>
void expectStopWithoutAnObject(gboolean (*method)(ValueObject*, Arguments...), const char* name) {
  EXPECT_DEATH(method(nullptr, Arguments{}...),
               std::string(name) + ": Assertion `obj != NULL' failed");
}

TEST_F(ServerMethodsDeathTest, StopTheProgramWithoutAnObject) {
  expectStopWithoutAnObject(value_object_start, "value_object_start");
  expectStopWithoutAnObject(value_object_get, "value_object_get");
  expectStopWithoutAnObject(value_object_get_bulk, "value_object_get_bulk");
  expectStopWithoutAnObject(value_object_is_valid, "value_object_is_valid");
  expectStopWithoutAnObject(value_object_check_set, "value_object_check_set");
  expectStopWithoutAnObject(value_object_set, "value_object_set");
  expectStopWithoutAnObject(value_object_set_status, "value_object_set_status");
  expectStopWithoutAnObject(value_object_set_bulk, "value_object_set_bulk");
  expectStopWithoutAnObject(value_object_set_status_bulk, "value_object_set_status_bulk");
  expectStopWithoutAnObject(value_object_reset, "value_object_reset");
  expectStopWithoutAnObject(value_object_reset_status, "value_object_reset_status");
  expectStopWithoutAnObject(value_object_reset_bulk, "value_object_reset_bulk");
  expectStopWithoutAnObject(value_object_reset_status_bulk, "value_object_reset_status_bulk");
  expectStopWithoutAnObject(value_object_commit, "value_object_commit");
  expectStopWithoutAnObject(value_object_end, "value_object_end");
  expectStopWithoutAnObject(value_object_single_get, "value_object_single_get");
  expectStopWithoutAnObject(value_object_single_get_bulk, "value_object_single_get_bulk");
  expectStopWithoutAnObject(value_object_single_is_valid, "value_object_single_is_valid");
  expectStopWithoutAnObject(value_object_single_check_set, "value_object_single_check_set");
  expectStopWithoutAnObject(value_object_single_set, "value_object_single_set");
  expectStopWithoutAnObject(value_object_single_set_status, "value_object_single_set_status");
  expectStopWithoutAnObject(value_object_single_set_bulk, "value_object_single_set_bulk");
  expectStopWithoutAnObject(value_object_single_set_status_bulk,
                            "value_object_single_set_status_bulk");
  expectStopWithoutAnObject(value_object_single_reset, "value_object_single_reset");
  expectStopWithoutAnObject(value_object_single_reset_status, "value_object_single_reset_status");
  expectStopWithoutAnObject(value_object_single_reset_bulk, "value_object_single_reset_bulk");
  expectStopWithoutAnObject(value_object_single_reset_status_bulk,
                            "value_object_single_reset_status_bulk");
  expectStopWithoutAnObject(value_object_get_deps, "value_object_get_deps");
  expectStopWithoutAnObject(value_object_get_range, "value_object_get_range");
  expectStopWithoutAnObject(value_object_get_range_bulk, "value_object_get_range_bulk");
  expectStopWithoutAnObject(value_object_get_parm_idx, "value_object_get_parm_idx");
  expectStopWithoutAnObject(value_object_get_idx_range, "value_object_get_idx_range");
  expectStopWithoutAnObject(value_object_die, "value_object_die");
}

TEST_F(ServerMethodsDeathTest, StartStopsTheProgramWithoutAPlaceForTheId) {
  EXPECT_DEATH(value_object_start(service().object(), nullptr, nullptr),
               "value_object_start: Assertion `id != NULL' failed");
}

}  // namespace

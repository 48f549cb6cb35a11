// What the operations take of memory, and what they do so that nobody goes without.
#include "sw/dbus/operations.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <cstring>
#include <functional>
#include <new>
#include <utility>

#include "base/value_limit.h"
#include "base/work.h"
#include "database/commit.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/reply.h"
#include "tests/support/glib_allocations.h"
#include "tests/support/mappings.h"
#include "tests/support/reply.h"
#include "tests/support/service.h"

namespace {

// What the operations ask the libraries for, since they were last set back.
size_t largeTexts = 0;  // pieces of memory for texts of this size or more
size_t timesTrimmed = 0;
constexpr size_t LARGE = size_t{1} << 19U;

size_t keptWhilePublishing = 0;  // bytes of mappings, when the last of them was asked for

}  // namespace

// In the place of the C library's.
extern "C" int malloc_trim(size_t /*pad*/) noexcept {
  ++timesTrimmed;
  return 1;
}

namespace {

// So many texts fill a message, each with this share of it: its length before it and its end are in
// that.
constexpr size_t MANY_TEXTS = 32;
constexpr size_t MESSAGE_SHARE = MAX_MESSAGE_BYTES / MANY_TEXTS;
constexpr size_t SHARE_LENGTH = MESSAGE_SHARE - 5;

// Numbers with gaps between them, as the items of a range.
std::string numbersApart(int count) {
  std::string items = "0";
  for (int i = 1; i < count; ++i) items += ", " + std::to_string(2 * i);
  return items;
}

// Whether memory is to be given back soon; it then is.
bool givesMemoryBack() {
  GSource* const source = g_main_context_find_source_by_user_data(nullptr, nullptr);
  if (source == nullptr) return false;
  timesTrimmed = 0;
  g_source_set_ready_time(source, 0);
  g_main_context_iteration(nullptr, FALSE);
  return timesTrimmed == 1;
}

void noteTexts() {
  GlibAllocations::whenTriedFor = [](gsize size) {
    if (size >= LARGE) ++largeTexts;
    keptWhilePublishing = Mappings::kept;
  };
}

// What operations reply with.
struct Reply {
  char* text = nullptr;
  char** texts = nullptr;
  GPtrArray* spans = nullptr;
  GPtrArray* namedTexts = nullptr;  // with these the spans have names, too

  void free() {
    g_free(std::exchange(text, nullptr));
    g_strfreev(std::exchange(texts, nullptr));
    if (spans != nullptr) {
      taken(std::exchange(spans, nullptr), namedTexts != nullptr ? namedSpanType() : spanType());
    }
    if (namedTexts != nullptr) taken(std::exchange(namedTexts, nullptr), namedTextType());
  }
};

class OperationCosts : public testing::Test {
 protected:
  OperationCosts() : transaction_(service_.database()) {
    noteTexts();
    EXPECT_EQ(transaction_.set("note", std::string(SHARE_LENGTH, 'x'), false), STAGE_DONE);
    EXPECT_EQ(transaction_.set("short", "x", false), STAGE_DONE);
  }

  // getTexts of so many times "note"; the reply, where there is one, is freed.
  int getNotes(size_t count) {
    std::string name = "note";
    std::vector<char*> names(count, name.data());
    names.push_back(nullptr);
    char** values = nullptr;
    const int result = getTexts(transaction_, static_cast<uint32_t>(count), names.data(), &values);
    g_strfreev(values);
    return result;
  }

  TestService service_{"note rw { }\nshort rw { }\nmany rw { rangeValid { " + numbersApart(1000) +
                       ", \"" + std::string(1000, 'y') + "\" } }\n" + "i index { rangeValid { " +
                       numbersApart(1000) + " } }\n" + "indexed rw { index { i } }\n"};
  Transaction transaction_;
};

// A byte of a message is there three times while the bus library puts it together.
TEST_F(OperationCosts, LookWhetherThereIsMemoryForTheMessage) {
  constexpr size_t SPANS = 1000;
  constexpr size_t OF_SPAN = 256;      // as a structure
  constexpr size_t NAME_BYTES = 12;    // of "many" in a message
  constexpr size_t TEXT_BYTES = 1008;  // of the text
  Reply reply;
  std::string name = "many";
  char* names[] = {name.data(), nullptr};
  struct {
    const char* subject;
    std::function<int()> operation;
    size_t bytes;
  } const cases[] = {
      {"a text", [&] { return getText(transaction_, "note", &reply.text); }, 3 * SHARE_LENGTH},
      {"a short text", [&] { return getText(transaction_, "short", &reply.text); }, 0},
      {"texts", [&] { return getNotes(20); }, 3 * (20 * MESSAGE_SHARE)},
      {"a range", [&] { return getRange(transaction_, "many", &reply.texts, &reply.spans); },
       SPANS * OF_SPAN + 3 * (8 * SPANS + TEXT_BYTES)},
      {"ranges", [&] { return getRanges(transaction_, names, &reply.namedTexts, &reply.spans); },
       (SPANS + 1) * (OF_SPAN + 4 * (NAME_BYTES + 16)) + 4 * TEXT_BYTES},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.subject);
    Mappings::most = 0;
    EXPECT_EQ(c.operation(), 0);
    EXPECT_EQ(Mappings::most, c.bytes);
    reply.free();
  }
}

TEST_F(OperationCosts, GatherNoMoreThanOneTextBeyondWhatAMessageTakes) {
  struct {
    size_t names;
    int result;
    size_t made;
  } const cases[] = {
      {MANY_TEXTS, 0, MANY_TEXTS},
      {MANY_TEXTS + 1, INTERNAL_ERROR, MANY_TEXTS + 1},
      {MANY_TEXTS + 16, INTERNAL_ERROR, MANY_TEXTS + 1},
      {10 * MANY_TEXTS, INTERNAL_ERROR, MANY_TEXTS + 1},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.names);
    largeTexts = 0;
    EXPECT_EQ(getNotes(c.names), c.result);
    EXPECT_EQ(largeTexts, c.made);
  }
}

TEST_F(OperationCosts, LeaveNothingWhereThereIsNoMemoryForTheMessage) {
  Reply reply;
  std::string name = "many";
  char* names[] = {name.data(), nullptr};
  const std::function<int()> operations[] = {
      [&] { return getText(transaction_, "note", &reply.text); },
      [&] { return getNotes(20); },
      [&] { return getRange(transaction_, "many", &reply.texts, &reply.spans); },
      [&] { return getRanges(transaction_, names, &reply.namedTexts, &reply.spans); },
  };
  for (const auto& operation : operations) {
    GlibAllocations::kept.clear();
    int result = INTERNAL_ERROR;
    Mappings::succeed = false;
    try {
      result = operation();
    } catch (const std::bad_alloc&) {
    }
    Mappings::succeed = true;
    EXPECT_EQ(result, INTERNAL_ERROR);
    EXPECT_EQ(GlibAllocations::kept.size(), 0U);
  }
}

TEST_F(OperationCosts, StageNothingWhereAllTogetherIsTooMuch) {
  Transaction transaction(service_.database());
  std::string name = "short";
  std::string value = "y";
  std::vector<char*> names(10, name.data());
  std::vector<char*> values(10, value.data());
  names.push_back(nullptr);
  values.push_back(nullptr);
  const struct {
    const char* subject;
    std::function<int()> operation;
    uint64_t units;  // of each name
  } cases[] = {
      {"setting", [&] { return setTexts(transaction, names.data(), values.data(), false); }, 324},
      {"resetting", [&] { return resetAll(transaction, names.data(), false); }, 320},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.subject);
    Work::begin(10 * c.units - 1);
    EXPECT_THROW(c.operation(), WorkExceeded);
    EXPECT_TRUE(transaction.staged().empty());
    Work::begin(10 * c.units);
    EXPECT_EQ(c.operation(), STAGE_DONE);
    EXPECT_FALSE(transaction.staged().empty());
    transaction.staged().clear();
  }
  Work::begin();
}

TEST_F(OperationCosts, HaveMemoryGivenBackOnceForAll) {
  static_cast<void>(givesMemoryBack());  // which another test has asked for
  char* noNames[] = {nullptr};
  for (int call = 0; call < 3; ++call) {
    GPtrArray* texts = nullptr;
    GPtrArray* spans = nullptr;
    EXPECT_EQ(getRanges(transaction_, noNames, &texts, &spans), 0);
    taken(texts, namedTextType());
    taken(spans, namedSpanType());
  }
  EXPECT_TRUE(givesMemoryBack());
  EXPECT_FALSE(givesMemoryBack());
}

// What is kept for a signal is there for it when it is made, however the commit ends.
TEST(OperationCostsOfCommits, HaveTheRoomForTheirSignalsAtHand) {
  noteTexts();
  const std::string value(MAX_VALUE_BYTES, 'x');
  for (const bool isEnded : {false, true}) {
    SCOPED_TRACE(isEnded);
    TestService service("long rw { ctrlValid (text $ part) }\ntext rw { }\npart rw { }\n");
    Transaction transaction(service.database());
    EXPECT_EQ(transaction.set("text", value, false), STAGE_DONE);
    keptWhilePublishing = SIZE_MAX;
    Mappings::most = 0;
    if (isEnded) {
      Work::begin(5 * MAX_VALUE_BYTES);  // "text" is stored, then "long" is too much
      EXPECT_THROW(commitAndPublish(transaction, service.object()), WorkExceeded);
    } else {
      EXPECT_EQ(commitAndPublish(transaction, service.object()), COMMIT_DONE);
    }
    Work::begin();
    EXPECT_GT(Mappings::most, 3 * value.size());
    EXPECT_EQ(keptWhilePublishing, 0U);
    const std::vector<Texts> signals = service.newSignals();
    ASSERT_EQ(signals.size(), 1U);
    EXPECT_TRUE(signals[0][0] == "text=" + value);
  }
}

TEST(OperationCostsOfManySpans, RefuseWhatTakesTooMuchAsStructures) {
  constexpr int MOST = MAX_REPLY_MEMORY / STRUCT_MEMORY;
  TestService service("many rw { rangeValid { " + numbersApart(MOST) +
                      " } }\ntooMany rw { rangeValid { " + numbersApart(MOST + 1) + " } }\n");
  const struct {
    const char* name;
    int result;
  } cases[] = {{"many", 0}, {"tooMany", INTERNAL_ERROR}};
  Transaction transaction(service.database());
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    char** texts = nullptr;
    GPtrArray* spans = nullptr;
    EXPECT_EQ(getRange(transaction, c.name, &texts, &spans), c.result);
    g_strfreev(texts);
    if (spans != nullptr) taken(spans, spanType());
  }
}

TEST(OperationCostsOfLongNames, RefuseDependenciesThatFitIntoNoMessageTogether) {
  noteTexts();
  std::string sum;
  for (size_t i = 0; i < MANY_TEXTS; ++i) {
    const std::string value =
        std::to_string(10 + i) + std::string(SHARE_LENGTH - strlen("x[10]"), 'x');
    sum += (sum.empty() ? "x[" : " + x[") + value + "]";
  }
  TestService service("i index { }\nx rw { index { i } }\nfull rw { ctrlRO (" + sum +
                      ") }\nmore rw { ctrlRO (" + sum + " + full) }\n");
  struct {
    const char* name;
    int result;
    size_t made;
  } const cases[] = {{"full", 0, MANY_TEXTS}, {"more", INTERNAL_ERROR, MANY_TEXTS}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    char** names = nullptr;
    largeTexts = 0;
    EXPECT_EQ(getDependencies(service.database(), c.name, &names), c.result);
    EXPECT_EQ(largeTexts, c.made);
    g_strfreev(names);
  }
}

TEST_F(OperationCosts, HaveMemoryGivenBackWhereTheyMayLeaveMuchOfIt) {
  Reply reply;
  std::string name = "many";
  char* names[] = {name.data(), nullptr};
  char* noNames[] = {nullptr};
  gboolean valid = FALSE;
  struct {
    const char* subject;
    std::function<int()> operation;
    bool givesBack;
  } const cases[] = {
      {"a text", [&] { return getText(transaction_, "short", &reply.text); }, false},
      {"validation", [&] { return validate(transaction_, "note", "1", &valid); }, false},
      {"commit", [&] { return commitAndPublish(transaction_, service_.object()); }, true},
      {"dependencies", [&] { return getDependencies(service_.database(), "many", &reply.texts); },
       true},
      {"a range", [&] { return getRange(transaction_, "many", &reply.texts, &reply.spans); }, true},
      {"ranges", [&] { return getRanges(transaction_, names, &reply.namedTexts, &reply.spans); },
       true},
      {"no ranges",
       [&] { return getRanges(transaction_, noNames, &reply.namedTexts, &reply.spans); }, true},
      {"the values of an index",
       [&] { return getIndexRange(transaction_, "i", &reply.texts, &reply.spans); }, true},
  };
  static_cast<void>(givesMemoryBack());  // which another test has asked for
  for (const auto& c : cases) {
    SCOPED_TRACE(c.subject);
    EXPECT_EQ(c.operation(), 0);
    EXPECT_EQ(givesMemoryBack(), c.givesBack);
    EXPECT_FALSE(givesMemoryBack());  // once
    reply.free();
  }
}

}  // namespace

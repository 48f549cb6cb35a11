#include "sw/dbus/reply.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstring>
#include <new>
#include <vector>

#include "sw/dbus/memory_reserve.h"
#include "tests/support/mappings.h"
#include "tests/support/reply.h"

namespace {

size_t keptWhileMending = 0;  // bytes of mappings
int freedStructures = 0;
bool hasMemory = true;      // for what GLib tries to have
std::vector<gulong> waits;  // in microseconds

template <typename Function>
Function* ofTheLibrary(Function* /*ours*/, const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// In the place of those of GLib, or around them.
extern "C" void g_usleep(gulong microseconds) { waits.push_back(microseconds); }
extern "C" gpointer g_try_malloc(gsize size) { return hasMemory ? malloc(size) : nullptr; }
extern "C" gpointer g_try_malloc_n(gsize count, gsize size) { return g_try_malloc(count * size); }
extern "C" gchar* g_utf8_make_valid(const gchar* str, gssize len) {
  keptWhileMending = Mappings::kept;
  return ofTheLibrary(g_utf8_make_valid, "g_utf8_make_valid")(str, len);
}
// NOLINTNEXTLINE(readability-inconsistent-declaration-parameter-name)
extern "C" void g_boxed_free(GType type, gpointer boxed) {
  ++freedStructures;
  ofTheLibrary(g_boxed_free, "g_boxed_free")(type, boxed);
}

namespace {

TEST(NewText, IsValidUtf8) {
  struct TextCase {
    std::string text;
    const char* valid;
  };
  const TextCase cases[] = {
      {"", ""},
      {"gain=12", "gain=12"},
      {"\u2019", "\u2019"},
      {"a\xff\xfe"
       "b",
       "a\ufffd\ufffdb"},
      {"\xe2\x80", "\ufffd\ufffd"},            // cut off
      {"\xed\xa0\x80", "\ufffd\ufffd\ufffd"},  // half of a surrogate pair
      {std::string("a\0b", 3),
       "a\ufffd"
       "b"},  // the bus knows no NUL in a text
  };
  for (const TextCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.text));
    const NewText made = newText({c.text});
    EXPECT_STREQ(made.text, c.valid);
    EXPECT_EQ(made.length, strlen(c.valid));
    g_free(made.text);
  }
}

TEST(NewText, PutsItsPartsTogether) {
  const NewText made = newText({"gain", "=", std::string_view("1\xff", 2)});
  EXPECT_STREQ(made.text, "gain=1\ufffd");
  EXPECT_EQ(made.length, 9U);
  g_free(made.text);
}

TEST(NewText, IsThereOnlyWhereThereIsMemoryForIt) {
  hasMemory = false;
  const NewText none = tryNewText({"gain"});
  EXPECT_THROW(newText({"gain"}), std::bad_alloc);
  hasMemory = true;
  EXPECT_EQ(none.text, nullptr);
  EXPECT_EQ(none.length, 0U);
}

TEST(NewText, IsMendedOnlyWhereThereIsMemoryForIt) {
  // Each byte may become three, and each of these is there three times meanwhile.
  const std::string text(SMALL_MEMORY / 9 + 1, '\xff');
  Mappings::most = 0;
  Mappings::succeed = false;
  const NewText none = tryNewText({text});
  EXPECT_EQ(none.text, nullptr);
  EXPECT_EQ(none.length, 0U);
  EXPECT_EQ(Mappings::most, 9 * text.size());
  const NewText shorter = tryNewText({std::string_view(text).substr(1)});
  EXPECT_EQ(shorter.length, 3 * (text.size() - 1));
  g_free(shorter.text);
  Mappings::succeed = true;
  keptWhileMending = SIZE_MAX;
  const NewText mended = tryNewText({text});
  EXPECT_EQ(keptWhileMending, 0U);  // what was kept is there for it
  EXPECT_EQ(mended.length, 3 * text.size());
  g_free(mended.text);
}

TEST(BytesInMessage, CountsLengthEndAndGap) {
  // Four bytes of length before the text, one NUL behind it, all in steps of four.
  EXPECT_EQ(bytesInMessage(0), 8U);
  EXPECT_EQ(bytesInMessage(3), 8U);
  EXPECT_EQ(bytesInMessage(4), 12U);
  EXPECT_EQ(bytesInMessage(7), 12U);
}

TEST(TextList, GivesItsTextsAway) {
  TextList list("x", 3);
  EXPECT_TRUE(list.empty());
  list.addAll(Texts{"a", "\xff"});
  list.add("");
  EXPECT_FALSE(list.empty());
  EXPECT_EQ(list.bytes(), 24U);
  EXPECT_EQ(taken(list.release()), (Texts{"a", "\ufffd", ""}));
  EXPECT_EQ(taken(TextList("x", 0).release()), Texts{});
}

TEST(TextList, IsFilledUpToTheFirstTextThatIsTooMuch) {
  constexpr size_t MANY = 32;  // of these fill a message
  const Texts texts(MANY + 3, std::string(MAX_MESSAGE_BYTES / MANY - 5, 'x'));
  TextList list("x", texts.size());
  list.addAll(texts);
  EXPECT_EQ(list.bytes(), MAX_MESSAGE_BYTES / MANY * (MANY + 1));
}

TEST(TextList, IsFilledAgainOnceItIsCleared) {
  TextList list("x", 2);
  for (const char* text : {"a", "bcde"}) {
    SCOPED_TRACE(text);
    list.add(text);
    list.adopt(newText({"c"}));
    EXPECT_STREQ(list.texts()[0], text);
    EXPECT_STREQ(list.texts()[1], "c");
    EXPECT_EQ(list.texts()[2], nullptr);
    list.clear();
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.bytes(), 0U);
    EXPECT_EQ(list.texts()[0], nullptr);
  }
}

TEST(StructArray, HoldsSpans) {
  StructArray array;
  array.addSpan({INT_MIN, -1});
  array.addSpan({0, INT_MAX});
  EXPECT_EQ(taken(array.release(), spanType()), (Texts{"-2147483648,-1", "0,2147483647"}));
}

TEST(StructArray, HoldsSpansWithNames) {
  StructArray array;
  array.addSpan("gain[\xff]", {1, 2});
  EXPECT_EQ(taken(array.release(), namedSpanType()), (Texts{"gain[\ufffd],1,2"}));
}

TEST(StructArray, HoldsTextsWithNames) {
  StructArray array;
  array.addText("mode", "film");
  array.addText("\xff", "\xff");
  EXPECT_EQ(taken(array.release(), namedTextType()), (Texts{"mode,film", "\ufffd,\ufffd"}));
}

TEST(StructArray, FreesWhatNobodyTook) {
  for (const int count : {0, 1, 3}) {
    SCOPED_TRACE(count);
    freedStructures = 0;
    {
      StructArray array;
      for (int i = 0; i < count; ++i) array.addSpan({i, i});
    }
    EXPECT_EQ(freedStructures, count);
  }
}

TEST(StructArray, HoldsNothingAtFirst) {
  StructArray array;
  EXPECT_EQ(taken(array.release(), spanType()), Texts{});
}

TEST(StructArray, CountsItsBytes) {
  StructArray array;
  EXPECT_EQ(array.bytes(), 0U);
  array.addSpan({1, 2});
  EXPECT_EQ(array.bytes(), 8U);
  StructArray named;
  named.addSpan("abc", {1, 2});  // 8 and 8
  EXPECT_EQ(named.bytes(), 16U);
  named.addSpan("abcd", {1, 2});  // 12 and 8, and the gap
  EXPECT_EQ(named.bytes(), 40U);
  StructArray texts;
  texts.addText("abc", "");
  EXPECT_EQ(texts.bytes(), 16U);
  texts.addText("", "abcd");
  EXPECT_EQ(texts.bytes(), 40U);
}

TEST(Retried, SaysAndRepeatsUntilThereIsMemory) {
  int failures = 2;
  int memory = 0;
  testing::internal::CaptureStderr();
  const int* result = retried("parmDep", [&] { return failures-- > 0 ? nullptr : &memory; });
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Transaction server: parmDep - out of memory\n"
            "Transaction server: parmDep - out of memory\n");
  EXPECT_EQ(result, &memory);
  EXPECT_EQ(waits, (std::vector<gulong>{500, 500}));
}

}  // namespace

#include "sw/dbus/reply.h"

#include <gtest/gtest.h>

#include "sw/dbus/test_reply.h"

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
    char* text = newText(c.text);
    EXPECT_STREQ(text, c.valid);
    g_free(text);
  }
}

TEST(BytesInArray, CountsLengthEndAndGap) {
  // Four bytes of length before the text, one NUL behind it, all in steps of four.
  EXPECT_EQ(bytesInArray(""), 8U);
  EXPECT_EQ(bytesInArray("abc"), 8U);
  EXPECT_EQ(bytesInArray("abcd"), 12U);
  EXPECT_EQ(bytesInArray("abcdefg"), 12U);
}

TEST(TextList, GivesItsTextsAway) {
  TextList list("x");
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(taken(list.release()), Texts{});
  list.addAll(Texts{"a", "\xff"});
  list.add("");
  EXPECT_FALSE(list.empty());
  EXPECT_EQ(list.bytes(), 24U);
  EXPECT_EQ(taken(list.release()), (Texts{"a", "\ufffd", ""}));
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.bytes(), 0U);
}

TEST(TextList, FitsUpToTheLimit) {
  TextList list("x");
  list.add(std::string(MAX_ARRAY_BYTES - 8 - 5, 'x'));
  list.add("abc");
  EXPECT_EQ(list.bytes(), MAX_ARRAY_BYTES);
  EXPECT_TRUE(list.fits());
  list.add("");
  EXPECT_FALSE(list.fits());
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

TEST(StructArray, HoldsNothingAtFirst) {
  StructArray array;
  EXPECT_TRUE(array.fits());
  EXPECT_EQ(taken(array.release(), spanType()), Texts{});
}

TEST(StructArray, FitsUpToTheLimit) {
  const std::string half(MAX_ARRAY_BYTES / 2 - 8 - 5, 'x');  // its size, and the empty text's
  StructArray array;
  array.addText(half, "");
  array.addText("", half);
  EXPECT_TRUE(array.fits());
  array.addSpan("", {0, 0});
  EXPECT_FALSE(array.fits());
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
}

}  // namespace

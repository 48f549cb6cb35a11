#include "doc/picture.h"

#include <gtest/gtest.h>

#include "doc/testing.h"

namespace {

size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(Picture, OfAFewParametersIsOneDrawing) {
  const DocPicture picture =
      makePicture(modelOf("mode rw { }\n"
                          "a_<b> rw { rangeValid { 0..(mode) } }\n"
                          "a_2 ro { rangeValid { 0..(mode) } }\n"
                          "alone rw { }\n"));
  ASSERT_EQ(picture.failure, "");
  const std::string& html = picture.html;
  EXPECT_EQ(countOf(html, "<svg"), 1U);
  EXPECT_EQ(countOf(html, "<a class=\"n rw\""), 2U);
  EXPECT_EQ(countOf(html, "<a class=\"n ro\" data-p=2 href=\"#p-a_2\">"), 1U);
  EXPECT_EQ(countOf(html, "data-p=1 href=\"#p-a_%3Cb%3E\">"), 1U);
  EXPECT_EQ(countOf(html, ">a_&lt;b&gt;</text>"), 1U);
  EXPECT_EQ(countOf(html, "<path data-e="), 2U);
  EXPECT_EQ(countOf(html, "<rect class=b"), 1U);
  EXPECT_EQ(countOf(html, ">level 0<"), 1U);
  EXPECT_EQ(countOf(html, ">level 1<"), 1U);
  EXPECT_EQ(countOf(html, "1 parameter is on its own"), 1U);
  EXPECT_EQ(countOf(html, "{\"follows\":[[],[0],[0],[]],\"groups\":[[1,2],[0]]}"), 1U);
}

TEST(Picture, OfManyParametersHasADrawingOfEachGroup) {
  std::string text = "mode rw { }\n";
  for (int i = 0; i < 200; ++i) {
    text += "a" + std::to_string(i % 5) + "_" + std::to_string(i) +
            " rw { rangeValid { 0..(mode) } }\n";
  }
  const DocPicture picture = makePicture(modelOf(text));
  ASSERT_EQ(picture.failure, "");
  EXPECT_EQ(countOf(picture.html, "<figure id=g-all"), 1U);
  for (const char* const id : {"g-0", "g-1", "g-2", "g-3", "g-4", "g-5"}) {
    EXPECT_EQ(countOf(picture.html, "<figure id=" + std::string(id) + " "), 1U);
    EXPECT_GE(countOf(picture.html, " href=\"#" + std::string(id) + "\">"), 1U);
  }
}

TEST(Picture, IsLeftOutWhereNothingFollowsAnything) {
  const DocPicture picture = makePicture(modelOf("a rw { }\nb rw { }\n"));
  EXPECT_EQ(picture.html, "");
  EXPECT_EQ(picture.failure, "");
}

}  // namespace

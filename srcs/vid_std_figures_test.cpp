#include "srcs/vid_std_figures.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/support/listing.h"
#include "vid_std.h"

namespace {

class VidStdFigures : public testing::Test {
 protected:
  static void SetUpTestSuite() { initVidStdTables(); }
};

// The figure as text, "-" for none.
std::string figureText(std::string_view value, const char* name) {
  const vidFigure_t* const figure = findVidFigure(name);
  if (figure == nullptr) return "no figure of that name";
  const std::optional<uint32_t> number = vidStdFigure(value, *figure);
  return number ? std::to_string(*number) : "-";
}

TEST_F(VidStdFigures, AreKnownByTheirExactNames) {
  for (const std::string& name : figureNames()) {
    SCOPED_TRACE(name);
    ASSERT_NE(findVidFigure(name), nullptr);
    EXPECT_EQ(findVidFigure(name)->name, name);
  }
  for (const char* const name :
       {"", "xyz", "Spal", "SPAL", "spal ", " spal", "spa", "f", "f2", "clkdiv", "f0v2", "f0swx"}) {
    SCOPED_TRACE(name);
    EXPECT_EQ(findVidFigure(name), nullptr);
  }
}

TEST_F(VidStdFigures, AreThoseOfTheListingForEveryStandard) {
  std::vector<std::string> lines;
  for (const vidStd_t& v : vidStds()) {
    std::string line = std::to_string(lines.size() + 1) + "\t" + v.name;
    for (const std::string& name : figureNames()) {
      line += "\t" + std::to_string(findVidFigure(name)->ofStandard(v));
    }
    lines.push_back(line);
  }
  EXPECT_EQ(lines, readListing("figures_of_standards.tsv"));
}

TEST_F(VidStdFigures, AreThoseOfTheListingForEveryPictureFormat) {
  std::vector<std::string> lines;
  for (const vidFormat_t& f : vidFormats()) {
    std::string line = std::to_string(lines.size() + 1) + "\t" + f.name;
    for (const std::string& name : figureNames()) {
      const auto ofFormat = findVidFigure(name)->ofFormat;
      line += "\t" + (ofFormat == nullptr ? "-" : std::to_string(ofFormat(f)));
    }
    lines.push_back(line);
  }
  EXPECT_EQ(lines, readListing("figures_of_formats.tsv"));
}

TEST_F(VidStdFigures, FollowTheFirstRowWhoseNameBeginsTheValue) {
  const struct {
    const char* value;
    const char* figure;
    const char* number;  // "-": none
  } cases[] = {
      {"1080i/50", "spal", "1920"},
      {"1080i/50", "alpf", "1080"},
      {"1080i/50", "f0v0", "21"},
      {"1080i/50", "f1v1", "1124"},
      {"1080i/50", "f0v1", "561"},
      {"1080i/50", "f1v0", "584"},
      {"1080i/50", "f1", "564"},
      {"1080i/50", "f1sw", "569"},
      {"720p/50", "sptl", "1980"},
      {"720p/50", "clkDiv", "0"},
      {"720p/59.94", "clkDiv", "1"},
      {"720p/50", "f1sw", "0"},
      {"1080p/50xyz", "fr", "50"},
      {"1080p/25sF", "f1sw", "0"},                  // the row "1080p/25", which is progressive
      {"525i/59.94 - RP187(2004)", "alpf", "487"},  // the standard, not the format of 486 lines
      {"625i/50", "tlpf", "625"},                   // likewise
      {"1920x1080/59.94/I", "spal", "1920"},
      {"1920x1080/59.94/I", "alpf", "1080"},
      {"1920x1080/59.94/I", "fr", "30"},
      {"1920x1080/59.94/I", "clkDiv", "1"},
      {"1920x1080/59.94/I", "sptl", "-"},  // a format has no raster
      {"1920x1080/59.94/I", "f0", "-"},
      {"3840x2160/119.88/P and more", "fr", "120"},
      {"3840x2160", "spal", "-"},  // shorter than the names
      {"PAL", "spal", "-"},
      {"", "spal", "-"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(std::string(c.value) + "::" + c.figure);
    EXPECT_EQ(figureText(c.value, c.figure), c.number);
  }
}

// The rows that a value cannot select, because an earlier name begins theirs.
TEST_F(VidStdFigures, ReachTheseRowsByNoValue) {
  std::set<size_t> unreachable;
  for (size_t i = 0; i < vidStds().size(); i++) {
    if (findVidStd(vidStds()[i].name) != &vidStds()[i]) unreachable.insert(i + 1);
  }
  const std::set<size_t> expected = {
      12, 13, 14, 15, 16,  // 1080p segmented
      28, 31, 32, 33,      // second and later rows of a name
      43, 44, 45, 46, 47,  // 3G 1080p segmented
      64, 65, 66, 67, 68,  // 2048x1080p segmented
      74, 75, 76, 77, 78,  // 3G 2048x1080p segmented
  };
  EXPECT_EQ(unreachable, expected);
}

TEST(VidFigures, AreTheOnesThatAreFoundByTheirNames) {
  EXPECT_EQ(vidFigures().size(), 14U);
  for (const vidFigure_t& figure : vidFigures()) {
    EXPECT_EQ(findVidFigure(figure.name), &figure) << figure.name;
  }
}

}  // namespace

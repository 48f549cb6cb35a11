#include "vid_std.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "tests/support/assertion.h"

namespace {

std::set<uint32_t> totals() {
  std::set<uint32_t> lines;
  for (const vidStd_t& v : vidStds()) lines.insert(v.total.line);
  return lines;
}

uint32_t sizeOf(const vidRange_t& e) { return e.stop - e.start + 1; }

bool holds(const vidRange_t& e, uint32_t line) { return e.start <= line && line <= e.stop; }

std::string textOf(const vidRange_t& e) {
  return std::to_string(e.start) + ".." + std::to_string(e.stop);
}

// Calls `check` with every progressive extent of at least `least` lines in a frame of `tlpf`, until
// one fails.
template <typename Check>
void forEveryExtent(uint32_t tlpf, uint32_t least, Check check) {
  for (uint32_t start = 1; start + least - 1 <= tlpf; start++) {
    for (uint32_t stop = start + least - 1; stop <= tlpf; stop++) {
      check(vidRange_t{start, stop});
      if (testing::Test::HasFailure()) return;
    }
  }
}

TEST(VidStdLines, ConvertsBothWays) {
  const struct {
    uint32_t tlpf, progressive, raster;
  } cases[] = {
      {1125, 1, 1},
      {1125, 2, 564},
      {1125, 3, 2},
      {1125, 41, 21},
      {1125, 42, 584},
      {1125, 1120, 1123},
      {1125, 1124, 1125},
      {1125, 1125, 563},  // odd total: ends in field 1
      {625, 625, 313},
      {625, 2, 314},
      {750, 749, 375},
      {750, 750, 750},  // even total
      {1, 1, 1},
      {2, 2, 2},
      {UINT32_MAX, UINT32_MAX, 0x80000000},
      {UINT32_MAX, 2, 0x80000001},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.progressive << " <-> " << c.raster << " of " << c.tlpf);
    EXPECT_EQ(progToIntLine(c.progressive, c.tlpf), c.raster);
    EXPECT_EQ(intToProgLine(c.raster, c.tlpf), c.progressive);
  }
}

TEST(VidStdLines, ConvertsBothEndsOfARange) {
  EXPECT_EQ(progToIntRange({41, 1120}, 1125), (vidRange_t{21, 1123}));
  EXPECT_EQ(progToIntRange({50, 1111}, 1125), (vidRange_t{588, 556}));  // field 2 to field 1
  EXPECT_EQ(intToProgRange({588, 556}, 1125), (vidRange_t{50, 1111}));
  EXPECT_EQ(intToProgRange({338, 308}, 625), (vidRange_t{50, 615}));
}

TEST(VidStdFields, JoinInThePicture) {
  const struct {
    vidRangePair_t fields;
    uint32_t tlpf;
    vidRange_t joined;
  } cases[] = {
      {{{{21, 560}, {584, 1123}}}, 1125, {41, 1120}},
      {{{{41, 557}, {603, 1120}}}, 1125, {80, 1114}},  // field 2 has the first and the last line
      {{{{20, 263}, {283, 525}}}, 525, {39, 525}},     // field 1 has both
      {{{{26, 308}, {338, 620}}}, 625, {50, 615}},
      {{{{21, 560}, {0, 0}}}, 1125, {41, 1119}},    // field 1 alone
      {{{{0, 0}, {584, 1123}}}, 1125, {42, 1120}},  // field 2 alone
      {{{{338, 308}, {0, 0}}}, 625, {50, 615}},     // one extent over both
      {{{{1, 0}, {0, 314}}}, 625, {1, 2}},          // an end each: the two make one extent
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(textOf(c.fields[0]) + " and " + textOf(c.fields[1]));
    EXPECT_EQ(fieldToProgRange(c.fields, c.tlpf), c.joined);
  }
}

TEST(VidStdFields, SplitARasterExtent) {
  const struct {
    vidRange_t extent;
    uint32_t tlpf;
    vidRangePair_t fields;
  } cases[] = {
      {{20, 525}, 525, {{{20, 262}, {283, 525}}}},      // field 1 to field 2
      {{338, 308}, 625, {{{26, 308}, {338, 620}}}},     // field 2 to field 1
      {{20, 263}, 525, {{{20, 263}, {283, 525}}}},      // field 1 to field 1
      {{603, 1120}, 1125, {{{41, 557}, {603, 1120}}}},  // field 2 to field 2
      {{1, 313}, 625, {{{1, 313}, {314, 625}}}},        // the whole frame
      {{625, 313}, 625, {{{313, 313}, {625, 625}}}},    // its last two lines
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(textOf(c.extent));
    EXPECT_EQ(splitIntoFields(c.extent, c.tlpf), c.fields);
  }
}

TEST(VidStdFields, CentreASizeInBoth) {
  const vidRangePair_t active = {{{21, 560}, {584, 1123}}};
  EXPECT_EQ(calcCentreFieldRange(1062, active, 1125, true), (vidRange_t{588, 556}));
  EXPECT_EQ(calcCentreFieldRange(1061, active, 1125, true), (vidRange_t{26, 556}));
  EXPECT_EQ(calcCentreFieldRange(1061, active, 1125, false), (vidRange_t{588, 1118}));
  EXPECT_EQ(calcCentreFieldRange(1080, active, 1125, true), (vidRange_t{21, 1123}));
}

TEST(VidStdFields, HaveTheirCentreInRasterNumbering) {
  EXPECT_EQ(calcFieldCentre({{{21, 560}, {584, 1123}}}, 1125), (vidCentre_t{291, 853}));
  EXPECT_EQ(calcFieldCentre({{{41, 557}, {603, 1120}}}, 1125), (vidCentre_t{299, 299}));
  EXPECT_EQ(calcFieldCentre({{{20, 262}, {283, 525}}}, 525), (vidCentre_t{404, 141}));
}

TEST(CalcOutsideRegion, GivesWhatLiesBeforeAndAfter) {
  const struct {
    vidRange_t in, full;
    vidRangePair_t outside;
  } cases[] = {
      {{42, 1121}, {1, 1125}, {{{1, 41}, {1122, 1125}}}},
      {{1, 1125}, {1, 1125}, {{{0, 0}, {0, 0}}}},
      {{283, 525}, {264, 525}, {{{264, 282}, {0, 0}}}},  // only before
      {{264, 500}, {264, 525}, {{{501, 525}, {0, 0}}}},  // only after, in the first result
      {{2, 1124}, {1, 1125}, {{{1, 1}, {1125, 1125}}}},  // one line each
      {{7, 7}, {1, 9}, {{{1, 6}, {8, 9}}}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(textOf(c.in) + " in " + textOf(c.full));
    EXPECT_EQ(calcOutsideRegion(c.in, c.full), c.outside);
  }
}

TEST(VidStdGeometry, KnowsTheTotalsOfTheCatalogue) {
  EXPECT_EQ(totals(), (std::set<uint32_t>{525, 625, 750, 1125}));
}

TEST(VidStdGeometry, HitsEachLineOnceBothWays) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    std::vector<uint32_t> rasterHits(tlpf + 1), progressiveHits(tlpf + 1);
    for (uint32_t line = 1; line <= tlpf; line++) {
      ASSERT_EQ(intToProgLine(progToIntLine(line, tlpf), tlpf), line);
      ASSERT_EQ(progToIntLine(intToProgLine(line, tlpf), tlpf), line);
      rasterHits.at(progToIntLine(line, tlpf))++;
      progressiveHits.at(intToProgLine(line, tlpf))++;
    }
    EXPECT_EQ(std::count(rasterHits.begin() + 1, rasterHits.end(), 1), tlpf);
    EXPECT_EQ(std::count(progressiveHits.begin() + 1, progressiveHits.end(), 1), tlpf);
  }
}

TEST(VidStdGeometry, TakesTheLinesOfEachFieldInTurn) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    uint32_t nextOfField1 = 1;
    uint32_t nextOfField2 = (tlpf + 1) / 2 + 1;
    for (uint32_t line = 1; line <= tlpf; line++) {
      uint32_t& next = line % 2 == 1 ? nextOfField1 : nextOfField2;
      ASSERT_EQ(progToIntLine(line, tlpf), next++);
    }
  }
}

TEST(VidStdGeometry, CoversTheFrameWithBothFields) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    const vidRangePair_t fields = splitIntoFields(progToIntRange({1, tlpf}, tlpf), tlpf);
    EXPECT_EQ(fields[0].start, 1U);
    EXPECT_EQ(fields[1].start, fields[0].stop + 1);
    EXPECT_EQ(fields[1].stop, tlpf);
    EXPECT_EQ(sizeOf(fields[0]), sizeOf(fields[1]) + tlpf % 2);
    EXPECT_EQ(fieldToProgRange(fields, tlpf), (vidRange_t{1, tlpf}));
  }
}

TEST(VidStdGeometry, SplitsEveryExtentIntoFieldsThatJoinAgain) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    forEveryExtent(tlpf, 2, [tlpf](const vidRange_t& e) {
      const vidRange_t raster = progToIntRange(e, tlpf);
      ASSERT_EQ(intToProgRange(raster, tlpf), e);
      const vidRangePair_t fields = splitIntoFields(raster, tlpf);
      ASSERT_EQ(fieldToProgRange(fields, tlpf), e) << textOf(e);
      ASSERT_EQ(sizeOf(fields[0]) + sizeOf(fields[1]), sizeOf(e)) << textOf(e);
    });
  }
}

TEST(VidStdGeometry, SplitsWithoutLosingOrAddingALine) {
  for (const uint32_t tlpf : totals()) {
    // All extents that share an end with the frame.
    std::vector<vidRange_t> extents;
    for (uint32_t line = 2; line < tlpf; line++) {
      extents.push_back({1, line});
      extents.push_back({line, tlpf});
    }
    for (const vidRange_t& e : extents) {
      SCOPED_TRACE(textOf(e) + " of " + std::to_string(tlpf));
      const vidRangePair_t fields = splitIntoFields(progToIntRange(e, tlpf), tlpf);
      for (uint32_t line = 1; line <= tlpf; line++) {
        const uint32_t raster = progToIntLine(line, tlpf);
        ASSERT_EQ(holds(fields[0], raster) || holds(fields[1], raster), holds(e, line)) << line;
      }
    }
  }
}

TEST(VidStdGeometry, CentresEverySizeWithAtMostOneLineMoreBeforeThanBehind) {
  for (const uint32_t tlpf : totals()) {
    const vidRangePair_t fields = splitIntoFields(progToIntRange({1, tlpf}, tlpf), tlpf);
    for (uint32_t size = 1; size <= tlpf; size++) {
      SCOPED_TRACE(testing::Message() << size << " of " << tlpf);
      const uint32_t surplus = (tlpf - size) % 2;
      for (const bool roundUp : {false, true}) {
        const vidRange_t centred = calcCentreRange(size, {1, tlpf}, roundUp);
        const uint32_t before = centred.start - 1;
        const uint32_t behind = tlpf - centred.stop;
        ASSERT_EQ(sizeOf(centred), size);
        ASSERT_EQ(before, roundUp ? behind + surplus : behind - surplus);
        ASSERT_EQ(calcCentreFieldRange(size, fields, tlpf, roundUp), progToIntRange(centred, tlpf));
      }
    }
  }
}

TEST(VidStdGeometry, HasTheCentreOfEveryExtentAsFarFromBothEnds) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    forEveryExtent(tlpf, 1, [tlpf](const vidRange_t& e) {
      const vidCentre_t c = calcVidCentre(e);
      ASSERT_EQ(c.pixelLow - e.start, e.stop - c.pixelHigh) << textOf(e);
      ASSERT_EQ(c.pixelHigh - c.pixelLow, 1 - sizeOf(e) % 2) << textOf(e);
      if (sizeOf(e) == 1) return;
      const vidCentre_t raster = {.pixelHigh = progToIntLine(c.pixelHigh, tlpf),
                                  .pixelLow = progToIntLine(c.pixelLow, tlpf)};
      const vidRangePair_t fields = splitIntoFields(progToIntRange(e, tlpf), tlpf);
      ASSERT_EQ(calcFieldCentre(fields, tlpf), raster) << textOf(e);
    });
  }
}

TEST(VidStdGeometry, LeavesEveryLineInsideOrOutside) {
  for (const uint32_t tlpf : totals()) {
    SCOPED_TRACE(tlpf);
    forEveryExtent(tlpf, 1, [tlpf](const vidRange_t& e) {
      uint32_t lines = sizeOf(e);
      for (const vidRange_t& outside : calcOutsideRegion(e, {1, tlpf})) {
        if (outside == vidRange_t{}) continue;
        ASSERT_TRUE(outside.stop < e.start || outside.start > e.stop) << textOf(e);
        lines += sizeOf(outside);
      }
      ASSERT_EQ(lines, tlpf) << textOf(e);
    });
  }
}

TEST(VidStdLookup, FindsTheFirstRowWhoseNameBeginsTheText) {
  const auto place = [](const char* text) {
    const vidStd_t* const found = findVidStd(text);
    return found == nullptr ? 0 : found - vidStds().data() + 1;
  };
  const struct {
    const char* text;
    int row;  // from 1; 0: none
  } cases[] = {
      {"1080p/60.00", 1},
      {"1080p/25sF", 9},     // "1080p/25" comes before it
      {"1080p/30.00sF", 7},  //
      {"1080p/50xyz", 3},
      {"625i/50", 27},  // the second of that name is never found
      {"525i/59.94", 30},
      {"525i/59.94 - RP187(2004)", 30},
      {"3G/2048x1080p/23.98sF", 73},
      {"3G/2048x1080p/23.98", 73},
      {"1080p/5", 0},  // shorter than the name
      {" 1080p/50", 0},
      {"1080P/50", 0},  // case counts
      {"3G/", 0},
      {"1920x1080/60/P", 0},  // a picture format
      {"", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(place(c.text), c.row);
  }
}

TEST(VidStdLookup, FindsPictureFormatsByTheSameRule) {
  const auto place = [](const char* text) {
    const vidFormat_t* const found = findVidFormat(text);
    return found == nullptr ? 0 : found - vidFormats().data() + 1;
  };
  const struct {
    const char* text;
    int row;  // from 1; 0: none
  } cases[] = {
      {"1920x1080/60/P", 1},
      {"7680x4320/120/P", 48},
      {"1280x720/59.94", 15},
      {"1280x720/50 and more", 16},
      {"525i/59.94 - RP187(2004)", 24},
      {"525i/59.94", 0},  // all formats of that raster have longer names
      {"1080p/50", 0},    // a standard
      {"", 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    EXPECT_EQ(place(c.text), c.row);
  }
}

TEST(VidStdLookup, SelectsAStandardBeforeAPictureFormat) {
  const struct {
    const char* value;
    const char* standard;  // null: none
    const char* format;
  } cases[] = {
      {"720p/50", "720p/50", nullptr},
      {"720p/50 wide", "720p/50", nullptr},
      {"1080p/25sF", "1080p/25", nullptr},                  // listed before it
      {"525i/59.94 - RP187(2004)", "525i/59.94", nullptr},  // also a format's whole name
      {"1920x1080/60/P wide", nullptr, "1920x1080/60/P"},   //
      {"720p/60", nullptr, nullptr},                        // shorter than "720p/60.00"
      {"", nullptr, nullptr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.value);
    const vidSelection_t selected = selectVid(c.value);
    EXPECT_STREQ(selected.standard == nullptr ? nullptr : selected.standard->name, c.standard);
    EXPECT_STREQ(selected.format == nullptr ? nullptr : selected.format->name, c.format);
  }
}

TEST(VidStdDeathTest, StopsTheProgramAtALineOutsideTheFrame) {
  const std::string toRaster = assertionPattern(
      "vid_std", "uint32_t progToIntLine(uint32_t, uint32_t)", "1 <= line && line <= tlpf");
  const std::string toProgressive = assertionPattern(
      "vid_std", "uint32_t intToProgLine(uint32_t, uint32_t)", "1 <= line && line <= tlpf");
  EXPECT_DEATH(progToIntLine(0, 1125), toRaster);
  EXPECT_DEATH(progToIntLine(1126, 1125), toRaster);
  EXPECT_DEATH(progToIntRange({1, 526}, 525), toRaster);
  EXPECT_DEATH(intToProgLine(0, 1125), toProgressive);
  EXPECT_DEATH(intToProgLine(1126, 1125), toProgressive);
  EXPECT_DEATH(intToProgRange({0, 5}, 525), toProgressive);
  // The other field would begin behind the frame, or end before it.
  EXPECT_DEATH(splitIntoFields({263, 263}, 525), toRaster);
  EXPECT_DEATH(splitIntoFields({1, 1}, 525), toRaster);
}

TEST(VidStdDeathTest, StopsTheProgramAtFieldsThatDoNotBelongTogether) {
  const char* const function = "vidRange_t fieldToProgRange(const vidRangePair_t&, uint32_t)";
  const std::string count = assertionPattern("vid_std", function, "num == 2 || num == 4");
  const std::string neighbours =
      assertionPattern("vid_std", function, "tuple[0] == tuple[1] + 1 || tuple[0] == tuple[1] - 1");
  EXPECT_DEATH(fieldToProgRange({{{0, 0}, {0, 0}}}, 1125), count);
  EXPECT_DEATH(fieldToProgRange({{{21, 0}, {0, 0}}}, 1125), count);
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {584, 0}}}, 1125), count);
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {0, 1123}}}, 1125), count);
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {585, 1123}}}, 1125), neighbours);  // starts
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {582, 1123}}}, 1125), neighbours);
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {584, 1124}}}, 1125), neighbours);  // stops
  EXPECT_DEATH(fieldToProgRange({{{21, 560}, {584, 1121}}}, 1125), neighbours);
}

TEST(VidStdDeathTest, StopsTheProgramAtAnExtentBackToFront) {
  EXPECT_DEATH(
      calcOutsideRegion({338, 308}, {1, 625}),
      assertionPattern("vid_std",
                       "vidRangePair_t calcOutsideRegion(const vidRange_t&, const vidRange_t&)",
                       "in.stop >= in.start"));
}

}  // namespace

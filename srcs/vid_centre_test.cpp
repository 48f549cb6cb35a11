#include "vid_centre.h"

#include <gtest/gtest.h>

#include "tests/support/assertion.h"

namespace {

constexpr uint32_t MAX = UINT32_MAX;

TEST(CalcCentreRangeOffset, HalvesTheSurplus) {
  const struct {
    uint32_t rangeSize, fullSize;
    bool roundUp;
    uint32_t offset;
  } cases[] = {
      {1062, 1080, false, 9},   {1062, 1080, true, 9},        // even surplus: rounding is no matter
      {1017, 1020, false, 1},   {1017, 1020, true, 2},        // odd surplus
      {1080, 1080, false, 0},   {1080, 1080, true, 0},        // nothing to spare
      {1079, 1080, false, 0},   {1079, 1080, true, 1},        //
      {0, MAX, false, MAX / 2}, {0, MAX, true, MAX / 2 + 1},  // no wrap at the largest sizes
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.rangeSize << " in " << c.fullSize << ", " << c.roundUp);
    EXPECT_EQ(calcCentreRangeOffset(c.rangeSize, c.fullSize, c.roundUp), c.offset);
  }
}

TEST(CalcCentreRange, PlacesTheSizeInTheMiddle) {
  const struct {
    uint32_t size;
    vidRange_t within;
    bool roundUp;
    vidRange_t centred;
  } cases[] = {
      {1062, {42, 1121}, true, {51, 1112}}, {1888, {0, 1919}, true, {16, 1903}},
      {3, {10, 15}, true, {12, 14}},  // the odd line comes first
      {3, {10, 15}, false, {11, 13}},       {1, {7, 7}, true, {7, 7}},
      {6, {10, 15}, true, {10, 15}},        {2, {MAX - 1, MAX}, true, {MAX - 1, MAX}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.size << " in " << c.within.start << ".." << c.within.stop);
    EXPECT_EQ(calcCentreRange(c.size, c.within, c.roundUp), c.centred);
  }
}

TEST(CalcVidCentre, FallsOnOneOrBetweenTwo) {
  const struct {
    vidRange_t extent;
    vidCentre_t centre;
  } cases[] = {
      {{0, 1919}, {.pixelHigh = 960, .pixelLow = 959}},
      {{42, 1121}, {.pixelHigh = 582, .pixelLow = 581}},
      {{39, 525}, {.pixelHigh = 282, .pixelLow = 282}},
      {{7, 7}, {.pixelHigh = 7, .pixelLow = 7}},
      {{7, 8}, {.pixelHigh = 8, .pixelLow = 7}},
      {{0, MAX}, {.pixelHigh = MAX / 2 + 1, .pixelLow = MAX / 2}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.extent.start << ".." << c.extent.stop);
    EXPECT_EQ(calcVidCentre(c.extent), c.centre);
  }
}

TEST(VidCentreDeathTest, StopsTheProgramWithItsPrecondition) {
  EXPECT_DEATH(
      calcCentreRangeOffset(11, 10, true),
      assertionPattern("vid_centre", "uint32_t calcCentreRangeOffset(uint32_t, uint32_t, bool)",
                       "rangeSize <= fullSize"));
  EXPECT_DEATH(calcCentreRange(1, {5, 4}, true),
               assertionPattern("vid_centre",
                                "vidRange_t calcCentreRange(uint32_t, const vidRange_t&, bool)",
                                "e.stop >= e.start"));
  // A range that does not fit is found by the offset.
  EXPECT_DEATH(
      calcCentreRange(3, {4, 5}, true),
      assertionPattern("vid_centre", "uint32_t calcCentreRangeOffset(uint32_t, uint32_t, bool)",
                       "rangeSize <= fullSize"));
  EXPECT_DEATH(calcVidCentre({5, 4}),
               assertionPattern("vid_centre", "vidCentre_t calcVidCentre(const vidRange_t&)",
                                "e.stop >= e.start"));
}

}  // namespace

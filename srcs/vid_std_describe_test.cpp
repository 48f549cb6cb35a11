#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/assertion.h"
#include "vid_std.h"

namespace {

std::string descriptionOf(const vidStd_t& standard) {
  char* text = nullptr;
  size_t size = 0;
  std::FILE* const out = open_memstream(&text, &size);
  describeVidStd(standard, out);
  EXPECT_EQ(std::fclose(out), 0);
  std::string description(text, size);
  std::free(text);
  return description;
}

const vidStd_t& standardOfRow(size_t row) { return vidStds()[row - 1]; }

class DescribeVidStd : public testing::Test {
 protected:
  static void SetUpTestSuite() { initVidStdTables(); }
};

TEST_F(DescribeVidStd, Interlaced) {
  EXPECT_EQ(descriptionOf(standardOfRow(6)), R"(1080i/50
2640 samples x 1125 lines interlaced
Pixel aspect ratio = 1:1
Frame rate = 25Hz
Sampling frequency = 74.25MHz
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Blanking: field 1 line 1 to 20 and 561 to 563
Blanking: field 2 line 564 to 583 and 1124 to 1125
Production aperture
1920 samples x 1080 lines
Sample range: 0 to 1919
Line range: Field 1: 21 to 560
Line range: Field 2: 584 to 1123
Aspect ratio = 16:9
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Clean aperture
1888 samples x 1062 lines
Sample range: 16 to 1903
Line range: Field 1: 26 to 556
Line range: Field 2: 588 to 1118
Aspect ratio = 16:9
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Digital timing references
F=0: 1
F=1: 564
Field 1 blanking: V=1: 1124, V=0: 21
Field 2 blanking: V=1: 561, V=0: 584
Switch point: 7 569
)");
}

TEST_F(DescribeVidStd, Progressive) {
  EXPECT_EQ(descriptionOf(standardOfRow(21)), R"(720p/50
1980 samples x 750 lines progressive
Pixel aspect ratio = 1:1
Frame rate = 50Hz
Sampling frequency = 74.25MHz
Centre: between samples 639 and 640
Centre: between lines 385 and 386
Blanking: line 1 to 25 and 746 to 750
Production aperture
1280 samples x 720 lines
Sample range: 0 to 1279
Line range: 26 to 745
Aspect ratio = 16:9
Centre: between samples 639 and 640
Centre: between lines 385 and 386
Clean aperture
1248 samples x 702 lines
Sample range: 16 to 1263
Line range: 35 to 736
Aspect ratio = 16:9
Centre: between samples 639 and 640
Centre: between lines 385 and 386
Digital timing references
Frame start: 1
Blanking: V=1: 746, V=0: 26
Switch point: 7
)");
}

TEST_F(DescribeVidStd, SegmentedFrame) {
  EXPECT_EQ(descriptionOf(standardOfRow(16)), R"(1080p/23.98sF
2750 samples x 1125 lines p/sF
Pixel aspect ratio = 1:1
Frame rate = 24/1.001Hz
Sampling frequency = 74.25/1.001MHz
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Blanking: field 1 line 1 to 20 and 561 to 563
Blanking: field 2 line 564 to 583 and 1124 to 1125
Production aperture
1920 samples x 1080 lines
Sample range: 0 to 1919
Line range: Field 1: 21 to 560
Line range: Field 2: 584 to 1123
Aspect ratio = 16:9
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Clean aperture
1888 samples x 1062 lines
Sample range: 16 to 1903
Line range: Field 1: 26 to 556
Line range: Field 2: 588 to 1118
Aspect ratio = 16:9
Centre: between samples 959 and 960
Centre: between lines 853 and 291
Digital timing references
F=0: 1
F=1: 564
Field 1 blanking: V=1: 1124, V=0: 21
Field 2 blanking: V=1: 561, V=0: 584
Switch point: 7 569
)");
}

// Its fields have blanking on one side only, and 487 lines have one in the middle.
TEST_F(DescribeVidStd, WithoutCleanAperture) {
  EXPECT_EQ(descriptionOf(standardOfRow(30)), R"(525i/59.94
858 samples x 525 lines interlaced
Pixel aspect ratio = 487:540
Frame rate = 30/1.001Hz
Sampling frequency = 13.50/1.001MHz
Centre: between samples 359 and 360
Centre: on line 404
Blanking: field 1 line 1 to 19
Blanking: field 2 line 264 to 282
Production aperture
720 samples x 487 lines
Sample range: 0 to 719
Line range: Field 1: 20 to 263
Line range: Field 2: 283 to 525
Aspect ratio = 4:3
Centre: between samples 359 and 360
Centre: on line 404
Clean aperture not defined
Digital timing references
F=0: 4
F=1: 266
Field 1 blanking: V=1: 1, V=0: 20
Field 2 blanking: V=1: 264, V=0: 283
Switch point: 10 273
)");
}

// The standard's centre is the clean aperture's, which the production aperture does not share.
TEST_F(DescribeVidStd, CentredOnTheCleanAperture) {
  EXPECT_EQ(descriptionOf(standardOfRow(34)), R"(480p/59.94
858 samples x 525 lines progressive
Pixel aspect ratio = 161:135
Frame rate = 60/1.001Hz
Sampling frequency = 27.00/1.001MHz
Centre: between samples 359 and 360
Centre: between lines 283 and 284
Blanking: line 1 to 42
Production aperture
720 samples x 483 lines
Sample range: 0 to 719
Line range: 43 to 525
Aspect ratio = 16:9
Centre: between samples 359 and 360
Centre: on line 284
Clean aperture
708 samples x 480 lines
Sample range: 6 to 713
Line range: 44 to 523
Aspect ratio = 9499:5400
Centre: between samples 359 and 360
Centre: between lines 283 and 284
Digital timing references
Frame start: 1
Blanking: V=1: 1, V=0: 43
Switch point: 10
)");
}

TEST_F(DescribeVidStd, WritesFractionsOfTheSamplingFrequencyWithTwoDigits) {
  vidStd_t standard = standardOfRow(21);
  standard.fs = 7405;
  EXPECT_NE(descriptionOf(standard).find("\nSampling frequency = 74.05MHz\n"), std::string::npos);
}

TEST_F(DescribeVidStd, SaysSoOfAnUnknownScan) {
  vidStd_t standard = standardOfRow(6);
  standard.scan = static_cast<vidScan_t>(3);
  EXPECT_NE(descriptionOf(standard).find("\n2640 samples x 1125 lines Unknown\n"),
            std::string::npos);
}

TEST(DescribeVidStdDeathTest, StopsTheProgramWithoutAnApertureToTakeTheCentreFrom) {
  vidStd_t standard = standardOfRow(27);
  standard.prodCentre = false;
  EXPECT_DEATH(describeVidStd(standard),
               assertionPattern("vid_std_describe", "void describeVidStd(const vidStd_t&, FILE*)",
                                "standard.prodCentre || standard.cleanAp != nullptr"));
}

}  // namespace

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <span>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/assertion.h"
#include "tests/support/listing.h"
#include "vid_std.h"

namespace {

// The catalogue as it was before any test completed it.
struct Catalogue {
  std::vector<vidStd_t> standards{vidStds().begin(), vidStds().end()};
  std::vector<vidExtent_t> prodAps{vidProdAps().begin(), vidProdAps().end()};
  std::vector<vidExtent_t> cleanAps{vidCleanAps().begin(), vidCleanAps().end()};
  vidMaxima_t maxima = vidMaxima();
};
const Catalogue BEFORE;

// One tab-separated line of the listing.
template <typename... Fields>
std::string lineOf(const Fields&... fields) {
  std::ostringstream out;
  const char* separator = "";
  ((out << separator << fields, separator = "\t"), ...);
  return out.str();
}

std::string lineOfAperture(const std::string& id, const vidExtent_t& a) {
  return lineOf(id, a.dim.sample, a.dim.line, a.sampleRange.start, a.sampleRange.stop, a.v[0].start,
                a.v[0].stop, a.v[1].start, a.v[1].stop, a.aspectRatio.num, a.aspectRatio.den,
                a.hCentre.pixelHigh, a.hCentre.pixelLow, a.vCentre.pixelHigh, a.vCentre.pixelLow);
}

std::string idOf(const char* list, std::span<const vidExtent_t> apertures, const vidExtent_t* a) {
  return a == nullptr ? "-" : list + std::to_string(a - apertures.data());
}

std::string lineOfStandard(size_t row, const vidStd_t& v) {
  return lineOf(row, v.name, v.total.sample, v.total.line, uint32_t{v.scan},
                idOf("PA", vidProdAps(), v.prodAp), idOf("CA", vidCleanAps(), v.cleanAp),
                v.pixelAspect.num, v.pixelAspect.den, v.prodCentre, v.rate, v.rate1001, v.fs,
                v.sdFlag, v.timing.field1V1, v.timing.field1V0, v.timing.field2V1,
                v.timing.field2V0, v.timing.f0, v.timing.f1, v.switchPoints[0], v.switchPoints[1]);
}

std::string lineOfBlanking(size_t row, const vidStd_t& v) {
  const auto& [field1, field2] = v.blanking;
  return lineOf(row, v.name, field1[0].start, field1[0].stop, field1[1].start, field1[1].stop,
                field2[0].start, field2[0].stop, field2[1].start, field2[1].stop);
}

std::string lineOfFormat(size_t row, const vidFormat_t& f) {
  return lineOf(row, f.name, f.dim.sample, f.dim.line, f.progressive, f.rate, f.rate1001);
}

std::string lineOfMaxima(const vidMaxima_t& m) {
  return lineOf(m.total.sample, m.total.line, m.prodAp.sample, m.prodAp.line, m.cleanAp.sample,
                m.cleanAp.line);
}

std::vector<std::string> linesOfApertures(std::span<const vidExtent_t> prodAps,
                                          std::span<const vidExtent_t> cleanAps) {
  std::vector<std::string> lines;
  for (size_t i = 0; i < prodAps.size(); i++) {
    lines.push_back(lineOfAperture("PA" + std::to_string(i), prodAps[i]));
  }
  for (size_t i = 0; i < cleanAps.size(); i++) {
    lines.push_back(lineOfAperture("CA" + std::to_string(i), cleanAps[i]));
  }
  return lines;
}

// The lines that `lineOfRow` makes of a table's rows, counted from 1.
template <typename Rows, typename LineOfRow>
std::vector<std::string> linesOf(const Rows& rows, LineOfRow lineOfRow) {
  std::vector<std::string> lines;
  lines.reserve(rows.size());
  for (const auto& row : rows) lines.push_back(lineOfRow(lines.size() + 1, row));
  return lines;
}

void expectLines(const std::vector<std::string>& lines, const std::string& listing) {
  SCOPED_TRACE(listing);
  const std::vector<std::string> expected = readListing(listing);
  ASSERT_EQ(lines.size(), expected.size());
  for (size_t i = 0; i < lines.size(); i++) EXPECT_EQ(lines[i], expected[i]);
}

void expectAllCompleted() {
  expectLines(linesOf(vidStds(), lineOfStandard), "standards.tsv");
  expectLines(linesOf(vidStds(), lineOfBlanking), "blanking_after.tsv");
  expectLines(linesOfApertures(vidProdAps(), vidCleanAps()), "apertures_after.tsv");
  expectLines({lineOfMaxima(vidMaxima())}, "maxima_after.tsv");
  expectLines(linesOf(vidFormats(), lineOfFormat), "formats.tsv");
}

TEST(VidStdTables, HoldTheListingBeforeCompletion) {
  expectLines(linesOf(BEFORE.standards, lineOfStandard), "standards.tsv");
  expectLines(linesOfApertures(BEFORE.prodAps, BEFORE.cleanAps), "apertures_before.tsv");
  for (const vidStd_t& v : BEFORE.standards) {
    EXPECT_EQ(lineOfBlanking(0, v), lineOf(0, v.name, 0, 0, 0, 0, 0, 0, 0, 0));
  }
  EXPECT_EQ(lineOfMaxima(BEFORE.maxima), lineOf(0, 0, 0, 0, 0, 0));
}

TEST(VidStdTables, HoldTheListingAfterCompletion) {
  initVidStdTables();
  expectAllCompleted();
}

TEST(VidStdTables, StayAsTheyAreWhenCompletedAgain) {
  initVidStdTables();
  initVidStdTables();
  expectAllCompleted();
}

TEST(VidStdTables, HaveTheKnownHeightsAndCentres) {
  initVidStdTables();
  const struct {
    size_t aperture;
    uint32_t lines;
    vidCentre_t vCentre;
  } cases[] = {
      {0, 1080, {582, 581}},  {1, 1080, {291, 853}},  {2, 1035, {299, 299}}, {3, 720, {386, 385}},
      {4, 576, {167, 479}},   {5, 576, {167, 479}},   {6, 576, {333, 332}},  {7, 487, {404, 404}},
      {8, 487, {404, 404}},   {9, 486, {404, 141}},   {10, 480, {143, 405}}, {11, 483, {284, 284}},
      {12, 1080, {582, 581}}, {13, 1080, {291, 853}},
  };
  EXPECT_EQ(std::size(cases), vidProdAps().size());
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "PA" << c.aperture);
    EXPECT_EQ(vidProdAps()[c.aperture].dim.line, c.lines);
    EXPECT_EQ(vidProdAps()[c.aperture].vCentre, c.vCentre);
  }
}

TEST(VidStdTables, HaveTheKnownLines) {
  initVidStdTables();
  const struct {
    const vidExtent_t& aperture;
    vidRangePair_t v;
    vidDim_t dim;
  } cases[] = {
      {vidProdAps()[9], {{{20, 262}, {283, 525}}}, {720, 486}},
      {vidCleanAps()[0], {{{51, 1112}, {0, 0}}}, {1888, 1062}},
      {vidCleanAps()[4], {{{26, 308}, {338, 620}}}, {690, 566}},
      {vidCleanAps()[5], {{{22, 261}, {284, 523}}}, {708, 480}},
      {vidCleanAps()[7], {{{51, 1112}, {0, 0}}}, {2014, 1062}},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << c.dim.sample << " x " << c.dim.line);
    EXPECT_EQ(c.aperture.v, c.v);
    EXPECT_EQ(c.aperture.dim, c.dim);
  }
}

TEST(VidStdTables, HaveTheKnownMaxima) {
  initVidStdTables();
  EXPECT_EQ(vidMaxima().total, (vidDim_t{8250, 1125}));
  EXPECT_EQ(vidMaxima().prodAp, (vidDim_t{2048, 1080}));
  EXPECT_EQ(vidMaxima().cleanAp, (vidDim_t{2014, 1062}));
}

// Death tests spoil the tables, which is for the dying process alone: the rows are no constants.
vidExtent_t& prodAp(size_t i) { return const_cast<vidExtent_t&>(vidProdAps()[i]); }
vidExtent_t& cleanAp(size_t i) { return const_cast<vidExtent_t&>(vidCleanAps()[i]); }
vidStd_t& standard(size_t row) { return const_cast<vidStd_t&>(vidStds()[row - 1]); }

TEST(VidStdTablesDeathTest, StopTheProgramAtRowsThatContradictEachOther) {
  // Rows 1 and 4 are the first progressive and interlaced ones, with PA0, CA0 and PA1, CA1.
  static vidExtent_t unlisted = vidProdAps()[0];
  const struct {
    const char* fault;
    void (*spoil)();
    const char* expression;
  } cases[] = {
      {"an aperture without width", [] { prodAp(13).dim.sample = 0; }, "(*ap)->dim.sample != 0"},
      {"no production aperture", [] { standard(78).prodAp = nullptr; }, "(*v)->prodAp != __null"},
      {"no clean aperture to take the centre from", [] { standard(27).prodCentre = false; },
       "(*v)->prodCentre || (*v)->cleanAp != __null"},
      {"an unlisted production aperture", [] { standard(1).prodAp = &unlisted; }, "a != __null"},
      {"an unlisted clean aperture", [] { standard(1).cleanAp = &unlisted; }, "cleanAp != __null"},
      {"an unlisted clean aperture, before anything else of the row",
       [] {
         standard(1).cleanAp = &unlisted;
         prodAp(0).v[1].start = 7;
       },
       "cleanAp != __null"},
      {"a field 2 start in a progressive standard", [] { prodAp(0).v[1].start = 7; },
       "prodAp->v[1].start == 0"},
      {"a field 2 stop in a progressive standard", [] { prodAp(0).v[1].stop = 7; },
       "prodAp->v[1].stop == 0"},
      {"another centre in a progressive standard",
       [] {
         prodAp(0).vCentre = {581, 581};
       },
       "prodAp->vCentre.pixelHigh == c.pixelHigh"},
      {"another low centre in a progressive standard",
       [] {
         prodAp(0).vCentre = {582, 0};
       },
       "prodAp->vCentre.pixelLow == c.pixelLow"},
      {"another centre in an interlaced standard",
       [] {
         prodAp(1).vCentre = {0, 853};
       },
       "prodAp->vCentre.pixelHigh == c.pixelHigh"},
      {"another low centre in an interlaced standard",
       [] {
         prodAp(1).vCentre = {291, 854};
       },
       "prodAp->vCentre.pixelLow == c.pixelLow"},
      {"sharing an aperture with another raster", [] { standard(6).total.line = 1127; },
       "prodAp->vCentre.pixelHigh == c.pixelHigh"},
      {"a clean aperture without lines or height, progressive",
       [] {
         cleanAp(0).v = {};
         cleanAp(0).dim.line = 0;
       },
       "cleanAp->dim.line != 0"},
      {"a clean aperture without lines or height, interlaced",
       [] {
         cleanAp(1).v = {};
         cleanAp(1).dim.line = 0;
       },
       "cleanAp->dim.line != 0"},
      {"a field 2 start in a progressive clean aperture", [] { cleanAp(0).v[1].start = 7; },
       "cleanAp->v[1].start == 0"},
      {"a field 2 stop in a progressive clean aperture", [] { cleanAp(0).v[1].stop = 7; },
       "cleanAp->v[1].stop == 0"},
      {"a clean aperture without samples or width",
       [] {
         cleanAp(0).sampleRange = {};
         cleanAp(0).dim.sample = 0;
       },
       "cleanAp->dim.sample != 0"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.fault);
    const auto run = [&c] {
      c.spoil();
      initVidStdTables();
    };
    EXPECT_DEATH(run(), assertionPattern("vid_std_table", "void initVidStdTables()", c.expression));
  }
}

// Ends a process that has tables of its own, with `text` as its last words.
[[noreturn]] void exitWith(const std::string& text) {
  std::cerr << "found " << text << "\n";
  std::exit(0);
}

// All surplus in the catalogue is even, so rounding up shows with other sizes only.
TEST(VidStdTablesDeathTest, PutAnOddLineOrSampleBeforeACleanAperture) {
  const auto centre = [](size_t aperture) {
    cleanAp(aperture).v = {};
    cleanAp(aperture).sampleRange = {};
    cleanAp(aperture).dim = {1887, 1061};
    initVidStdTables();
    const vidExtent_t& a = cleanAp(aperture);
    exitWith(lineOf(a.sampleRange.start, a.sampleRange.stop, a.v[0].start, a.v[0].stop,
                    a.v[1].start, a.v[1].stop));
  };
  EXPECT_EXIT(centre(0), testing::ExitedWithCode(0), "found 17\t1903\t52\t1112\t0\t0\n");
  EXPECT_EXIT(centre(1), testing::ExitedWithCode(0), "found 17\t1903\t26\t556\t589\t1118\n");
}

TEST(VidStdTablesDeathTest, TakeTheMaximaAnewEachTime) {
  const auto shrink = [] {
    initVidStdTables();
    // The two standards of 8250 samples; the next has 7920.
    for (const size_t row : {54U, 55U}) standard(row).total.sample = 100;
    initVidStdTables();
    exitWith(lineOfMaxima(vidMaxima()));
  };
  EXPECT_EXIT(shrink(), testing::ExitedWithCode(0), "found 7920\t1125\t2048\t1080\t2014\t1062\n");
}

// A height that a progressive clean aperture gives beside its lines is kept.
TEST(VidStdTablesDeathTest, KeepAGivenHeight) {
  const auto spoil = [] {
    initVidStdTables();
    cleanAp(6).dim.line = 479;
    initVidStdTables();
    std::exit(cleanAp(6).dim.line == 479 ? 0 : 1);
  };
  EXPECT_EXIT(spoil(), testing::ExitedWithCode(0), "");
}

}  // namespace

// The catalogue of video standards and picture formats, the line geometry of their rasters, and
// the description of a standard in text.
//
// Lines are numbered from 1, samples from 0. A raster of T lines (`tlpf`, total lines per frame)
// has field 1 in the raster lines 1 to H and field 2 in H + 1 to T, with H = (T + 1) / 2. In
// progressive order the fields interleave: progressive line 1 is the first line of field 1, line 2
// the first of field 2.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>
#include <string_view>

#include "vid_centre.h"

/// A size: samples per line and lines per frame.
struct vidDim_t {
  uint32_t sample = 0;
  uint32_t line = 0;
  bool operator==(const vidDim_t&) const = default;
};

/// A ratio, numerator first: 16:9.
struct vidRatio_t {
  uint32_t num = 0;
  uint32_t den = 0;
};

/// Two extents that belong together: those of field 1 and field 2, or those before and after an
/// aperture.
using vidRangePair_t = std::array<vidRange_t, 2>;

/// A production or clean aperture. initVidStdTables() computes what is unset (0) in its table.
struct vidExtent_t {
  vidDim_t dim;            ///< samples wide, lines high (of the whole frame)
  vidRange_t sampleRange;  ///< within the total line
  vidRangePair_t v;        ///< raster lines: frame and 0..0 (progressive), or field 1 and field 2
  vidRatio_t aspectRatio;  ///< of the picture
  vidCentre_t hCentre = {};
  vidCentre_t vCentre = {};  ///< in raster numbering
};

/// The order in which a frame's lines are scanned and sent.
enum vidScan_t : uint32_t {
  SCAN_INTERLACED = 0,
  SCAN_PROGRESSIVE = 1,
  SCAN_SEGMENTED = 2,  ///< progressive, sent as two segments like fields: a segmented frame
};

/// The raster lines at which the timing reference bits V (vertical blanking) and F (field) change.
/// For progressive standards the frame counts as field 1, f0 is the frame's first line, and the
/// other three are 0.
struct vidTiming_t {
  uint32_t field1V1 = 0;  ///< field 1 blanking start
  uint32_t field1V0 = 0;  ///< field 1 blanking end
  uint32_t field2V1 = 0;  ///< field 2 blanking start
  uint32_t field2V0 = 0;  ///< field 2 blanking end
  uint32_t f0 = 0;        ///< F becomes 0
  uint32_t f1 = 0;        ///< F becomes 1
};

/// One video standard, its fields in the order of the printed catalogue.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct vidStd_t {
  const char* name;  ///< not unique: lookups see the first row of a name only
  vidDim_t total;    ///< the whole raster, blanking included
  vidScan_t scan;
  const vidExtent_t* prodAp;   ///< the production aperture, never null
  const vidExtent_t* cleanAp;  ///< the clean aperture; null: the standard defines none
  vidRatio_t pixelAspect;      ///< width of a pixel to its height
  bool prodCentre;  ///< the picture's centre is the production aperture's, else the clean one's
  uint32_t rate;    ///< frames per second in whole hertz
  bool rate1001;    ///< the true rate and fs are 1/1.001 of `rate` and `fs`
  uint32_t fs;      ///< sampling frequency in units of 10 kHz
  bool sdFlag;      ///< interlaced standard definition
  vidTiming_t timing;
  std::array<uint32_t, 2> switchPoints;  ///< lines; the second is 0 for progressive standards
  /// For each field the lines outside the production aperture: before it and after it, or the one
  /// side that there is and 0..0. Progressive standards use the first pair only. Computed by
  /// initVidStdTables().
  std::array<vidRangePair_t, 2> blanking = {};
};

/// A picture format: a picture without raster or blanking. Its fields are in the order of the
/// printed catalogue.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct vidFormat_t {
  const char* name;
  vidDim_t dim;      ///< of the picture
  bool progressive;  ///< else interlaced
  uint32_t rate;     ///< frames per second in whole hertz
  bool rate1001;     ///< the true rate is 1/1.001 of `rate`
};

/// The largest sizes in the catalogue, each number by itself; all 0 before initVidStdTables().
struct vidMaxima_t {
  vidDim_t total;    ///< of the rasters
  vidDim_t prodAp;   ///< of the production apertures
  vidDim_t cleanAp;  ///< of the clean apertures
};

/// Completes the catalogue (heights, ranges, centres, blanking, maxima) and stops the program when
/// its rows contradict each other. A program calls it once, at start-up; calling it again changes
/// nothing.
void initVidStdTables();

/// The standards in table order. This and all other views of the catalogue, pointers to its rows
/// included, are valid as long as the process, as the tables are static.
std::span<const vidStd_t> vidStds();
/// The production apertures in table order. Standards share them.
std::span<const vidExtent_t> vidProdAps();
/// The clean apertures in table order. Standards share them.
std::span<const vidExtent_t> vidCleanAps();
/// The picture formats in table order.
std::span<const vidFormat_t> vidFormats();
/// The largest sizes of all standards and their apertures.
const vidMaxima_t& vidMaxima();

/// The first standard in table order whose name begins `text`, or null: "1080p/25sF" finds
/// "1080p/25", as that row comes before the one of the full name. Upper and lower case differ.
/// Takes time in proportion to the table.
const vidStd_t* findVidStd(std::string_view text);

/// The first picture format in table order whose name begins `text`, or null; as findVidStd().
const vidFormat_t* findVidFormat(std::string_view text);

/// What a value selects: one of the two, or neither.
struct vidSelection_t {
  const vidStd_t* standard = nullptr;
  const vidFormat_t* format = nullptr;
};

/// What `value` selects wherever figures follow it: the standard that findVidStd() finds, or, where
/// it finds none, the picture format that findVidFormat() finds.
vidSelection_t selectVid(std::string_view value);

/// The raster line of a progressive line: the progressive lines 1, 2, 3 of 525 are the raster lines
/// 1, 264, 2. `tlpf` is the raster's total lines per frame. Here and in all functions below, a line
/// outside 1..`tlpf` is a programming error and stops the program.
uint32_t progToIntLine(uint32_t line, uint32_t tlpf);

/// The progressive line of a raster line: the inverse of progToIntLine().
uint32_t intToProgLine(uint32_t line, uint32_t tlpf);

/// progToIntLine() of both ends of a progressive extent. In raster numbering an extent that runs
/// from a line of field 2 to one of field 1 has its start above its stop.
vidRange_t progToIntRange(const vidRange_t& e, uint32_t tlpf);
/// intToProgLine() of both ends of a raster extent.
vidRange_t intToProgRange(const vidRange_t& e, uint32_t tlpf);

/// The progressive extent that both fields' raster extents cover together. Ends of 0 are not given:
/// one field alone, or one extent over both fields, is converted by intToProgRange(). It is a
/// programming error that stops the program when none, one or three of the four ends are given, or
/// when the fields' first or last lines are no neighbours in the picture.
vidRange_t fieldToProgRange(const vidRangePair_t& fields, uint32_t tlpf);

/// The share of each field in a raster extent of at least two lines: 20..525 of 525 lines
/// is 20..262 and 283..525, 338..308 of 625 is 26..308 and 338..620.
vidRangePair_t splitIntoFields(const vidRange_t& e, uint32_t tlpf);

/// The raster extent of `size` lines centred in what both fields cover together; the preconditions
/// are those of calcCentreRange() and fieldToProgRange().
vidRange_t calcCentreFieldRange(uint32_t size, const vidRangePair_t& fields, uint32_t tlpf,
                                bool roundUp);

/// The middle of what both fields cover together (see fieldToProgRange()), in raster numbering.
vidCentre_t calcFieldCentre(const vidRangePair_t& fields, uint32_t tlpf);

/// What of `full` lies outside `in`: the extent before `in` and the extent after it; where only one
/// of the two exists, that one and 0..0; where neither does, 0..0 twice. `in` is meant to lie
/// within `full`. `in.stop` < `in.start` is a programming error and stops the program.
vidRangePair_t calcOutsideRegion(const vidRange_t& in, const vidRange_t& full);

/// Writes the full description of a completed standard to `out`, a line for each property. A
/// standard with neither prodCentre nor a clean aperture is a programming error and stops the
/// program.
void describeVidStd(const vidStd_t& standard, std::FILE* out = stdout);

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

/// A production or clean aperture. What is unset in its table, initVidStdTables() computes.
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

/// The lines at which the timing reference bits V (vertical blanking) and F (field) change. For
/// progressive standards the frame counts as field 1, F = 0 is the frame's first line, and the rest
/// is 0.
struct vidTiming_t {
  uint32_t field1V1 = 0;  ///< field 1 blanking start
  uint32_t field1V0 = 0;  ///< field 1 blanking end
  uint32_t field2V1 = 0;
  uint32_t field2V0 = 0;
  uint32_t f0 = 0;
  uint32_t f1 = 0;
};

/// One video standard, its fields in the order of the printed catalogue.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct vidStd_t {
  const char* name;  ///< not unique: lookups see the first row of a name only
  vidDim_t total;    ///< the whole raster, blanking included
  vidScan_t scan;
  const vidExtent_t* prodAp;
  const vidExtent_t* cleanAp;  ///< null: the standard defines none
  vidRatio_t pixelAspect;
  bool prodCentre;  ///< the picture's centre is the production aperture's, else the clean one's
  uint32_t rate;    ///< frames per second in whole hertz
  bool rate1001;    ///< the true rate and fs are 1/1.001 of those given
  uint32_t fs;      ///< sampling frequency in units of 10 kHz
  bool sdFlag;      ///< interlaced standard definition
  vidTiming_t timing;
  std::array<uint32_t, 2> switchPoints;  ///< lines; the second is 0 for progressive standards
  /// For each field the lines outside the production aperture: before it and after it, or the one
  /// side that there is and 0..0. Progressive standards use the first pair only. Computed by
  /// initVidStdTables().
  std::array<vidRangePair_t, 2> blanking = {};
};

/// A picture as such, without raster or blanking; its fields likewise.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct vidFormat_t {
  const char* name;
  vidDim_t dim;
  bool progressive;
  uint32_t rate;  ///< frames per second in whole hertz
  bool rate1001;  ///< the true rate is 1/1.001 of it
};

/// The largest sizes in the catalogue, each number by itself; all 0 before initVidStdTables().
struct vidMaxima_t {
  vidDim_t total;
  vidDim_t prodAp;
  vidDim_t cleanAp;
};

/// Completes the catalogue (heights, ranges, centres, blanking, maxima) and stops the program when
/// its rows contradict each other. Called once, at start-up; calling it again changes nothing.
void initVidStdTables();

/// The catalogue, in table order. Apertures are shared between standards.
std::span<const vidStd_t> vidStds();
std::span<const vidExtent_t> vidProdAps();
std::span<const vidExtent_t> vidCleanAps();
std::span<const vidFormat_t> vidFormats();
const vidMaxima_t& vidMaxima();

/// The first standard in table order whose name begins `text`, or null: "1080p/25sF" finds
/// "1080p/25", as that row stands before the one of the full name.
const vidStd_t* findVidStd(std::string_view text);

/// The first picture format in table order whose name begins `text`, or null.
const vidFormat_t* findVidFormat(std::string_view text);

/// What a value selects; at most one of the two is set.
struct vidSelection_t {
  const vidStd_t* standard = nullptr;
  const vidFormat_t* format = nullptr;
};

/// What `value` selects wherever figures follow it: the standard that findVidStd() finds, or, where
/// it finds none, the picture format that findVidFormat() finds.
vidSelection_t selectVid(std::string_view value);

/// The raster line of a progressive line. A `line` outside 1..`tlpf` is a programming error and
/// stops the program; so it does in all that follow.
uint32_t progToIntLine(uint32_t line, uint32_t tlpf);

/// The progressive line of a raster line.
uint32_t intToProgLine(uint32_t line, uint32_t tlpf);

/// The same for both ends of an extent. In raster numbering an extent that runs from a line of
/// field 2 to one of field 1 has its start above its stop.
vidRange_t progToIntRange(const vidRange_t& e, uint32_t tlpf);
vidRange_t intToProgRange(const vidRange_t& e, uint32_t tlpf);

/// The progressive extent that both fields' raster extents cover together. Ends of 0 are left out,
/// so one field alone, or one extent over both, is converted as it stands. Stops the program when
/// none, one or three of the four ends are given, or when the fields' first or last lines are no
/// neighbours in the picture.
vidRange_t fieldToProgRange(const vidRangePair_t& fields, uint32_t tlpf);

/// The share of each field in a raster extent of at least two lines: 20..525 of 525 lines
/// is 20..262 and 283..525, 338..308 of 625 is 26..308 and 338..620.
vidRangePair_t splitIntoFields(const vidRange_t& e, uint32_t tlpf);

/// The raster extent of `size` lines centred in what both fields cover together, see
/// calcCentreRange().
vidRange_t calcCentreFieldRange(uint32_t size, const vidRangePair_t& fields, uint32_t tlpf,
                                bool roundUp);

/// The middle of what both fields cover together, in raster numbering.
vidCentre_t calcFieldCentre(const vidRangePair_t& fields, uint32_t tlpf);

/// What of `full` lies outside `in`: the extent before and the one after it, the one side that
/// there is and 0..0, or 0..0 twice. `in` is meant to lie within `full`. `in.stop` < `in.start` is
/// a programming error and stops the program.
vidRangePair_t calcOutsideRegion(const vidRange_t& in, const vidRange_t& full);

/// Writes the full description of a completed standard to `out`, a line for each property. A
/// standard with neither prodCentre nor a clean aperture is a programming error and stops the
/// program.
void describeVidStd(const vidStd_t& standard, std::FILE* out = stdout);

// Extents of lines or samples: their centre, and the placing of one in the middle of another.
//
// Plain arithmetic on uint32_t: no function allocates or raises. Programming errors stop the
// program by assertions, in every build.
#pragma once

#include <cstdint>

/// A run of lines or samples, both ends inclusive: its size is stop - start + 1, which has to fit
/// into 32 bits. 0..0 means unset.
struct vidRange_t {
  uint32_t start = 0;
  uint32_t stop = 0;
  bool operator==(const vidRange_t&) const = default;
};

/// The middle of an extent: the two neighbours between which it falls, or twice the one line or
/// sample on which it falls. Both names say pixel, for lines too. Low is the neighbour that comes
/// first in the picture; in raster numbering it can have the higher number, as the neighbours are
/// then of different fields. 0 and 0 mean unset.
struct vidCentre_t {
  uint32_t pixelHigh = 0;
  uint32_t pixelLow = 0;
  bool operator==(const vidCentre_t&) const = default;
};

/// How many of `fullSize` lines or samples are before `rangeSize` of them in the middle: half of
/// the surplus. Of an odd surplus, the odd line or sample is before the range when `roundUp` is
/// set, else behind it: 2 for 1017 of 1020 rounded up, else 1. `rangeSize` > `fullSize` is a
/// programming error and stops the program.
uint32_t calcCentreRangeOffset(uint32_t rangeSize, uint32_t fullSize, bool roundUp);

/// The extent of `size` (at least 1) lines or samples in the middle of `e`, whose start is
/// calcCentreRangeOffset() behind that of `e`: 1062 in 42..1121, rounded up, is 51..1112. `e.stop`
/// < `e.start` or a `size` above that of `e` is a programming error and stops the program.
vidRange_t calcCentreRange(uint32_t size, const vidRange_t& e, bool roundUp);

/// The middle of `e`: between 959 and 960 for 0..1919, on 7 for 7..7. `e.stop` < `e.start` is a
/// programming error and stops the program.
vidCentre_t calcVidCentre(const vidRange_t& e);

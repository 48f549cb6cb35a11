#include "vid_centre.h"

#include <cassert>

uint32_t calcCentreRangeOffset(uint32_t rangeSize, uint32_t fullSize, bool roundUp) {
  assert(rangeSize <= fullSize);
  const uint32_t surplus = fullSize - rangeSize;
  // Adding 1 before the division could wrap.
  return surplus / 2 + (roundUp ? surplus % 2 : 0);
}

vidRange_t calcCentreRange(uint32_t size, const vidRange_t& e, bool roundUp) {
  assert(e.stop >= e.start);
  const uint32_t offset = calcCentreRangeOffset(size, e.stop - e.start + 1, roundUp);
  const uint32_t start = e.start + offset;
  return {start, start + size - 1};
}

vidCentre_t calcVidCentre(const vidRange_t& e) {
  assert(e.stop >= e.start);
  // The steps from the first to the last are one fewer than the extent's size: an odd number of
  // steps is an even size, whose middle falls between two.
  const uint32_t steps = e.stop - e.start;
  const uint32_t low = e.start + steps / 2;
  return {.pixelHigh = low + steps % 2, .pixelLow = low};
}

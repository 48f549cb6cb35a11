#include <cassert>

#include "vid_std.h"

namespace {

const char* scanText(vidScan_t scan) {
  switch (scan) {
    case SCAN_INTERLACED:
      return "interlaced";
    case SCAN_PROGRESSIVE:
      return "progressive";
    case SCAN_SEGMENTED:
      return "p/sF";
  }
  return "Unknown";
}

void printRange(std::FILE* out, const vidRange_t& range) {
  std::fprintf(out, "%u to %u", range.start, range.stop);
}

void printRatio(std::FILE* out, const char* title, const vidRatio_t& ratio) {
  std::fprintf(out, "%s = %u:%u\n", title, ratio.num, ratio.den);
}

void printCentre(std::FILE* out, const char* unit, const vidCentre_t& centre) {
  if (centre.pixelLow == centre.pixelHigh) {
    std::fprintf(out, "Centre: on %s %u\n", unit, centre.pixelLow);
  } else {
    std::fprintf(out, "Centre: between %ss %u and %u\n", unit, centre.pixelLow, centre.pixelHigh);
  }
}

void printCentres(std::FILE* out, const vidExtent_t& aperture) {
  printCentre(out, "sample", aperture.hCentre);
  printCentre(out, "line", aperture.vCentre);
}

void printBlanking(std::FILE* out, const vidRangePair_t& lines) {
  printRange(out, lines[0]);
  if (lines[1].start != 0 && lines[1].stop != 0) {
    std::fputs(" and ", out);
    printRange(out, lines[1]);
  }
  std::fputs("\n", out);
}

void printBlankings(std::FILE* out, const vidStd_t& standard) {
  if (standard.scan == SCAN_PROGRESSIVE) {
    std::fputs("Blanking: line ", out);
    printBlanking(out, standard.blanking[0]);
    return;
  }
  for (uint32_t field = 0; field < 2; field++) {
    std::fprintf(out, "Blanking: field %u line ", field + 1);
    printBlanking(out, standard.blanking[field]);
  }
}

void printLineRanges(std::FILE* out, const vidExtent_t& aperture, bool progressive) {
  if (progressive) {
    std::fputs("Line range: ", out);
    printRange(out, aperture.v[0]);
    std::fputs("\n", out);
    return;
  }
  for (uint32_t field = 0; field < 2; field++) {
    std::fprintf(out, "Line range: Field %u: ", field + 1);
    printRange(out, aperture.v[field]);
    std::fputs("\n", out);
  }
}

void printAperture(std::FILE* out, const char* title, const vidExtent_t* aperture,
                   bool progressive) {
  std::fputs(title, out);
  if (aperture == nullptr) {
    std::fputs(" not defined\n", out);
    return;
  }
  std::fprintf(out, "\n%u samples x %u lines\n", aperture->dim.sample, aperture->dim.line);
  std::fputs("Sample range: ", out);
  printRange(out, aperture->sampleRange);
  std::fputs("\n", out);
  printLineRanges(out, *aperture, progressive);
  printRatio(out, "Aspect ratio", aperture->aspectRatio);
  printCentres(out, *aperture);
}

void printTiming(std::FILE* out, const vidTiming_t& timing, bool progressive) {
  std::fputs("Digital timing references\n", out);
  if (progressive) {
    std::fprintf(out, "Frame start: %u\n", timing.f0);
    std::fprintf(out, "Blanking: V=1: %u, V=0: %u\n", timing.field1V1, timing.field1V0);
    return;
  }
  std::fprintf(out, "F=0: %u\n", timing.f0);
  std::fprintf(out, "F=1: %u\n", timing.f1);
  std::fprintf(out, "Field 1 blanking: V=1: %u, V=0: %u\n", timing.field1V1, timing.field1V0);
  std::fprintf(out, "Field 2 blanking: V=1: %u, V=0: %u\n", timing.field2V1, timing.field2V0);
}

}  // namespace

void describeVidStd(const vidStd_t& standard, std::FILE* out) {
  assert(standard.prodCentre || standard.cleanAp != nullptr);
  const bool progressive = standard.scan == SCAN_PROGRESSIVE;
  const char* const rateSuffix = standard.rate1001 ? "/1.001" : "";
  std::fprintf(out, "%s\n", standard.name);
  std::fprintf(out, "%u samples x %u lines %s\n", standard.total.sample, standard.total.line,
               scanText(standard.scan));
  printRatio(out, "Pixel aspect ratio", standard.pixelAspect);
  std::fprintf(out, "Frame rate = %u%sHz\n", standard.rate, rateSuffix);
  std::fprintf(out, "Sampling frequency = %u.%02u%sMHz\n", standard.fs / 100, standard.fs % 100,
               rateSuffix);
  printCentres(out, standard.prodCentre ? *standard.prodAp : *standard.cleanAp);
  printBlankings(out, standard);
  printAperture(out, "Production aperture", standard.prodAp, progressive);
  printAperture(out, "Clean aperture", standard.cleanAp, progressive);
  printTiming(out, standard.timing, progressive);
  std::fprintf(out, "Switch point: %u", standard.switchPoints[0]);
  if (!progressive) std::fprintf(out, " %u", standard.switchPoints[1]);
  std::fputs("\n", out);
}

#include "vid_std.h"

#include <algorithm>
#include <cassert>

namespace {

// The number of lines of field 1, which has the odd line of an odd total.
uint32_t field1Lines(uint32_t tlpf) { return tlpf / 2 + tlpf % 2; }

// The first row whose name is a prefix of `text`, or null.
template <typename Row>
const Row* findByName(std::span<const Row> rows, std::string_view text) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [text](const Row& r) { return text.starts_with(r.name); });
  return row == rows.end() ? nullptr : &*row;
}

}  // namespace

const vidStd_t* findVidStd(std::string_view text) { return findByName(vidStds(), text); }

const vidFormat_t* findVidFormat(std::string_view text) { return findByName(vidFormats(), text); }

vidSelection_t selectVid(std::string_view value) {
  if (const vidStd_t* const standard = findVidStd(value)) return {.standard = standard};
  return {.format = findVidFormat(value)};
}

uint32_t progToIntLine(uint32_t line, uint32_t tlpf) {
  assert(1 <= line && line <= tlpf);
  const bool inField1 = line % 2 == 1;
  return inField1 ? line / 2 + 1 : line / 2 + field1Lines(tlpf);
}

uint32_t intToProgLine(uint32_t line, uint32_t tlpf) {
  assert(1 <= line && line <= tlpf);
  const bool inField1 = line <= field1Lines(tlpf);
  return inField1 ? 2 * line - 1 : 2 * (line - field1Lines(tlpf));
}

vidRange_t progToIntRange(const vidRange_t& e, uint32_t tlpf) {
  return {progToIntLine(e.start, tlpf), progToIntLine(e.stop, tlpf)};
}

vidRange_t intToProgRange(const vidRange_t& e, uint32_t tlpf) {
  return {intToProgLine(e.start, tlpf), intToProgLine(e.stop, tlpf)};
}

vidRange_t fieldToProgRange(const vidRangePair_t& fields, uint32_t tlpf) {
  vidRange_t given;
  uint32_t num = 0;
  for (const vidRange_t& field : fields) {
    if (field.start != 0) {
      given.start = field.start;
      num++;
    }
    if (field.stop != 0) {
      given.stop = field.stop;
      num++;
    }
  }
  assert(num == 2 || num == 4);
  if (num == 2) return intToProgRange(given, tlpf);

  // In the picture, the lines of both fields alternate from the first line to the last.
  const auto inPicture = [tlpf](uint32_t line1, uint32_t line2) {
    return std::array{intToProgLine(line1, tlpf), intToProgLine(line2, tlpf)};
  };
  std::array<uint32_t, 2> tuple = inPicture(fields[0].start, fields[1].start);
  assert(tuple[0] == tuple[1] + 1 || tuple[0] == tuple[1] - 1);
  const uint32_t start = std::min(tuple[0], tuple[1]);
  tuple = inPicture(fields[0].stop, fields[1].stop);
  assert(tuple[0] == tuple[1] + 1 || tuple[0] == tuple[1] - 1);
  return {start, std::max(tuple[0], tuple[1])};
}

vidRangePair_t splitIntoFields(const vidRange_t& e, uint32_t tlpf) {
  const vidRange_t inPicture = intToProgRange(e, tlpf);
  const size_t startField = e.start <= field1Lines(tlpf) ? 0 : 1;
  const size_t stopField = e.stop <= field1Lines(tlpf) ? 0 : 1;
  vidRangePair_t fields;
  fields[startField].start = e.start;
  fields[1 - startField].start = progToIntLine(inPicture.start + 1, tlpf);
  fields[stopField].stop = e.stop;
  fields[1 - stopField].stop = progToIntLine(inPicture.stop - 1, tlpf);
  return fields;
}

vidRange_t calcCentreFieldRange(uint32_t size, const vidRangePair_t& fields, uint32_t tlpf,
                                bool roundUp) {
  return progToIntRange(calcCentreRange(size, fieldToProgRange(fields, tlpf), roundUp), tlpf);
}

vidCentre_t calcFieldCentre(const vidRangePair_t& fields, uint32_t tlpf) {
  const vidCentre_t c = calcVidCentre(fieldToProgRange(fields, tlpf));
  return {.pixelHigh = progToIntLine(c.pixelHigh, tlpf),
          .pixelLow = progToIntLine(c.pixelLow, tlpf)};
}

vidRangePair_t calcOutsideRegion(const vidRange_t& in, const vidRange_t& full) {
  assert(in.stop >= in.start);
  vidRangePair_t outside;
  size_t sides = 0;
  if (in.start > full.start) outside[sides++] = {full.start, in.start - 1};
  if (in.stop < full.stop) outside[sides] = {in.stop + 1, full.stop};
  return outside;
}

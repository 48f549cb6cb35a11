#include "deflang/text/record.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

// Invariant 1.
TEST(ParameterRecords, AddsANameOnce) {
  ParameterRecords records;
  EXPECT_EQ(records.find("gain"), nullptr);
  ParameterRecord& gain = records.findOrAdd("gain", 3);
  EXPECT_EQ(gain.name, "gain");
  EXPECT_EQ(gain.line, 3U);
  EXPECT_EQ(gain.access, ACCESS_NONE);
  EXPECT_EQ(&records.findOrAdd("gain", 9), &gain);
  EXPECT_EQ(gain.line, 3U);  // where the name was first
  EXPECT_EQ(records.find("gain"), &gain);
  EXPECT_EQ(std::as_const(records).find("gain"), &gain);
  EXPECT_EQ(std::as_const(records).find("gai"), nullptr);
  EXPECT_EQ(records.size(), 1U);
}

// Invariant 2. A list's last statement is linked to the list itself.
TEST(ParameterRecords, MoveWithTheirStatements) {
  const auto filled = [](const std::string& name) {
    ParameterRecords records;
    ParameterRecord& record = records.findOrAdd(name, 1);
    for (const uint32_t line : {2U, 3U}) {
      Translation translation;
      translation.at.line = line;
      record.valueChange.push_back(records.arena().keep(Listed<Translation>(translation, {1, 1})));
    }
    return records;
  };
  const auto linesOf = [](const ParameterRecords& records, const std::string& name) {
    std::vector<uint32_t> lines;
    for (const Translation& each : records.find(name)->valueChange) lines.push_back(each.at.line);
    return lines;
  };
  ParameterRecords gain = filled("gain");
  const ParameterRecord* const place = gain.find("gain");
  const ParameterRecords moved = std::move(gain);
  EXPECT_EQ(moved.find("gain"), place);
  EXPECT_EQ(linesOf(moved, "gain"), (std::vector<uint32_t>{2, 3}));
  ParameterRecords mode = filled("mode");
  mode = filled("gain");
  EXPECT_EQ(linesOf(mode, "gain"), (std::vector<uint32_t>{2, 3}));
  EXPECT_EQ(mode.find("mode"), nullptr);
}

// Invariant 3.
TEST(ParameterRecords, KeepACopyOfTheName) {
  ParameterRecords records;
  std::string line = "gain, in a line that is longer than a string keeps in itself";
  const ParameterRecord& gain = records.findOrAdd(std::string_view(line).substr(0, 4), 1);
  line.assign(line.size(), 'x');
  EXPECT_EQ(gain.name, "gain");
  EXPECT_EQ(records.find("gain"), &gain);
  EXPECT_EQ(records.find("xxxx"), nullptr);
}

// Invariants 2 and 4.
TEST(ParameterRecords, KeepsRecordsInPlaceAndOrdersThemByBytes) {
  ParameterRecords records;
  std::vector<const ParameterRecord*> places;
  for (int i = 999; i >= 0; --i) places.push_back(&records.findOrAdd("n" + std::to_string(i), 1));
  records.findOrAdd("\xe4", 1);
  records.findOrAdd("Z", 1);
  records.findOrAdd("", 1);
  for (size_t i = 0; i < places.size(); ++i) {
    const std::string name = "n" + std::to_string(999 - i);
    EXPECT_EQ(std::as_const(records).find(name), places[i]);
    EXPECT_EQ(places[i]->name, name);
  }
  const std::vector<const ParameterRecord*> ordered = records.inNameOrder();
  ASSERT_EQ(ordered.size(), 1003U);
  for (size_t i = 1; i < ordered.size(); ++i) EXPECT_LT(ordered[i - 1]->name, ordered[i]->name);
  EXPECT_EQ(ordered.front()->name, "");
  EXPECT_EQ(ordered[1]->name, "Z");
  EXPECT_EQ(ordered.back()->name, "\xe4");  // bytes from 0x80 up come last
}

}  // namespace

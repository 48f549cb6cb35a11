#include "deflang/text/record.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

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

// A list's last statement is linked to the list itself.
TEST(ParameterRecords, MoveWithTheirStatements) {
  const auto filled = [](const std::string& name) {
    ParameterRecords records;
    ParameterRecord& record = records.findOrAdd(name, 1);
    for (const uint32_t line : {2U, 3U}) {
      Translation translation;
      translation.at.line = line;
      record.valueChange.push_back(records.arena().keep(Listed<Translation>(translation)));
    }
    return records;
  };
  const auto linesOf = [](const ParameterRecords& records, const std::string& name) {
    std::vector<uint32_t> lines;
    for (const Translation& each : records.find(name)->valueChange) lines.push_back(each.at.line);
    return lines;
  };
  ParameterRecords gain = filled("gain");
  const ParameterRecords moved = std::move(gain);
  EXPECT_EQ(linesOf(moved, "gain"), (std::vector<uint32_t>{2, 3}));
  ParameterRecords mode = filled("mode");
  mode = filled("gain");
  EXPECT_EQ(linesOf(mode, "gain"), (std::vector<uint32_t>{2, 3}));
  EXPECT_EQ(mode.find("mode"), nullptr);
}

TEST(ParameterRecords, KeepsRecordsInPlaceAndOrdersThemByBytes) {
  ParameterRecords records;
  ParameterRecord* const first = &records.findOrAdd("n0", 1);
  for (int i = 999; i > 0; --i) records.findOrAdd("n" + std::to_string(i), 1);
  records.findOrAdd("\xe4", 1);
  records.findOrAdd("Z", 1);
  records.findOrAdd("", 1);
  EXPECT_EQ(records.find("n0"), first);
  const std::vector<const ParameterRecord*> ordered = records.inNameOrder();
  ASSERT_EQ(ordered.size(), 1003U);
  for (size_t i = 1; i < ordered.size(); ++i) EXPECT_LT(ordered[i - 1]->name, ordered[i]->name);
  EXPECT_EQ(ordered.front()->name, "");
  EXPECT_EQ(ordered[1]->name, "Z");
  EXPECT_EQ(ordered.back()->name, "\xe4");  // bytes from 0x80 up come last
}

}  // namespace

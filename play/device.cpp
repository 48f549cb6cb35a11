#include "play/device.h"

uint64_t countValues(const NamedRange& range) {
  uint64_t count = range.texts.size();
  for (const auto& [low, high] : range.spans) {
    count += static_cast<uint64_t>(int64_t{high} - low) + 1;
  }
  return count;
}

std::vector<std::string> valuesOf(const NamedRange& range) {
  std::vector<std::string> values = range.texts;
  for (const auto& [low, high] : range.spans) {
    for (int64_t number = low; number <= high; ++number) values.push_back(std::to_string(number));
  }
  return values;
}

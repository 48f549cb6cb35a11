#include "play/device.h"

std::vector<std::string> valuesOf(const NamedRange& range) {
  std::vector<std::string> values = range.texts;
  for (const auto& [low, high] : range.spans) {
    for (int64_t number = low; number <= high; ++number) values.push_back(std::to_string(number));
  }
  return values;
}

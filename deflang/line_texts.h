// Line texts: the lines of a definition text, kept until its diagnostics are printed.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "deflang/record_memory.h"

class LineTexts {
 public:
  /// Keeps `text` as line `number` (from 1), as it was read; a later text of the same number
  /// replaces it.
  void add(uint32_t number, std::string_view text);
  /// The text of line `number`; nothing where none was kept.
  [[nodiscard]] std::optional<std::string_view> find(uint32_t number) const;

 private:
  RecordMemory memory_;
  std::deque<std::string_view> lines_;  // line n at n - 1; empty where none was kept
};

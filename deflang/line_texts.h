// Line texts: the lines of a definition text, kept until its diagnostics are printed.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

class LineTexts {
 public:
  /// Keeps `text` as line `number` (from 1), as it was read; a later text of the same number
  /// replaces it.
  void add(uint32_t number, std::string_view text);
  /// The text of line `number`, or null where none was kept.
  [[nodiscard]] const std::string* find(uint32_t number) const;

 private:
  std::vector<std::string> lines_;  // line n at n - 1; empty where none was kept (no line is empty)
};

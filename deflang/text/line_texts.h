// Line texts: the lines of a definition text, kept until its diagnostics are printed.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "base/arena.h"

class LineTexts {
 public:
  /// Keeps `text` as line `number`, as it was read; a later text of the same number replaces it.
  /// Lines that are left out cost nothing.
  void add(uint32_t number, std::string_view text);
  /// The text of line `number`; nothing where none was kept.
  [[nodiscard]] std::optional<std::string_view> find(uint32_t number) const;

 private:
  struct Line {
    uint32_t number;
    uint32_t size;
    const char* text;
  };

  Arena arena_;
  std::deque<Line> lines_;  // ascending by number
};

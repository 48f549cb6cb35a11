// Line texts: the lines of a definition text, kept until its diagnostics are printed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class LineTexts {
 public:
  /// Keeps `text` as line `number` (from 1), as it was read; a later text of the same number
  /// replaces it.
  void add(uint32_t number, std::string_view text);
  /// The text of line `number`, good until the next add; nothing where none was kept.
  [[nodiscard]] std::optional<std::string_view> find(uint32_t number) const;

 private:
  // Where a line stands in text_. One buffer for all lines costs a fraction of a string for each.
  struct Span {
    size_t start = 0;
    size_t length = 0;  // 0 where none was kept: no line is empty
  };
  std::string text_;
  std::vector<Span> lines_;  // line n at n - 1
};

// Line texts: the lines of a definition text, kept until its diagnostics are printed.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string_view>

#include "base/arena.h"

/// Lines by number, from 1 as the text counts them; any number is accepted. Lines that are never
/// added take no memory. readDefinitionText() adds them; a DiagnosticCollector asks for those that
/// its reports name.
class LineTexts {
 public:
  /// Keeps a copy of `text` as line `number`, with its newline if it has one. A later text of that
  /// number replaces the earlier one. Takes constant time for a number above all others, which is
  /// how a text is read; otherwise linear time. Raises std::bad_alloc where memory is exhausted.
  void add(uint32_t number, std::string_view text);
  /// The text of line `number`, or nullopt where no text was kept. The view is valid as long as
  /// this object, or the one that it was moved to. Takes logarithmic time.
  [[nodiscard]] std::optional<std::string_view> find(uint32_t number) const;

 private:
  // 16 bytes, where a number and a string take 40: a text has many lines, few are ever asked for.
  struct Line {
    uint32_t number;
    uint32_t size;
    const char* text;
  };

  Arena arena_;
  std::deque<Line> lines_;  // ascending by number
};

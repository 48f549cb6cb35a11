// Source text: a definition text as its author wrote it, by lines.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "deflang/expression/token.h"

/// Keeps every line of a text, so that findings can show it.
class SourceText {
 public:
  /// The text `text` under the name `name`, as findings call it: a file's name, or "<stdin>". A
  /// byte order mark in front is left out, as the daemon leaves it out.
  SourceText(std::string name, std::string text);
  SourceText(const SourceText&) = delete;
  SourceText& operator=(const SourceText&) = delete;

  [[nodiscard]] const std::string& name() const { return name_; }
  /// How many lines there are.
  [[nodiscard]] uint32_t lineCount() const { return static_cast<uint32_t>(lines_.size()); }
  /// Line `number`, from 1, without its newline; empty where there is no such line.
  [[nodiscard]] std::string_view line(uint32_t number) const;
  /// All of it.
  [[nodiscard]] const std::string& text() const { return text_; }
  /// The byte of text() that is at a place; the end of the text for a line that there is not. A
  /// column beyond the line is its end.
  [[nodiscard]] size_t offsetOf(Position at) const;
  /// The place of a byte of text(). The end of the text is a place, too: behind its last line.
  [[nodiscard]] Position positionOf(size_t offset) const;

 private:
  std::string name_;
  std::string text_;
  std::vector<std::string_view> lines_;
};

// Long lines: those that the daemon reads in several pieces, each as if it were a line.
#pragma once

#include <set>

#include "check/text/findings.h"
#include "check/text/source_text.h"

/// Gathers what is wrong because of long lines.
class LongLines {
 public:
  /// `text` is that of `source`, perhaps with some of its bytes changed.
  LongLines(const SourceText& source, std::string_view text);

  /// Whether a fault at the byte `at` comes of a line's length: it is in the rest of a comment, or
  /// in a word that is cut in two. The line then counts as an error.
  bool isToBlame(size_t at);
  /// The bytes at which words, numbers and operators are cut in two. A quoted text goes on.
  [[nodiscard]] const std::set<size_t>& cuts() const { return cuts_; }
  /// One finding for each long line.
  void report(Findings& findings) const;

 private:
  [[nodiscard]] bool isAtCut(size_t at) const;

  const SourceText& source_;
  std::string_view text_;
  std::vector<uint32_t> lines_;
  std::set<size_t> cuts_;
  std::set<uint32_t> blamed_;
};

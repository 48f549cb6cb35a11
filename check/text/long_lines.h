// Long lines: those that the daemon reads in several pieces, each as if it were a line.
#pragma once

#include <set>

#include "check/text/findings.h"
#include "check/text/source_text.h"

/// Gathers what is wrong because of long lines.
class LongLines {
 public:
  explicit LongLines(const SourceText& source) : source_(source) {}

  /// Whether a fault at the byte `at` comes of a line's length: it is in the rest of a comment, or
  /// in a word that was cut in two. The line then counts as an error.
  bool isToBlame(size_t at);
  /// One finding for each long line.
  void report(Findings& findings) const;

 private:
  const SourceText& source_;
  std::set<uint32_t> blamed_;
};

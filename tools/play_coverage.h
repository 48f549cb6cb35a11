// What ostrel-play does with coverage: the options for it, after all is played.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "coverage/text_coverage.h"
#include "tools/play_arguments.h"

/// The coverage that a command line asks for.
class PlayCoverage {
 public:
  /// Of the definition text `definitions`; both outlive it.
  PlayCoverage(const PlayArguments& arguments, const std::string& definitions);

  /// Where devices note what they judge; null where nobody asks.
  [[nodiscard]] TextCoverage* text() const { return text_.get(); }
  /// Writes the tracefile, prints the summary to `out`, and what is missing, where there is too
  /// little of it or something was explored. What cannot be written is told on standard error.
  /// Returns the status of the process: 0, 1 where there is too little, or 2 where something cannot
  /// be written.
  [[nodiscard]] int report(std::FILE* out) const;

 private:
  [[nodiscard]] bool isTooLittle() const;

  const PlayArguments& arguments_;
  const std::string source_;
  std::unique_ptr<TextCoverage> text_;
};

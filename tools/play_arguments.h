// The command line of ostrel-play.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "check/text/variant.h"
#include "play/device.h"
#include "play/report.h"
#include "tools/record.h"

/// How to explore.
struct ExploreArguments {
  std::optional<uint32_t> seconds;  ///< 10, where no steps are given either
  std::optional<uint64_t> steps;
  uint64_t seed = 1;
  std::string file;  ///< for the session of a find; empty or "-" for standard output
};

/// What the command line asks for.
struct PlayArguments {
  PlayConstants constants;  ///< of a device that plays
  ConstantChoices choices;  ///< of those that are explored or compared
  bool explores = false;    ///< in place of playing
  ExploreArguments exploration;
  PlayFormat format = PLAY_TEXT;
  bool isQuiet = false;                ///< no outcomes that nobody expects
  bool updates = false;                ///< write expectations into the files
  std::string coverageFile;            ///< for the tracefile; empty where none is asked for
  bool summarizesCoverage = false;     ///< print the line of coverage
  std::optional<double> leastPercent;  ///< of coverage, from 0 to 100
  std::string definitions;             ///< a file; "-" is standard input
  std::vector<std::string> sessions;   ///< files, none for a talk; "-" is standard input
  bool records = false;                ///< write a session instead of playing some
  bool compares = false;               ///< definitions with the first of `sessions`, a newer text
  std::string valuesFile;              ///< of saved values, for a comparison; empty for none
  RecordArguments recording;           ///< where it records

  /// Whether coverage is to be measured.
  [[nodiscard]] bool asksCoverage() const {
    return explores || !coverageFile.empty() || summarizesCoverage || leastPercent;
  }
};

/// Reads the arguments. Ends the process where that is all there is to do: with status 0 after
/// --help, --usage and --version, with status 2 after a message for a fault of the command line.
/// Raises std::bad_alloc where memory is exhausted.
PlayArguments parsePlayArguments(int argc, char** argv);

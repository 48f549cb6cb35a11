// The command line of ostrel-check.
#pragma once

#include <string>
#include <vector>

#include "check/checker.h"
#include "check/level_choices.h"

/// In which form the report is written.
enum ReportFormat { FORMAT_TEXT, FORMAT_JSON, FORMAT_SARIF };

/// What the command line asks for.
struct CheckArguments {
  CheckOptions options;
  LevelChoices levels;
  ReportFormat format = FORMAT_TEXT;
  bool isQuiet = false;            ///< report errors only
  bool showsUndecided = false;     ///< list the undecided questions
  bool showsAllowed = false;       ///< list what comments allow
  std::vector<std::string> files;  ///< at least one; "-" is standard input
};

/// Reads the arguments. Ends the process where that is all there is to do: with status 0 after
/// --help, --usage, --version, --list-codes and --explain, with status 2 after a message for a
/// fault of the command line. Raises std::bad_alloc where memory is exhausted.
CheckArguments parseCheckArguments(int argc, char** argv);

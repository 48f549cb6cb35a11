// What ostrel-play does with --diff.
#pragma once

#include <string>

#include "tools/play_arguments.h"

/// Compares the definition text `old` with the new one that the command line names, and reports on
/// standard output. Returns the status of the process: 0, 1 where something is incompatible, or 2
/// where the texts cannot be compared or the report cannot be written.
int diffPlay(const PlayArguments& arguments, const std::string& old);

// What ostrel-play does with --explore.
#pragma once

#include <string>

#include "tools/play_arguments.h"

/// Explores the definition text `definitions`, writes a session for each find, and reports on
/// standard output. Returns the status of the process: 0, 1 where something was found or there is
/// too little coverage, or 2 where it could not be explored or written.
int explorePlay(const PlayArguments& arguments, const std::string& definitions);

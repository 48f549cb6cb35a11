// A talk with the device on a terminal, line by line.
#pragma once

#include <string>

#include "play/device.h"

/// Reads lines of sessions from the terminal, with GNU readline's editing, history and completion,
/// and plays each at once, up to the end of the input. All lines play with one device. Returns
/// whether the device could be started.
bool playInteractively(const StartDevice& start, const PlayConstants& constants);

// The constants of the command line on their way to the database.
#pragma once

#include <functional>
#include <string>

#include "startup/command_line.h"

/// Takes in a constant, both of whose texts may be empty. Returns 0, or another number for a
/// constant that is refused.
using DefineConstant = std::function<int(const std::string& name, const std::string& value)>;

/// Calls `define` for each constant of the command line, in ascending order of the names. Its
/// result is left alone: a constant that is refused stops neither the others nor the start. What
/// `define` raises passes through.
void defineConstants(const CommandLine& commandLine, const DefineConstant& define);

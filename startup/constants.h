// The constants of the command line on their way to the database.
#pragma once

#include <functional>
#include <string>

#include "startup/command_line.h"

/// Takes in a constant. Returns 0, or another number for one that is refused.
using DefineConstant = std::function<int(const std::string& name, const std::string& value)>;

/// Calls `define` for each constant of the command line, in ascending order of the names. One that
/// is refused does not keep back the others.
void defineConstants(const CommandLine& commandLine, const DefineConstant& define);

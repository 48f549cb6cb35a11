#include "startup/constants.h"

void defineConstants(const CommandLine& commandLine, const DefineConstant& define) {
  for (const auto& [name, value] : commandLine.constants) {
    // A refused constant does not stop start-up.
    static_cast<void>(define(name, value));
  }
}

// How the program ends: its exit statuses, and its last words.
#pragma once

#include <string>

enum ExitStatus : int {
  STATUS_DONE = 0,
  STATUS_REFUSED = 1,     ///< the service refuses
  STATUS_USAGE = 2,       ///< a fault of the command line
  STATUS_NO_SERVICE = 3,  ///< no bus, no service, or no reply in time
  STATUS_CUT = 4,         ///< stored, but not as given; where that is asked for
  STATUS_UNKNOWN = 5,     ///< there is no such name
};

/// Writes `message` to standard error, with the program's name before it.
void complain(const std::string& message);

/// Ends the program with a complaint. It leaves the bus, and the service ends its transactions.
[[noreturn]] void endWith(ExitStatus status, const std::string& message);

// What a word works with.
#pragma once

#include <string>

#include "ctl/service/service.h"
#include "ctl/text/output.h"

struct Client {
  Service& service;
  const Output& out;
  /// How a command for the same service begins that is shown to the user, as "ostrelctl -b sync".
  std::string program;
};

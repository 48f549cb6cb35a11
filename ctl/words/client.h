// What a word works with.
#pragma once

#include "ctl/service/service.h"
#include "ctl/text/output.h"

struct Client {
  Service& service;
  const Output& out;
};

// For the tests: the names of an interner.
#pragma once

#include <string>
#include <vector>

#include "base/interner.h"

/// The names by their numbers.
inline std::vector<std::string> namesOf(const Interner& names) {
  std::vector<std::string> list;
  for (uint32_t number = 0; number < names.size(); ++number) list.emplace_back(names[number]);
  return list;
}

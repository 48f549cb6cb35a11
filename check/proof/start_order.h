// Start order: what a start resets before one instance, and the instance itself.
#pragma once

#include <string>
#include <vector>

#include "database/dependencies.h"

/// An instance with all that it depends on.
struct StartOrder {
  std::vector<Instance> instances = {};  ///< each after what it follows; some may be incomplete
  std::vector<std::string> names = {};   ///< of those that are complete
};

/// Finds the order for `name`, a full name. Returns false where too much depends on one another.
bool findStartOrder(Database& database, const std::string& name, StartOrder& order);

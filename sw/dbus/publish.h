// Publishing: what a commit has changed goes out as the signal "transaction".
#pragma once

#include <string>
#include <vector>

#include "database/transaction.h"
#include "sw/dbus/value_object.h"

/// Emits "name=value" with the committed value for each of `names`, in their order; nothing for no
/// names. What is too much for one signal goes out in several; a text that is too much by itself is
/// left out.
void publish(ValueObject* object, Database& database, const std::vector<std::string>& names);

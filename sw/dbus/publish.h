// Publishing: what a commit has changed goes out as the signal "transaction".
#pragma once

#include <string>
#include <vector>

#include "database/transaction.h"
#include "sw/dbus/value_object.h"

/// The most bytes of the texts in one signal.
constexpr size_t MAX_SIGNAL_BYTES = (size_t{32} << 20U) - 4096;

/// Emits "name=value" with the committed value for each of `names`, in their order; nothing for no
/// names. What is too much for one signal goes out in several.
void publish(ValueObject* object, Database& database, const std::vector<std::string>& names);

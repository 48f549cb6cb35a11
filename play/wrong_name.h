// Wrong names: what a definition text does not know.
#pragma once

#include <optional>
#include <string>

#include "play/bring_up.h"

/// Why `name` cannot be the full name of an instance of the device, with the nearest name that can
/// be meant: a sentence. nullopt where it can be one.
std::optional<std::string> wrongName(const KnownDevice& device, const std::string& name);

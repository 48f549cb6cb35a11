// What the author of a definition text knows of the device, from the definitions.
#pragma once

#include <cstdint>
#include <optional>

#include "database/database.h"
#include "play/bring_up.h"

/// More instances than these are no device that a session brings up.
constexpr uint64_t MAX_KNOWN_INSTANCES = 1000000;

/// The parameters, indices and translations of `database`, without any last values; nullopt where
/// it may have more than MAX_KNOWN_INSTANCES.
std::optional<KnownDevice> knownDevice(Database& database);

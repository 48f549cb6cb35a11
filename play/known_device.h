// What the author of a definition text knows of the device, from the definitions.
#pragma once

#include "database/database.h"
#include "play/bring_up.h"

/// The parameters, indices and translations of `database`, without any last values.
KnownDevice knownDevice(Database& database);

// Emptiable: which empty values could be set, and so are worth being kept.
#pragma once

#include <optional>

#include "ctl/service/service.h"

/// Those of the instances, all empty, that stay so where the device sets the empty text; others
/// refuse it, or take another value in its place. The service judges a trial, and nothing is
/// stored. nullopt where the service has gone and `mayGo`; otherwise it ends the program then.
std::optional<Names> emptiable(Service& service, const Names& names, bool mayGo);

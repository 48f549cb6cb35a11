// The recipe that brings a device up, for the device of a session.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "play/device.h"

/// What bringUpDevice() has done.
struct BroughtUp {
  /// By full name, what was announced last.
  std::map<std::string, std::string> changes = {};
  /// The parameters that never come to rest, ascending.
  std::vector<std::string> restless = {};
};

/// Brings `device` up in a transaction of its own. `known` is what is known of it.
BroughtUp bringUpDevice(Device& device, KnownDevice known);

/// The full names of all instances of `device` that exist now. `known` is what is known of it.
std::vector<std::string> presentInstances(Device& device, KnownDevice known);

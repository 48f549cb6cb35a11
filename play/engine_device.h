// The device within this process: the methods of the daemon, served without a bus.
#pragma once

#include <memory>
#include <string>

#include "play/device.h"

/// Starts a device on the definition text `text`. What is wrong with the text is on standard error
/// as the daemon has it there; the device is then null. The catalogue of video standards has to be
/// complete (initVidStdTables()). The answers have notes.
std::unique_ptr<Device> startEngineDevice(const std::string& text, const PlayConstants& constants);

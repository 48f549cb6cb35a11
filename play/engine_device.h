// The device within this process: the methods of the daemon, served without a bus.
#pragma once

#include <memory>
#include <string>

#include "coverage/text_coverage.h"
#include "play/device.h"

/// Starts a device on the definition text `text`. What is wrong with the text is on standard error
/// as the daemon has it there; the device is then null. The catalogue of video standards has to be
/// complete (initVidStdTables()). The answers have notes. What the device judges is noted in
/// `coverage`, which is of the same text and outlives it; null where nobody asks.
std::unique_ptr<Device> startEngineDevice(const std::string& text, const PlayConstants& constants,
                                          TextCoverage* coverage = nullptr);

/// The same, and says nothing: for whoever reports on the text otherwise.
std::unique_ptr<Device> startBuiltDevice(const std::string& text, const PlayConstants& constants,
                                         TextCoverage* coverage = nullptr);

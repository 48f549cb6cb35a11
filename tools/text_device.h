// Devices of a definition text, for tools that play with them.
#pragma once

#include <memory>
#include <string>

#include "coverage/text_coverage.h"
#include "play/device.h"

/// Starts a device as startEngineDevice() does, on `text`, which is called `name`. Where the daemon
/// would refuse the text, what is wrong with it is on standard error as ostrel-check has it there,
/// and the device is null.
std::unique_ptr<Device> startTextDevice(const std::string& name, const std::string& text,
                                        const PlayConstants& constants,
                                        TextCoverage* coverage = nullptr);

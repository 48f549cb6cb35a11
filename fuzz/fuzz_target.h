// A fuzz target: the one function that every target has, by the name that libFuzzer calls.
#pragma once

#include <cstddef>
#include <cstdint>

/// Runs the target on one input and returns 0. A promise that does not hold ends the program.
// NOLINTNEXTLINE(readability-identifier-naming)
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

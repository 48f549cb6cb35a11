// Small devices: definition texts made of a few bytes, with what a commit has to cope with:
// indices, conditions, run-time ranges, translations, defaults, mutual references.
#pragma once

#include <string>

#include "fuzz/fuzz_input.h"

/// A definition text with the indices i (0 to 2) and t ("a", "b") and the parameters p0 to at most
/// p5; p0 has no indices. Most texts can be built.
std::string smallDevice(FuzzInput& input);

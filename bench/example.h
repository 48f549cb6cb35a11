// The example of a device, and many of them in one text, to measure on.
#pragma once

#include <cstdint>
#include <string>

/// The frame synchroniser, from the top of the tree, where scripts/bench runs. Its constants are
/// MODEL, CHANNELS and AUDIO.
std::string exampleText();

/// The example `count` times, each with names of its own.
std::string examples(int64_t count);

// Bus memory: what the bus library allocates, and what becomes of it where there is no memory.
#pragma once

#include <chrono>

/// The bus library tries again and again to read a message for which it finds no memory, and reads
/// nothing behind it. For as long it may try; then the process ends as in last_words.h. What is
/// freed meanwhile, as replies are sent, may be enough.
constexpr std::chrono::seconds MEMORY_PATIENCE{10};

/// Whether the bus library has asked in vain for memory since the last noteMessage().
bool isBusShortOfMemory();
/// To be called for each message that comes: the bus library has found the memory to read it.
void noteMessage();

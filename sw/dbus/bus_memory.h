// Bus memory: how the service goes on, or ends, where the bus library finds no memory.
//
// bus_memory.cpp defines the bus library's allocating functions, so that each failure is noticed.
// Whoever links the service library has them. All of it runs in the one thread of the process.
#pragma once

#include <chrono>

/// How long the bus library may be without the memory for a message. It tries again and again to
/// read that message and reads no other; after this time the process ends as in last_words.h. Until
/// then replies are still sent, and the memory that they free may be enough.
constexpr std::chrono::seconds MEMORY_PATIENCE{10};

/// Whether an allocation of the bus library has failed since the last noteMessage().
bool isBusShortOfMemory();
/// To be called for each message that is dispatched, which shows that the bus library has found the
/// memory to read it: MEMORY_PATIENCE begins anew with the next failure.
void noteMessage();

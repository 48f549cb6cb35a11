// Last words: how the process ends where GLib or the bus library has no memory.
#pragma once

/// From here on, an allocation that fails in GLib, and a reply or a signal that the binding library
/// gives up for want of memory, end the process with LAST_WORDS on standard error, a line in the
/// system log and status 1, not by a signal. Whatever else GLib complains about stays as it is. To
/// be called before the threads and the objects of the service are made.
void endInOrderWithoutMemory();

/// What is said then.
constexpr const char* LAST_WORDS =
    "Transaction server: ERROR: Out of memory (the service cannot go on)\n";

/// Says them and ends the process, without asking for memory.
[[noreturn]] void endWithLastWords();

// Last words: how the process ends where GLib or the bus library has no memory.
//
// By themselves the libraries would end it by a signal, or drop a reply or a signal and go on.
// docs/reliability.md names the places where they do, under Exhausted memory.
#pragma once

/// From here on, an allocation that fails in GLib, and a reply or a signal that the binding library
/// gives up for want of memory, end the process with LAST_WORDS on standard error, a line in the
/// system log and status 1, not by a signal. Whatever else GLib complains about stays as it is. To
/// be called once, before the objects of the service are made.
void endInOrderWithoutMemory();

/// What standard error is told then.
constexpr const char* LAST_WORDS =
    "Transaction server: ERROR: Out of memory (the service cannot go on)\n";

/// Writes LAST_WORDS and the line in the system log and ends the process with status 1, without
/// asking for memory. No destructor runs, and what is in the buffers of streams is lost. Where it
/// is called again while it writes, it ends at once.
[[noreturn]] void endWithLastWords();

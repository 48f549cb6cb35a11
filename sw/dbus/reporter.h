// What start-up says: progress on standard output, errors on standard error.
#pragma once

#include <string>

/// Makes whatever GLib prints come out byte by byte, in every locale. By itself GLib would put "?"
/// for a character that the locale's character set lacks. Called once, before the first message.
void printRawBytes();

/// Returns "Transaction server: ERROR: MESSAGE (DETAIL)\n".
std::string errorText(const std::string& message, const std::string& detail);

/// Writes errorText() to standard error. A `fatal` report ends the process with status 1 by exit(),
/// so what is in the buffers of streams is written; otherwise it returns.
void reportError(const char* message, const char* detail, bool fatal);

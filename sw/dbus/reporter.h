// What start-up says: progress on standard output, errors on standard error.
#pragma once

#include <string>

/// Makes what GLib prints come out byte by byte, in every locale; by itself it would put "?" for
/// what the locale's character set lacks.
void printRawBytes();

/// "Transaction server: ERROR: MESSAGE (DETAIL)\n".
std::string errorText(const std::string& message, const std::string& detail);

/// Writes the text of an error to standard error; a fatal report ends the process with status 1.
void reportError(const char* message, const char* detail, bool fatal);

#include "sw/dbus/reporter.h"

#include <glib.h>

#include <cstdio>
#include <cstdlib>

namespace {

void printTo(FILE* stream, const char* text) {
  fputs(text, stream);
  fflush(stream);
}

}  // namespace

void printRawBytes() {
  g_set_print_handler([](const char* text) { printTo(stdout, text); });
  g_set_printerr_handler([](const char* text) { printTo(stderr, text); });
}

std::string errorText(const std::string& message, const std::string& detail) {
  return "Transaction server: ERROR: " + message + " (" + detail + ")\n";
}

void reportError(const char* message, const char* detail, bool fatal) {
  g_printerr("%s", errorText(message, detail).c_str());
  if (fatal) exit(1);
}

// Calls of both interfaces, and their errors, for client.c.
#pragma once
#include <gio/gio.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#define NAME "org.tavrel.transaction"
#define FIRST "/transaction", "org.tavrel.transaction"
#define SECOND "/parameters", "org.tavrel.parameters1"

#define COMMITTED G_MAXUINT32           // in place of a transaction: what everybody sees
#define NOBODYS (G_MAXUINT32 - 1)       // a transaction that is not open
enum { WRITABLE = 4, HAS_VALUE = 64 };  // flags of GetState

static GDBusConnection* bus;

// Tells an error, and what a client does about it. The second interface has a name for each; the
// first has one for all, and only its text tells the cause.
static void report(const char* error) {
  static const char* const REMEDIES[][2] = {
      {"Error.UnknownTransaction:", "begin anew"}, {"Error.UnknownParameter:", "list them"},
      {"Error.InvalidPattern:", "mend it"},        {"Error.TooLarge:", "ask for less"},
      {"invalid transaction id", "begin anew"},    {"", "tell the user"}};
  int i = 0;
  while (!strstr(error, REMEDIES[i][0])) i++;
  const char* text = strstr(error, ": ");  // behind "GDBus.Error:" and the name
  printf("error: %s; %s\n", text ? text + 2 : error, REMEDIES[i][1]);
}

// Calls, and takes the answer apart as g_variant_get() does; FALSE after an error.
static gboolean call(const char* path, const char* interface, const char* method, GVariant* in,
                     const char* format, ...) {
  g_autoptr(GError) error = NULL;
  g_autoptr(GVariant) out = g_dbus_connection_call_sync(
      bus, NAME, path, interface, method, in, NULL, G_DBUS_CALL_FLAGS_NONE, -1, NULL, &error);
  if (error) report(error->message);
  va_list places;
  va_start(places, format);
  if (out) g_variant_get_va(out, format, NULL, &places);
  va_end(places);
  return out != NULL;
}

// Ends a line with the texts of a list.
static void list(GVariantIter* texts) {
  const char *text, *comma = "";
  for (; g_variant_iter_next(texts, "&s", &text); comma = ", ") printf("%s%s", comma, text);
  puts("");
}

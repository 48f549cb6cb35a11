// A small control panel: what there is, why it is as it is, what a change would do, what happens.
//   client_c PATTERN CONTROL NAME=VALUE...
#include "calls.h"

static char** words;  // of the command line
static guint transaction = NOBODYS;

static void discover(void) {
  g_autoptr(GVariantIter) rows = NULL;
  GVariantIter* indices;
  const char *name, *access;
  guint line, level;
  if (!call(SECOND, "List", g_variant_new("(s)", words[1]), "(a(ssasuu))", &rows)) return;
  while (g_variant_iter_loop(rows, "(&s&sasuu)", &name, &access, &indices, &line, &level)) {
    printf("%s %s, line %u, level %u, indices: ", name, access, line, level);
    list(indices);
  }
}

static void show(guint id) {
  g_autoptr(GVariantIter) states = NULL, reasons = NULL;
  GVariantIter* used;
  const char *name, *value, *question, *statement, *names[] = {words[2], NULL};
  guint flags, line;
  call(SECOND, "GetState", g_variant_new("(u^as)", id, names), "(a(susa(ii)as))", &states);
  while (states && g_variant_iter_loop(states, "(&su&s**)", &name, &flags, &value, NULL, NULL))
    printf("%s = %s, %s\n", name, flags & HAS_VALUE ? value : "(none)",
           flags & WRITABLE ? "writable" : "not writable");
  call(SECOND, "Explain", g_variant_new("(us)", id, words[2]), "(a(ssusa{ss}))", &reasons);
  while (reasons && g_variant_iter_loop(reasons, "(&s&su&sa{ss})", &question, &value, &line,
                                        &statement, &used)) {
    printf("  %s: %s", question, value);
    if (line) printf(", line %u: %s", line, statement);
    while (g_variant_iter_next(used, "{&s&s}", &name, &value)) printf("; %s is %s", name, value);
    puts("");
  }
}

static void goWrong(void) {  // each error once
  const char* names[401] = {NULL};
  for (int i = 0; i < 400; i++) names[i] = "input_name[1]";
  g_autofree char* longText = g_strnfill(100000, 'x');
  call(SECOND, "List", g_variant_new("(s)", "["), "*", NULL);
  call(SECOND, "Explain", g_variant_new("(us)", COMMITTED, "nonsense"), "*", NULL);
  call(SECOND, "Preview", g_variant_new("(u)", NOBODYS), "*", NULL);
  call(FIRST, "commit", g_variant_new("(u)", NOBODYS), "()");
  call(FIRST, "set", g_variant_new("(uss)", transaction, "input_select[1]", "radio"), "()");
  call(FIRST, "set", g_variant_new("(uss)", transaction, names[0], longText), "()");
  call(SECOND, "GetState", g_variant_new("(u^as)", transaction, names), "*", NULL);
  call(FIRST, "end", g_variant_new("(u)", transaction), "()");  // nothing of this is committed
  call(SECOND, "Begin", NULL, "(u)", &transaction);
}

// What if? Only this transaction sees what is staged in it.
static void tryOut(void) {
  g_autoptr(GVariantIter) changes = NULL, refused = NULL;
  GVariantIter* causes;
  const char *name, *old, *new;
  for (char** wish = words + 3; *wish; wish++) {
    g_auto(GStrv) parts = g_strsplit(*wish, "=", 2);
    call(FIRST, "set", g_variant_new("(uss)", transaction, parts[0], parts[1]), "()");
  }
  GVariant* id = g_variant_new("(u)", transaction);
  if (!call(SECOND, "Preview", id, "(a(sssas)a(ss))", &changes, &refused)) return;
  while (g_variant_iter_loop(changes, "(&s&s&sas)", &name, &old, &new, &causes)) {
    printf("would change %s: %s -> %s, because of ", name, old, new);
    list(causes);
  }
  while (g_variant_iter_loop(refused, "(&s&s)", &name, &old))
    printf("would refuse %s: %s\n", name, old);
}

static void onSignal(GDBusConnection* b, const char* sender, const char* path, const char* type,
                     const char* signal, GVariant* in, void* data) {
  g_autoptr(GVariantIter) rows = NULL;
  const char *name, *old, *new;
  guint serial;
  if (g_str_equal(signal, "Changed")) {
    g_variant_get(in, "(u&sa(sss))", &serial, NULL, &rows);
    while (g_variant_iter_loop(rows, "(&s&s&s)", &name, &old, &new))
      printf("commit %u changed %s: %s -> %s\n", serial, name, old, new);
  } else if (g_str_equal(signal, "LimitsChanged")) {
    g_variant_get(in, "(uas)", &serial, &rows);
    printf("commit %u touched the limits of ", serial);
    list(rows);
  }
}

static void onService(GDBusConnection* b, const char* name, const char* owner, void* data) {
  gboolean again = transaction != NOBODYS;
  puts("service: there");
  // Transactions and watches end with the daemon, so each run of it is begun anew.
  call(SECOND, "WaitReady", NULL, "()");  // until then, values may be empty
  call(SECOND, "Begin", NULL, "(u)", &transaction);
  call(SECOND, "Watch", g_variant_new("(bb)", TRUE, TRUE), "()");
  if (again) {
    show(transaction);
    exit(EXIT_SUCCESS);
  }
  discover();
  show(COMMITTED);
  goWrong();
  tryOut();
  show(transaction);
  // A commit cuts values, and passes over others, without an error: the signals tell.
  call(FIRST, "commit", g_variant_new("(u)", transaction), "()");
}
static void onNoService(GDBusConnection* b, const char* name, void* data) { puts("service: none"); }

int main(int count, char** given) {
  words = given;
  setlinebuf(stdout);
  bus = g_bus_get_sync(G_BUS_TYPE_SESSION, NULL, NULL);
  g_dbus_connection_signal_subscribe(bus, NAME, NULL, NULL, "/parameters", NULL, 0, onSignal, NULL,
                                     NULL);
  // The daemon may come after its clients, and it may be restarted.
  g_bus_watch_name_on_connection(bus, NAME, 0, onService, onNoService, NULL, NULL);
  g_main_loop_run(g_main_loop_new(NULL, FALSE));
}

// watch: changes as they are committed.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>

#include "ctl/service/exit_status.h"
#include "ctl/text/assignment.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "ctl/words/asked.h"
#include "ctl/words/commits.h"
#include "ctl/words/word.h"

namespace {

struct WatchArguments {
  std::string pattern;
  bool hasLimits = false;
  bool hasTime = false;
};

// Prints what the service sends, for as long as there is a bus.
class Watcher {
 public:
  Watcher(Client& client, const WatchArguments& arguments)
      : client_(client), arguments_(arguments) {}

  int run() {
    GDBusConnection* const connection = &client_.service.bus().connection();
    const std::string& name = client_.service.bus().name();
    for (const char* signal : {"Changed", "LimitsChanged"}) {
      client_.service.bus().subscribe(signal, onSignal, this);
    }
    g_signal_connect(connection, "closed", G_CALLBACK(onClosed), this);
    g_bus_watch_name_on_connection(connection, name.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
                                   onAppeared, onVanished, this, nullptr);
    while (!isOver_) g_main_context_iteration(nullptr, TRUE);
    complain("the bus has gone");
    return STATUS_NO_SERVICE;
  }

 private:
  static void onAppeared(GDBusConnection* /*connection*/, const gchar* /*name*/,
                         const gchar* /*owner*/, gpointer self) {
    static_cast<Watcher*>(self)->begin();
  }
  static void onVanished(GDBusConnection* connection, const gchar* /*name*/, gpointer self) {
    auto& watcher = *static_cast<Watcher*>(self);
    if (connection != nullptr && !g_dbus_connection_is_closed(connection)) watcher.tellGone();
  }
  static void onClosed(GDBusConnection* /*connection*/, gboolean /*isByPeer*/, GError* /*error*/,
                       gpointer self) {
    static_cast<Watcher*>(self)->isOver_ = true;
  }
  static void onSignal(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                       const gchar* /*path*/, const gchar* /*interface*/, const gchar* signal,
                       GVariant* parameters, gpointer self) {
    auto& watcher = *static_cast<Watcher*>(self);
    if (std::string_view(signal) == "Changed") {
      watcher.tellChanges(parameters);
    } else {
      watcher.tellLimits(parameters);
    }
    flush();
  }

  // Ends the program where nobody can read any more.
  static void flush() {
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return;
    endWith(STATUS_REFUSED, std::string("cannot write: ") + std::strerror(errno));
  }

  void begin() {
    client_.service.bus().send(
        {{PARAMETERS_INTERFACE, "Watch", "()"}, g_variant_new("(bb)", TRUE, arguments_.hasLimits)});
    if (isGone_) tellEvent("back", "the service is back; all values may be others");
    isGone_ = false;
  }

  void tellGone() {
    isGone_ = true;
    tellEvent("gone", "the service has gone; waiting for it");
  }

  void tellEvent(const char* event, const char* sentence) {
    if (client_.out.isJson()) {
      client_.out.json({{"event", event}});
      flush();
    } else {
      complain(sentence);
    }
  }

  [[nodiscard]] bool isWanted(const std::string& name) const {
    return arguments_.pattern.empty() || fitsPattern(arguments_.pattern, name);
  }

  // The limits of all instances of a parameter are told as one.
  [[nodiscard]] bool hasWantedInstances(const std::string& base) const {
    return isWanted(base) || fitsPattern(std::string(baseOf(arguments_.pattern)), base);
  }

  [[nodiscard]] std::string timeStart() const {
    if (!arguments_.hasTime) return {};
    return timeText(static_cast<uint64_t>(g_get_real_time())) + " ";
  }

  void print(Json json, const std::string& line) {
    if (!client_.out.isJson()) return client_.out.line(timeStart() + line);
    if (arguments_.hasTime) json["time"] = g_get_real_time();
    client_.out.json(json);
  }

  void tellChanges(GVariant* parameters) {
    for (const Change& change : changedCommit(*parameters).changes) {
      if (!isWanted(change.name)) continue;
      print(changeJson(change), changeLine(client_.out.style(), change));
    }
  }

  void tellLimits(GVariant* parameters) {
    GVariantIter* names = nullptr;
    g_variant_get(parameters, "(uas)", nullptr, &names);
    const gchar* name = nullptr;
    while (g_variant_iter_next(names, "&s", &name) != FALSE) {
      if (!hasWantedInstances(name)) continue;
      print({{"limits", name}}, client_.out.style().name(quotedWord(name)) + ": limits changed");
    }
    g_variant_iter_free(names);
  }

  Client& client_;
  const WatchArguments& arguments_;
  bool isGone_ = false;
  bool isOver_ = false;
};

int watch(Client& client, const WatchArguments& arguments) {
  // Ends the program where there is no service, or no such name.
  if (arguments.pattern.empty()) {
    static_cast<void>(client.service.history(1));
  } else {
    const AskedStates asked = findStates(client, COMMITTED, {arguments.pattern});
    complainOfUnknown(client, asked.unknown);
    if (!asked.unknown.empty()) return STATUS_UNKNOWN;
  }
  return Watcher(client, arguments).run();
}

}  // namespace

RunWord defineWatch(CLI::App& word) {
  const auto arguments = std::make_shared<WatchArguments>();
  addText(word, "PATTERN", arguments->pattern, "Only names that fit it; * and ? fit several")
      ->check(correctBrackets(false));
  word.add_flag("--limits", arguments->hasLimits, "Also whose limits may be others");
  word.add_flag("--time", arguments->hasTime, "With the time of each");
  return [arguments](Client& client) { return watch(client, *arguments); };
}

// keep: the values of a device in a file, as they change.
#include <glib-unix.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <map>
#include <memory>

#include "ctl/service/exit_status.h"
#include "ctl/service/operator_messages.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "ctl/words/stored_values.h"
#include "ctl/words/values_file.h"
#include "ctl/words/word.h"

namespace {

struct KeepArguments {
  std::string file;
  int every = 5;  // in seconds
  bool isOnce = false;
};

// The file, which is written where it would not hold the same.
class KeptFile {
 public:
  explicit KeptFile(std::string path) : path_(std::move(path)) {
    std::string error;
    std::optional<std::string> text;
    if (path_ != "-") text = tryReadFile(path_, error);
    isThere_ = text.has_value();
    if (text) text_ = *std::move(text);
  }

  // What the next text that is written lacks.
  void noteLeftOut(const Names& names) { leftOut_ = leftOutText(names); }

  // `commit` is the last one that the values come from, where that is known. Ends the program where
  // the file cannot be written.
  void write(const std::vector<Assignment>& values, std::optional<uint64_t> commit) {
    // A device without any value has lost them; those that are kept are worth more.
    if (values.empty() && isThere_) {
      tellOperator(NOTHING_TO_KEEP, "no parameter has a value");
      return;
    }
    std::string text = valuesText(values);
    if (isThere_ && text == text_) return;
    if (!tryWriteFile(path_, text)) {
      tellOperator(VALUES_NOT_WRITTEN, quotedWord(path_) + ": " + std::strerror(errno));
      std::exit(STATUS_REFUSED);
    }
    text_ = std::move(text);
    isThere_ = true;
    tellOperator(VALUES_KEPT,
                 std::to_string(values.size()) +
                     (values.size() == 1 ? " value in " : " values in ") + quotedWord(path_) +
                     (leftOut_.empty() ? "" : "; " + leftOut_),
                 {.transaction = commit});
  }

 private:
  const std::string path_;
  bool isThere_;
  std::string text_;
  std::string leftOut_;
};

// Follows the service through its ends and starts, until it is told to end.
class Keeper {
 public:
  Keeper(Client& client, const KeepArguments& arguments)
      : bus_(client.service.bus()),
        service_(client.service),
        file_(arguments.file),
        every_(arguments.every * G_TIME_SPAN_SECOND) {}

  int run() {
    GDBusConnection* const connection = &bus_.connection();
    bus_.doNotWait();
    bus_.subscribe("Changed", onChanged, this);
    g_signal_connect(connection, "closed", G_CALLBACK(onClosed), this);
    g_bus_watch_name_on_connection(connection, bus_.name().c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
                                   onAppeared, onVanished, this, nullptr);
    for (const int number : {SIGTERM, SIGINT, SIGHUP}) g_unix_signal_add(number, onSignal, this);
    while (!isOver_) g_main_context_iteration(nullptr, TRUE);
    return status_;
  }

 private:
  // What a call that waits is for; the service may have been replaced when its answer comes.
  struct Wait {
    Keeper* keeper;
    std::string owner;
  };

  static void onAppeared(GDBusConnection* /*connection*/, const gchar* /*name*/, const gchar* owner,
                         gpointer self) {
    static_cast<Keeper*>(self)->begin(owner);
  }
  static void onVanished(GDBusConnection* /*connection*/, const gchar* /*name*/, gpointer self) {
    static_cast<Keeper*>(self)->leave();
  }
  static void onClosed(GDBusConnection* /*connection*/, gboolean /*isByPeer*/, GError* /*error*/,
                       gpointer self) {
    auto& keeper = *static_cast<Keeper*>(self);
    keeper.leave();
    complain("the bus has gone");
    keeper.end(STATUS_NO_SERVICE);
  }
  static gboolean onSignal(gpointer self) {
    auto& keeper = *static_cast<Keeper*>(self);
    keeper.keepAnnounced();
    // There may be more: what has been announced, too, may not have been read yet.
    if (keeper.isReady_) keeper.keepStored();
    keeper.end(STATUS_DONE);
    return G_SOURCE_CONTINUE;
  }
  static gboolean onTime(gpointer self) {
    auto& keeper = *static_cast<Keeper*>(self);
    keeper.timer_ = 0;
    if (keeper.isDirty_) keeper.keepStored();
    return G_SOURCE_REMOVE;
  }
  static void onChanged(GDBusConnection* /*connection*/, const gchar* sender, const gchar* /*path*/,
                        const gchar* /*interface*/, const gchar* /*signal*/, GVariant* parameters,
                        gpointer self) {
    auto& keeper = *static_cast<Keeper*>(self);
    if (keeper.isReady_ && keeper.owner_ == sender) keeper.note(changedCommit(*parameters));
  }
  static void onReady(GObject* connection, GAsyncResult* result, gpointer data) {
    const std::unique_ptr<Wait> wait(static_cast<Wait*>(data));
    GError* error = nullptr;
    GVariant* const reply =
        g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &error);
    // A service of before there was a wait is ready.
    const bool isReady =
        reply != nullptr || g_error_matches(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD);
    if (reply != nullptr) g_variant_unref(reply);
    g_clear_error(&error);
    if (isReady && wait->keeper->owner_ == wait->owner) wait->keeper->keepFirst();
  }

  void end(int status) {
    isOver_ = true;
    status_ = status;
  }

  // Only this owner of the name is asked: another one may not be ready, and has no values then.
  void begin(const gchar* owner) {
    owner_ = owner;
    bus_.callOnly(owner_);
    bus_.send({{PARAMETERS_INTERFACE, "Watch", "()"}, g_variant_new("(bb)", TRUE, FALSE)});
    g_dbus_connection_call(&bus_.connection(), owner, bus_.path(PARAMETERS_INTERFACE).c_str(),
                           interfaceName(PARAMETERS_INTERFACE), "WaitReady", nullptr, nullptr,
                           G_DBUS_CALL_FLAGS_NO_AUTO_START, G_MAXINT, nullptr, onReady,
                           new Wait{this, owner_});
  }

  void keepFirst() {
    tellOperator(SERVICE_BACK, "");
    isReady_ = true;
    isDirty_ = true;
    keepStored();
  }

  // Writes what the service has. Where that goes meanwhile, leave() writes what it has announced;
  // where it is late, it is asked again.
  void keepStored() {
    if (!levels_) {
      if (std::optional<std::vector<ListedParameter>> listed = service_.tryList()) {
        levels_.emplace(*std::move(listed));
      }
    }
    const auto stored = levels_ ? storedValues(service_, *levels_, false, true) : std::nullopt;
    if (!stored) return keepLater(every_);
    const std::vector<Assignment> values = valuesWorthKeeping(*stored);
    values_.emplace();
    for (const Assignment& each : values) (*values_)[each.name] = each.value;
    file_.noteLeftOut(stored->leftOut);
    write(values);
  }

  void keepLater(gint64 rest) {
    if (timer_ != 0) return;
    timer_ = g_timeout_add(rest <= 0 ? 0 : static_cast<guint>(rest / 1000 + 1), onTime, this);
  }

  void write(const std::vector<Assignment>& values) {
    isDirty_ = false;
    last_ = g_get_monotonic_time();
    file_.write(values, commit_);
  }

  void note(const PastCommit& commit) {
    commit_ = commit.serial;
    if (!values_) return;  // they are still to be read
    for (const Change& change : commit.changes) {
      if (!levels_->has(change.name) || levels_->access(change.name) != "rw") continue;
      isDirty_ = true;
      // An announcement to others that changes nothing may be of a value that cannot be set.
      if (change.before.empty() && change.after.empty()) continue;
      (*values_)[change.name] = change.after;
    }
    if (isDirty_) keepLater(last_ + every_ - g_get_monotonic_time());
  }

  // Where the service has gone, what it has announced is all there is.
  void keepAnnounced() {
    if (!values_ || !isDirty_) return;
    std::vector<Assignment> values;
    for (const auto& [name, value] : *values_) values.push_back({name, value});
    write(values);
  }

  void leave() {
    if (owner_.empty()) return;
    keepAnnounced();
    if (isReady_) tellOperator(SERVICE_GONE, "; waiting for it");
    isReady_ = false;
    isDirty_ = false;
    levels_.reset();
    values_.reset();
    owner_.clear();
    commit_.reset();
  }

  Bus& bus_;
  Service& service_;
  KeptFile file_;
  const gint64 every_;  // in microseconds
  std::string owner_;   // of the name; empty where there is no service
  bool isReady_ = false;
  bool isDirty_ = false;  // whether something has changed since it was written
  bool isOver_ = false;
  int status_ = STATUS_DONE;
  guint timer_ = 0;
  gint64 last_ = G_MININT64 / 2;  // when it was written
  std::optional<uint64_t> commit_;
  // Of this owner, as soon as they have been read.
  std::optional<Levels> levels_;
  std::optional<std::map<std::string, std::string>> values_;
};

int keep(Client& client, const KeepArguments& arguments) {
  if (!arguments.isOnce) return Keeper(client, arguments).run();
  const Levels levels(client.service);
  const StoredValues stored = storedValues(client.service, levels, false).value();
  KeptFile file(arguments.file);
  file.noteLeftOut(stored.leftOut);
  file.write(valuesWorthKeeping(stored), std::nullopt);
  return STATUS_DONE;
}

}  // namespace

RunWord defineKeep(CLI::App& word) {
  const auto arguments = std::make_shared<KeepArguments>();
  addText(word, "FILE", arguments->file, "The file to be replaced, as of ostrelctl save")
      ->required();
  word.add_option("--every", arguments->every, "Write so often at most (5)")
      ->check(wholeNumber(1, 86400))
      ->type_name("SECONDS");
  word.add_flag("--once", arguments->isOnce, "Write once, and end");
  return [arguments](Client& client) { return keep(client, *arguments); };
}

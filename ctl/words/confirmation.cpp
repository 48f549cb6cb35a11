#include "ctl/words/confirmation.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

#include "ctl/service/exit_status.h"

namespace {

constexpr int IGNORED[] = {SIGHUP, SIGPIPE, SIGTSTP, SIGTTIN, SIGTTOU};
constexpr int TAKEN[] = {SIGINT, SIGQUIT, SIGTERM, SIGUSR1};

// The numbers of signals, from their handler.
int signalPipe[2] = {-1, -1};

void noteSignal(int number) {
  const auto byte = static_cast<char>(number);
  // Where the pipe is full, enough signals are noted.
  static_cast<void>(!write(signalPipe[1], &byte, 1));
}

void handleSignals() {
  if (pipe2(signalPipe, O_CLOEXEC | O_NONBLOCK) != 0) {
    endWith(STATUS_REFUSED, "no more files can be opened");
  }
  for (const int number : IGNORED) std::signal(number, SIG_IGN);
  for (const int number : TAKEN) std::signal(number, noteSignal);
}

// Keys that were typed before the question do not answer it. In the background, they are not ours.
void forgetTypedKeys() {
  if (tcgetpgrp(STDIN_FILENO) == getpgrp()) tcflush(STDIN_FILENO, TCIFLUSH);
}

}  // namespace

Confirmation::Confirmation(Service& service)
    : service_(service), own_(g_dbus_connection_get_unique_name(&service.bus().connection())) {
  handleSignals();
  forgetTypedKeys();
  GDBusConnection* const connection = &service.bus().connection();
  closing_ = g_signal_connect(connection, "closed", G_CALLBACK(onClosed), this);
  nameWatch_ = g_bus_watch_name_on_connection(connection, service.bus().name().c_str(),
                                              G_BUS_NAME_WATCHER_FLAGS_NONE, onAppeared, onVanished,
                                              this, nullptr);
  subscription_ = service.bus().subscribe("Changed", onChanged, this);
  service.watch(true, false);
  while (owner_.empty() && !isDecided_) g_main_context_iteration(nullptr, TRUE);
}

Confirmation::~Confirmation() {
  g_bus_unwatch_name(nameWatch_);
  g_dbus_connection_signal_unsubscribe(&service_.bus().connection(), subscription_);
  g_signal_handler_disconnect(&service_.bus().connection(), closing_);
}

// A commit is told behind its own answer, and before that to any later call.
void Confirmation::takeSignals() {
  service_.watch(true, false);
  while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
  }
}

Decision Confirmation::wait(int seconds) {
  const guint timer = g_timeout_add_seconds(static_cast<guint>(seconds), onLate, this);
  const guint signals = g_unix_fd_add(signalPipe[0], G_IO_IN, onSignal, this);
  if (isatty(STDIN_FILENO) == 1) {
    g_unix_fd_add(STDIN_FILENO, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), onKeys,
                  this);
  }
  while (!isDecided_) g_main_context_iteration(nullptr, TRUE);
  if (decision_ != DECISION_LATE) g_source_remove(timer);
  g_source_remove(signals);
  return decision_;
}

const PastCommit* Confirmation::laterCommit(const std::string& name) const {
  const auto found = later_.find(name);
  return found == later_.end() ? nullptr : &found->second;
}

void Confirmation::decide(Decision decision) {
  if (isDecided_) return;
  isDecided_ = true;
  decision_ = decision;
}

void Confirmation::onAppeared(GDBusConnection* /*connection*/, const gchar* /*name*/,
                              const gchar* owner, gpointer self) {
  auto& confirmation = *static_cast<Confirmation*>(self);
  if (confirmation.owner_.empty()) confirmation.owner_ = owner;
  if (confirmation.owner_ != owner) confirmation.decide(DECISION_NO_SERVICE);
}

void Confirmation::onVanished(GDBusConnection* connection, const gchar* /*name*/, gpointer self) {
  const bool hasBus = connection != nullptr && g_dbus_connection_is_closed(connection) == FALSE;
  static_cast<Confirmation*>(self)->decide(hasBus ? DECISION_NO_SERVICE : DECISION_NO_BUS);
}

void Confirmation::onClosed(GDBusConnection* /*connection*/, gboolean /*isByPeer*/,
                            GError* /*error*/, gpointer self) {
  static_cast<Confirmation*>(self)->decide(DECISION_NO_BUS);
}

void Confirmation::onChanged(GDBusConnection* /*connection*/, const gchar* /*sender*/,
                             const gchar* /*path*/, const gchar* /*interface*/,
                             const gchar* /*signal*/, GVariant* parameters, gpointer self) {
  auto& confirmation = *static_cast<Confirmation*>(self);
  const PastCommit commit = changedCommit(*parameters);
  for (const Change& change : commit.changes) {
    if (commit.caller == confirmation.own_) {
      confirmation.changes_.push_back(change);
    } else {
      confirmation.later_[change.name] = {
          .serial = commit.serial, .time = 0, .caller = commit.caller, .changes = {}};
    }
  }
}

gboolean Confirmation::onSignal(gint descriptor, GIOCondition /*condition*/, gpointer self) {
  char number = 0;
  if (read(descriptor, &number, 1) == 1) {
    static_cast<Confirmation*>(self)->decide(number == SIGUSR1 ? DECISION_CONFIRMED
                                                               : DECISION_INTERRUPTED);
  }
  return G_SOURCE_CONTINUE;
}

// A terminal that is lost, or that belongs to somebody else, answers no more.
gboolean Confirmation::onKeys(gint descriptor, GIOCondition /*condition*/, gpointer self) {
  std::array<char, 256> keys;
  const ssize_t length = read(descriptor, keys.data(), keys.size());
  if (length <= 0) return G_SOURCE_REMOVE;
  const std::string_view typed(keys.data(), static_cast<size_t>(length));
  if (typed.find('\n') != std::string_view::npos) {
    static_cast<Confirmation*>(self)->decide(DECISION_CONFIRMED);
  }
  return G_SOURCE_CONTINUE;
}

gboolean Confirmation::onLate(gpointer self) {
  static_cast<Confirmation*>(self)->decide(DECISION_LATE);
  return G_SOURCE_REMOVE;
}

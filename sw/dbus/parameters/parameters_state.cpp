#include "sw/dbus/parameters/parameters_state.h"

#include <glib.h>

#include <algorithm>
#include <exception>
#include <new>
#include <span>
#include <utility>

#include "sw/dbus/call_queue.h"
#include "sw/dbus/parameters/message_writer.h"
#include "sw/dbus/reply.h"

namespace {

uint64_t now() { return static_cast<uint64_t>(g_get_real_time()); }

// The bytes that a change takes in the signal.
size_t bytesOf(const Change& change, const CommitRecord& record) {
  constexpr size_t MENDED = 3;  // a byte that is not valid becomes so many
  const size_t length =
      change.name.size() + record.before(change).size() + change.held->value.text().size();
  return MENDED * length + 32;
}

// The parameters that read one of those that have changed, by themselves or by an index, in name
// order.
std::vector<const ParmEntry*> readersOf(Database& database, const std::vector<Change>& changes,
                                        const std::vector<ParmEntry*>& unreported) {
  const uint32_t walk = database.newWalk();
  std::vector<const ParmEntry*> readers;
  const auto add = [&](const std::vector<ParmEntry*>& parms) {
    for (ParmEntry* parm : parms) {
      if (std::exchange(parm->walk, walk) != walk) readers.push_back(parm);
    }
  };
  const ParmEntry* last = nullptr;
  const auto addReadersOf = [&](const ParmEntry* parm) {
    if (std::exchange(last, parm) == parm) return;
    add(parm->dependents);
    if (!parm->isNamedByIndices) return;
    for (const IndexEntry* index : parm->indices->naming) add(index->dependents);
  };
  for (const Change& change : changes) addReadersOf(change.parm);
  for (const ParmEntry* const parm : unreported) addReadersOf(parm);
  std::ranges::sort(readers, {}, &ParmEntry::rank);
  return readers;
}

// A signal of one object, to one client after the other.
class Signal {
 public:
  Signal(DBusConnection* connection, const std::string& path, const char* member)
      : connection_(connection),
        message_(dbus_message_new_signal(path.c_str(), PARAMETERS_INTERFACE_NAME, member)) {
    if (message_ == nullptr) throw std::bad_alloc();
  }
  [[nodiscard]] DBusMessage* message() { return message_.get(); }
  // Sends it to those who want it; there is at least one.
  void send(const TextMap<Watchers::Wishes>& watchers, bool Watchers::Wishes::*wish) {
    const std::string* next = nullptr;
    for (const auto& [client, wishes] : watchers) {
      if (!(wishes.*wish)) continue;
      if (next != nullptr) sendTo(*next, MessagePointer(dbus_message_copy(message_.get())));
      next = &client;
    }
    sendTo(*next, message_);  // most have one watcher, who needs no copy
  }

 private:
  void sendTo(const std::string& client, const MessagePointer& message) {
    const bool isSent = message != nullptr &&
                        dbus_message_set_destination(message.get(), client.c_str()) != 0 &&
                        dbus_connection_send(connection_, message.get(), nullptr) != 0;
    if (!isSent) throw std::bad_alloc();
  }

  DBusConnection* connection_;
  MessagePointer message_;
};

void fillChanged(DBusMessage* message, uint32_t serial, std::string_view caller,
                 std::span<const Change> changes, const CommitRecord& record) {
  MessageWriter out(message);
  out.number(serial);
  out.text(std::string(caller));
  out.array("(sss)", [&] {
    for (const Change& change : changes) {
      out.structure([&] {
        out.text(change.name);
        out.text(std::string(record.before(change)));
        out.text(change.held->value.text());
      });
    }
  });
}

// How many of `changes` fit into one message; a single one that does not is tried all the same.
size_t countFitting(std::span<const Change> changes, const CommitRecord& record) {
  constexpr size_t HEADER = 1024;
  size_t bytes = HEADER;
  size_t count = 0;
  while (count < changes.size() && bytes + bytesOf(changes[count], record) <= MAX_MESSAGE_BYTES) {
    bytes += bytesOf(changes[count++], record);
  }
  return std::max<size_t>(count, 1);
}

}  // namespace

ParametersState::ParametersState(DBusConnection* connection, std::string path,
                                 ServiceState& service, std::string version, bool isReady)
    : connection_(connection),
      path_(std::move(path)),
      service_(service),
      version_(std::move(version)),
      readiness_(connection, isReady),
      started_(now()) {
  service_.setObserver(this);
}

void ParametersState::committed(std::string_view caller, std::vector<Change> changes,
                                CommitRecord record) noexcept {
  const auto serial = static_cast<uint32_t>(++commits_);
  untold_ = {serial, now(), caller, std::move(changes), std::move(record)};
}

void ParametersState::callFinished() noexcept {
  if (!untold_) return;
  const Untold commit = *std::exchange(untold_, std::nullopt);
  if (!commit.changes.empty()) {
    history_.add(commit.serial, commit.time, commit.caller, commit.changes, commit.record);
  }
  if (watchers_.all().empty()) return;
  try {
    tellWatchers(commit);
  } catch (...) {
    // The values are stored; whoever misses the signal sees it by the next serial.
  }
}

void ParametersState::tellWatchers(const Untold& commit) {
  const auto& watchers = watchers_.all();
  const auto isWanted = [&](bool Watchers::Wishes::*wish) {
    return std::ranges::any_of(watchers, [&](const auto& each) { return each.second.*wish; });
  };
  if (isWanted(&Watchers::Wishes::changes)) {
    for (std::span<const Change> rest = commit.changes; !rest.empty();) {
      const size_t count = countFitting(rest, commit.record);
      Signal signal(connection_, path_, "Changed");
      fillChanged(signal.message(), commit.serial, commit.caller, rest.first(count), commit.record);
      signal.send(watchers, &Watchers::Wishes::changes);
      rest = rest.subspan(count);
    }
  }
  if (!isWanted(&Watchers::Wishes::limits)) return;
  const std::vector<const ParmEntry*> readers =
      readersOf(service_.database(), commit.changes, commit.record.unreported());
  if (readers.empty()) return;
  Signal signal(connection_, path_, "LimitsChanged");
  MessageWriter out(signal.message());
  out.number(commit.serial);
  out.array("s", [&] {
    for (const ParmEntry* const reader : readers) out.text(reader->parm.name());
  });
  signal.send(watchers, &Watchers::Wishes::limits);
}

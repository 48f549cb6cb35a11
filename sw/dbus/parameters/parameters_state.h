// The state behind the interface: what is counted and kept beside the service's own, and the
// signals that go out when something is committed.
#pragma once

#include <dbus/dbus.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sw/dbus/parameters/history.h"
#include "sw/dbus/parameters/readiness.h"
#include "sw/dbus/parameters/watchers.h"
#include "sw/dbus/service_state.h"

/// The interface of the object.
constexpr const char* PARAMETERS_INTERFACE_NAME = "org.tavrel.parameters1";

/// Lives as long as the service serves. A commit is added to the history, and its signals are made
/// and sent, behind the answer: so whoever commits does not wait for what others ask.
class ParametersState final : public ServiceObserver {
 public:
  /// Signals are sent on `connection`, as of the object at `path`. `service` outlives it and tells
  /// it from now on. `version` is of the daemon. Where it `isReady`, nobody has to say so.
  ParametersState(DBusConnection* connection, std::string path, ServiceState& service,
                  std::string version, bool isReady);
  ~ParametersState() override { service_.setObserver(nullptr); }

  void committed(std::string_view caller, std::vector<Change> changes,
                 CommitRecord record) noexcept override;
  void callFinished() noexcept override;
  void clientLeft(std::string_view name) noexcept override {
    watchers_.set(name, {});
    readiness_.leave(name);
  }

  [[nodiscard]] ServiceState& service() { return service_; }
  [[nodiscard]] Watchers& watchers() { return watchers_; }
  [[nodiscard]] Readiness& readiness() { return readiness_; }
  [[nodiscard]] const History& history() const { return history_; }
  [[nodiscard]] const std::string& version() const { return version_; }
  /// How many commits have changed something.
  [[nodiscard]] uint64_t commits() const { return commits_; }
  /// When it was made, in microseconds since 1970.
  [[nodiscard]] uint64_t started() const { return started_; }

 private:
  /// A commit that is not in the history yet and that the watchers have not been told of.
  struct Untold {
    uint32_t serial;
    uint64_t time;  // in microseconds since 1970
    std::string_view caller;
    std::vector<Change> changes;
    CommitRecord record;
  };
  void tellWatchers(const Untold& commit);

  DBusConnection* connection_;
  std::string path_;
  ServiceState& service_;
  std::string version_;
  Watchers watchers_;
  Readiness readiness_;
  History history_;
  std::optional<Untold> untold_;
  uint64_t commits_ = 0;
  uint64_t started_;
};

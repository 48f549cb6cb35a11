// A device that a daemon on a bus serves.
#pragma once

#include <gio/gio.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "play/device.h"

/// Calls the service over a connection, which outlives the device. What it announces is left out.
class ServedDevice final : public Device {
 public:
  /// The service is `name`, its object `path`; `known` is what is known of the device.
  ServedDevice(GDBusConnection& connection, std::string name, std::string path,
               std::optional<KnownDevice> known)
      : connection_(connection),
        name_(std::move(name)),
        path_(std::move(path)),
        known_(std::move(known)) {}

  /// The bus has neither "try" nor "why". An error that is not the service's own is given whole.
  Answer call(const Call& call) override;
  std::optional<KnownDevice> known() override { return known_; }

  /// The number that the last call had on the connection.
  [[nodiscard]] uint32_t lastSerial() const { return lastSerial_; }

 private:
  GDBusConnection& connection_;
  const std::string name_;
  const std::string path_;
  const std::optional<KnownDevice> known_;
  uint32_t lastSerial_ = 0;
};

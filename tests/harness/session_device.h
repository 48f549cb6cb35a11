// The daemon on the bus as the device of a session.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "play/device.h"
#include "tests/harness/client.h"

class SessionDevice final : public Device {
 public:
  /// `known` says what the author of the definition text knows. `client` outlives the device; what
  /// was announced to it before is left out.
  SessionDevice(Client& client, std::function<std::optional<KnownDevice>()> known);

  /// The bus has no "try", which is refused.
  Answer call(const Call& call) override;
  std::optional<KnownDevice> known() override { return known_(); }

 private:
  Client& client_;
  std::function<std::optional<KnownDevice>()> known_;
};

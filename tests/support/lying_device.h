// A device that lies, for tests: the engine's, with answers that somebody changes on the way.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "play/engine_device.h"

/// Changes the answer of a call; may be null.
using Lie = std::function<void(const Call& call, Answer& answer)>;

class LyingDevice final : public Device {
 public:
  LyingDevice(std::unique_ptr<Device> device, Lie lie)
      : device_(std::move(device)), lie_(std::move(lie)) {}

  Answer call(const Call& call) override {
    Answer answer = device_->call(call);
    if (lie_) lie_(call, answer);
    return answer;
  }
  std::optional<KnownDevice> known() override { return device_->known(); }

 private:
  std::unique_ptr<Device> device_;
  Lie lie_;
};

/// Starts such devices on the definition text `text`; what they judge is noted in `coverage`, where
/// there is one.
inline StartDevice startLying(const std::string& text, const Lie& lie,
                              TextCoverage* coverage = nullptr) {
  return [text, lie, coverage](const PlayConstants& constants) -> std::unique_ptr<Device> {
    std::unique_ptr<Device> device = startEngineDevice(text, constants, coverage);
    if (device == nullptr) return nullptr;
    return std::make_unique<LyingDevice>(std::move(device), lie);
  };
}

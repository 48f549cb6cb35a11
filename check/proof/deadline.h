// Deadlines: when no more is asked.
#pragma once

#include <chrono>
#include <optional>

/// A moment, or never.
class Deadline {
 public:
  using Clock = std::chrono::steady_clock;

  /// Never.
  Deadline() = default;
  explicit Deadline(Clock::time_point at) : at_(at) {}

  /// Whether it has come; once it has, always.
  [[nodiscard]] bool isOver() const { return at_ && Clock::now() >= *at_; }

 private:
  std::optional<Clock::time_point> at_;
};

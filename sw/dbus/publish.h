// Publishing: what a commit has changed goes out as the signal "transaction".
#pragma once

#include <vector>

#include "database/commit.h"
#include "sw/dbus/memory_reserve.h"
#include "sw/dbus/value_object.h"

/// Keeps the memory for the signal of a commit while its values are stored.
class SignalRoom final : public ChangeRoom {
 public:
  [[nodiscard]] bool makeRoom(const Change& change) override;
  /// For publish(), right before it.
  void release() noexcept { reserve_.release(); }

 private:
  MemoryReserve reserve_;
  size_t needed_ = 0;
};

/// Emits "name=value" for each of `changes`, in their order; nothing for no changes. What is too
/// much for one signal goes out in several; a text that is too much by itself is left out. Raises
/// no exception.
void publish(ValueObject* object, const std::vector<Change>& changes) noexcept;

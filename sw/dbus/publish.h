// Publishing: what a commit has changed goes out as the signal "transaction".
//
// commitAndPublish() hands a SignalRoom to the commit, and publishes its changes afterwards. The
// signal is sent before the reply of the method that commits.
#pragma once

#include <vector>

#include "database/commit.h"
#include "sw/dbus/memory_reserve.h"
#include "sw/dbus/value_object.h"

/// Keeps the memory for the signal of one commit while its values are stored. So a value that is
/// stored can always be announced: where there is no memory for its part of the signal, the commit
/// takes the value back and raises std::bad_alloc.
class SignalRoom final : public ChangeRoom {
 public:
  /// Keeps room for `change` beside all changes before it. Called by the commit, which is on a
  /// lower floor and knows the interface only. Returns false where there is no memory for it.
  [[nodiscard]] bool makeRoom(const Change& change) override;
  /// Gives the memory back, for publish() right after it.
  void giveBack() noexcept { reserve_.giveBack(); }

 private:
  MemoryReserve reserve_;
  size_t needed_ = 0;  // bytes, of all changes so far
};

/// Emits "name=value" for each of `changes`, in their order, as the signal of `object`. No signal
/// for no changes. More than MAX_MESSAGE_BYTES go out in several signals; a single text that is
/// longer is left out. Raises no exception, as the values are stored already: each text is waited
/// for until there is memory (retried()).
void publish(ValueObject* object, const std::vector<Change>& changes) noexcept;

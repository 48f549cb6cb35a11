// Memory reserve: memory that is there when the libraries need it, as they have no answer to less.
//
// Where it has no memory, GLib ends the process, and the binding library would drop a message. So
// the service asks for as much first, and fails the call where it cannot be had.
#pragma once

#include <cstddef>

/// What is taken without a look whether it is there, in bytes: 64 KiB. A process that has no memory
/// for as little ends (last_words.h).
constexpr size_t SMALL_MEMORY = size_t{64} << 10U;

/// How often a byte of a message is in memory while the bus library puts it together: its buffer
/// grows twofold, and the one before is there until the new one is filled.
constexpr size_t COPIES_IN_MESSAGE = 3;

/// Raises std::bad_alloc unless `bytes` can be had now; SMALL_MEMORY or less is never asked for.
/// Keeps none of it: whoever asks takes the memory right after.
void requireMemory(size_t bytes);

/// What is left for answers, and for calls that keep no memory, where the heap cannot grow any
/// more: 512 KiB, as org.tavrel.transaction(7) says.
constexpr size_t HEADROOM = size_t{512} << 10U;

/// Raises std::bad_alloc where HEADROOM more cannot be had: for calls that keep memory. The system
/// is asked only where the end of the heap has moved since HEADROOM was last found.
void requireHeadroom();

/// Keeps memory from everybody else until it is given back: addresses, which a limit of the address
/// space counts, but no pages, as nothing is written to it.
class MemoryReserve {
 public:
  MemoryReserve() = default;
  /// Gives all of it back.
  ~MemoryReserve() { giveBack(); }
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;

  /// Sees to it that the reserve, with SMALL_MEMORY beside it, has `bytes` or more; it never
  /// shrinks here. Returns false where that cannot be had: the reserve is then as before.
  [[nodiscard]] bool grow(size_t bytes) { return bytes <= SMALL_MEMORY + size_ || extend(bytes); }
  /// Gives all of it back, right before it is needed. The reserve can grow again.
  void giveBack() noexcept;

 private:
  bool extend(size_t bytes);

  void* memory_ = nullptr;
  size_t size_ = 0;
};

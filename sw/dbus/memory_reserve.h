// Memory reserve: memory that is there when the libraries need it, which have no answer to less.
#pragma once

#include <cstddef>

/// What is taken without a look whether it is there, in bytes; a process whose memory does not
/// suffice for as little ends (last_words.h).
constexpr size_t SMALL_MEMORY = size_t{64} << 10U;

/// How often a byte of a message is in memory while the bus library puts it together: its buffer
/// grows twofold, and the one before is there until the new one is filled.
constexpr size_t COPIES_IN_MESSAGE = 3;

/// Raises std::bad_alloc where `bytes` more, beyond SMALL_MEMORY, cannot be had.
void requireMemory(size_t bytes);

/// What is left for answers, and for calls that keep nothing, where the heap cannot grow any more.
constexpr size_t HEADROOM = size_t{512} << 10U;

/// Raises std::bad_alloc where the heap has grown, and HEADROOM more cannot be had: for calls that
/// keep memory.
void requireHeadroom();

/// Keeps memory from everybody else until it is released. Takes addresses, not pages.
class MemoryReserve {
 public:
  MemoryReserve() = default;
  ~MemoryReserve() { release(); }
  MemoryReserve(const MemoryReserve&) = delete;
  MemoryReserve& operator=(const MemoryReserve&) = delete;

  /// Keeps `bytes` or more, SMALL_MEMORY beside. Returns whether they could be had; what was kept
  /// before is kept in any case.
  [[nodiscard]] bool grow(size_t bytes) { return bytes <= SMALL_MEMORY + size_ || extend(bytes); }
  void release() noexcept;

 private:
  bool extend(size_t bytes);

  void* memory_ = nullptr;
  size_t size_ = 0;
};

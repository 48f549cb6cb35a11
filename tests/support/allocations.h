// Allocations, counted and failing at will, for tests. To be included by one source of a program:
// it replaces operator new and delete of the whole program.
//
//   Allocations::left = 3;         // the fourth allocation from here raises std::bad_alloc
//   ...
//   Allocations::left = SIZE_MAX;  // before the test framework allocates again
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

/// What operator new has been asked for, and what it will give. What malloc is asked for directly,
/// as by GLib, is not counted.
struct Allocations {
  inline static size_t count = 0;        ///< attempts so far, failed ones included
  inline static size_t live = 0;         ///< allocations that have not been given back
  inline static size_t left = SIZE_MAX;  ///< how many more succeed; SIZE_MAX: all
  inline static size_t most = SIZE_MAX;  ///< how many bytes one may have; a larger one fails

  /// What operator new does: memory of `size` bytes, or std::bad_alloc.
  static void* allocate(size_t size) {
    ++count;
    if (left == 0 || size > most) throw std::bad_alloc();
    if (left != SIZE_MAX) --left;
    void* const memory = malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++live;
    return memory;
  }
  /// What operator delete does; `memory` may be null.
  static void giveBack(void* memory) noexcept {
    if (memory != nullptr) --live;
    free(memory);
  }
};

// Inlined into each other, they would look mismatched to the compiler.
[[gnu::noinline]] void* operator new(size_t size) { return Allocations::allocate(size); }
[[gnu::noinline]] void* operator new[](size_t size) { return Allocations::allocate(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { Allocations::giveBack(memory); }
[[gnu::noinline]] void operator delete[](void* memory) noexcept { Allocations::giveBack(memory); }
[[gnu::noinline]] void operator delete(void* memory, size_t /*size*/) noexcept {
  Allocations::giveBack(memory);
}
[[gnu::noinline]] void operator delete[](void* memory, size_t /*size*/) noexcept {
  Allocations::giveBack(memory);
}

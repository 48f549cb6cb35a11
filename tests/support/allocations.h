// Allocations, counted and failing at will, for tests. To be included by one source of a program.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>

/// What operator new was asked for, and what it gives.
struct Allocations {
  inline static size_t count = 0;        ///< so far
  inline static size_t live = 0;         ///< that were not given back
  inline static size_t left = SIZE_MAX;  ///< how many more succeed
  inline static size_t most = SIZE_MAX;  ///< how many bytes one may have

  static void* allocate(size_t size) {
    ++count;
    if (left == 0 || size > most) throw std::bad_alloc();
    if (left != SIZE_MAX) --left;
    void* const memory = malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++live;
    return memory;
  }
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

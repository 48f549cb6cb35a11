// Arena: memory that is taken piece by piece and given back all at once.
#pragma once

#include <memory>
#include <memory_resource>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>

/// Holds what the reading of a definition text keeps: names, texts, lists. A piece costs a fraction
/// of an allocation of its own, and all of it goes in one step once the definitions are built. The
/// records and the texts of the lines have an arena each.
///
///   Arena arena;
///   const std::string_view name = arena.keepText(line.substr(0, 4));
///   // `line` may end; `name` is valid as long as the arena
///
/// Invariants:
/// 1. What is kept stays where it is for as long as the arena lives, also where the arena is moved.
///    An arena that was moved from is not used any more.
/// 2. Each piece is aligned for its type.
/// 3. No destructor is called for what it keeps.
/// 4. Where memory runs out, std::bad_alloc is raised and what was kept before is as it was.
///
/// It is the library's std::pmr::monotonic_buffer_resource, made movable.
class Arena {
 public:
  /// Keeps a copy of `text`, without a NUL behind it. An empty text takes no memory; its view is
  /// not null.
  std::string_view keepText(std::string_view text) {
    if (text.empty()) return "";
    const std::span<const char> kept = keepList(std::span(text.data(), text.size()));
    return {kept.data(), kept.size()};
  }
  /// Keeps a copy of `elements`, aligned for T. An empty list takes no memory.
  template <typename T>
  std::span<const T> keepList(std::span<const T> elements) {
    static_assert(std::is_trivially_copyable_v<T>, "what is kept is never destroyed");
    if (elements.empty()) return {};
    T* const kept = static_cast<T*>(memory_->allocate(elements.size_bytes(), alignof(T)));
    std::uninitialized_copy(elements.begin(), elements.end(), kept);
    return {kept, elements.size()};
  }
  /// Keeps a copy of `element`, aligned for T; the copy may be changed. T must own nothing outside
  /// the arena, because its destructor is never called.
  template <typename T>
  T& keep(const T& element) {
    return *new (memory_->allocate(sizeof(T), alignof(T))) T(element);
  }

 private:
  // In a place of its own: a std::pmr resource cannot be moved.
  std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_ =
      std::make_unique<std::pmr::monotonic_buffer_resource>();
};

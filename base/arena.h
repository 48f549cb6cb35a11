// Record memory: what the records of a text are made of. It is taken piece by piece and given back
// all at once, which costs a fraction of an allocation for each piece.
#pragma once

#include <memory>
#include <memory_resource>
#include <new>
#include <span>
#include <string_view>
#include <type_traits>

class Arena {
 public:
  /// A copy of `text`.
  std::string_view keepText(std::string_view text) {
    if (text.empty()) return "";
    const std::span<const char> kept = keepList(std::span(text.data(), text.size()));
    return {kept.data(), kept.size()};
  }
  /// A copy of `elements`.
  template <typename T>
  std::span<const T> keepList(std::span<const T> elements) {
    static_assert(std::is_trivially_copyable_v<T>, "what is kept is never destroyed");
    if (elements.empty()) return {};
    T* const kept = static_cast<T*>(memory_->allocate(elements.size_bytes(), alignof(T)));
    std::uninitialized_copy(elements.begin(), elements.end(), kept);
    return {kept, elements.size()};
  }
  /// A copy of `element`, which may be changed.
  template <typename T>
  T* keepOne(const T& element) {
    static_assert(std::is_trivially_copyable_v<T>, "what is kept is never destroyed");
    return new (memory_->allocate(sizeof(T), alignof(T))) T(element);
  }

 private:
  // In a place of its own, so that what was kept stays where it is when its owner is moved.
  std::unique_ptr<std::pmr::monotonic_buffer_resource> memory_ =
      std::make_unique<std::pmr::monotonic_buffer_resource>();
};

// Fixed lists: the elements of a vector that will not change any more, in less space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <utility>
#include <vector>

template <typename T>
class FixedList {
 public:
  FixedList() = default;
  explicit FixedList(std::vector<T>&& elements) : size_(static_cast<uint32_t>(elements.size())) {
    if (elements.empty()) return;
    elements_ = std::make_unique<T[]>(elements.size());
    std::move(elements.begin(), elements.end(), elements_.get());
  }
  FixedList(FixedList&& other) noexcept
      : elements_(std::move(other.elements_)), size_(std::exchange(other.size_, 0)) {}
  FixedList& operator=(FixedList&& other) noexcept {
    elements_ = std::move(other.elements_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }

  [[nodiscard]] std::span<const T> all() const { return {elements_.get(), size_}; }
  [[nodiscard]] std::span<T> all() { return {elements_.get(), size_}; }

 private:
  std::unique_ptr<T[]> elements_;
  uint32_t size_ = 0;
};

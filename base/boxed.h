// Boxed: a value that most of its owners do not have. Where it was never changed it takes the
// space of a pointer.
#pragma once

#include <memory>

template <typename T>
class Boxed {
 public:
  Boxed() = default;
  Boxed(const Boxed& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  Boxed(Boxed&&) noexcept = default;
  Boxed& operator=(const Boxed& other) { return *this = Boxed(other); }
  Boxed& operator=(Boxed&&) noexcept = default;
  ~Boxed() = default;

  /// The value, or a fresh one.
  [[nodiscard]] const T& get() const {
    static const T fresh;
    return value_ ? *value_ : fresh;
  }
  const T* operator->() const { return &get(); }
  /// The value, which then is there.
  T& change() {
    if (!value_) value_ = std::make_unique<T>();
    return *value_;
  }

 private:
  std::unique_ptr<T> value_;
};

// Boxed: a value that most of its owners do not have, in a place of its own.
#pragma once

#include <memory>
#include <utility>

/// A T that takes the space of a pointer until it is changed for the first time, and reads as a
/// fresh T until then. There are as many definitions as a text likes, and most have neither
/// indices nor translations nor texts in their ranges.
///
/// Invariants:
/// 1. Reading allocates nothing: what was never changed is one T that all share.
/// 2. A copy has a value of its own; a move leaves a fresh one.
/// 3. Where memory runs out (std::bad_alloc), the value is as before.
///
/// Library / this: T in place 1.1 to 1.2 building definitions, 1.0 to 1.6 finding by name;
/// std::optional<T> 1.0 to 1.2, 1.05 to 1.5, and 0.93 in a commit that moves nothing else
/// (docs/performance.md, "Containers").
template <typename T>
class Boxed {
 public:
  Boxed() = default;
  /// Takes a list or map; an empty one takes no memory.
  explicit Boxed(T&& value)
      : value_(value.empty() ? nullptr : std::make_unique<T>(std::move(value))) {}
  Boxed(const Boxed& other) : value_(other.value_ ? std::make_unique<T>(*other.value_) : nullptr) {}
  Boxed(Boxed&&) noexcept = default;
  Boxed& operator=(const Boxed& other) { return *this = Boxed(other); }
  Boxed& operator=(Boxed&&) noexcept = default;
  ~Boxed() = default;

  /// The value. The reference holds until change() is called for the first time.
  [[nodiscard]] const T& get() const {
    static const T fresh;
    return value_ ? *value_ : fresh;
  }
  const T* operator->() const { return &get(); }
  /// The value to be changed, which from now on is the owner's. The reference holds as long as the
  /// box is neither assigned to nor moved.
  T& change() {
    if (!value_) value_ = std::make_unique<T>();
    return *value_;
  }

 private:
  std::unique_ptr<T> value_;
};

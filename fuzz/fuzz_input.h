// Fuzz input: the bytes of one run, read as choices.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

class FuzzInput {
 public:
  FuzzInput(const uint8_t* data, size_t size) : next_(data), end_(data + size) {}

  [[nodiscard]] bool atEnd() const { return next_ == end_; }
  /// The next byte; 0 behind the end, so that a short input is a complete one.
  uint8_t byte() { return atEnd() ? uint8_t{0} : *next_++; }
  /// A number from 0 to `count` - 1; `count` is at most 256.
  uint32_t below(uint32_t count) { return byte() % count; }
  bool flip() { return below(2) == 1; }
  /// One element of `choices`.
  template <typename T, size_t N>
  const T& pick(const T (&choices)[N]) {
    static_assert(N <= 256);
    return choices[below(N)];
  }

 private:
  const uint8_t* next_;
  const uint8_t* end_;
};

/// All bytes of a run as a text.
inline std::string_view textOf(const uint8_t* data, size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

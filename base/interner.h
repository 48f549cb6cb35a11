// Interner: numbers for distinct names, and the names of the numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/boxed.h"
#include "base/hash_index.h"
#include "base/text_map.h"

/// Gives each distinct name a number, from 0 in the order in which the names come. Used for the
/// variables of a definition (few names), for all names that a text refers to, and for the
/// instances of a parameter that hold a value (up to a million).
///
/// Invariants:
/// 1. The names have the numbers 0 to size() - 1, and a name keeps its number.
/// 2. No name is there twice.
/// 3. The texts lie behind one another: a search touches nothing of what has the names.
/// 4. Up to FEW names there is no hash index; the search is a walk, which is as fast.
/// 5. Where memory runs out (std::bad_alloc), everything is as before the call.
///
/// Library / this, with a vector of the names: std::unordered_map 1.06 to 2.5, absl::flat_hash_map
/// 1.9 to 3.2 (docs/performance.md, "Containers").
class Interner {
 public:
  /// The number of `name`, or nullopt. A walk over FEW names at most, or a search in the hash
  /// index, which takes constant time on average.
  [[nodiscard]] std::optional<uint32_t> find(std::string_view name) const {
    if (size() <= FEW) return walk(name);
    return numbers_->find(TextHash{}(name),
                          [&](uint32_t number) { return (*this)[number] == name; });
  }
  /// The number of `name`, which is added where it is new. At most 2^31 names (HashIndex). A copy
  /// of the text is kept: the caller's need not live on.
  uint32_t intern(std::string_view name) {
    const std::optional<uint32_t> known = find(name);
    return known ? *known : add(name);
  }
  /// How many names there are.
  [[nodiscard]] size_t size() const { return ends_.size(); }
  [[nodiscard]] bool empty() const { return ends_.empty(); }
  /// The name of `number`, which is less than size(). The view holds until a name is added or the
  /// interner is moved.
  [[nodiscard]] std::string_view operator[](uint32_t number) const {
    // A name begins where the one before it ends, so one position for each is enough.
    const size_t begin = number == 0 ? 0 : ends_[number - 1];
    return std::string_view(text_).substr(begin, ends_[number] - begin);
  }

 private:
  static constexpr size_t FEW = 8;

  [[nodiscard]] std::optional<uint32_t> walk(std::string_view name) const {
    for (uint32_t number = 0; number < size(); ++number) {
      if ((*this)[number] == name) return number;
    }
    return std::nullopt;
  }
  // Adds a name that is not there. The order of the steps makes invariant 5: first all that asks
  // for memory, and the new name counts only when its end is pushed back.
  uint32_t add(std::string_view name) {
    const auto number = static_cast<uint32_t>(size());
    if (number >= FEW) numbers_.change().makeRoom(number == FEW ? FEW + 1 : 1);
    text_.resize(ends_.empty() ? 0 : ends_.back());  // a call that failed may have left some
    text_.append(name);
    ends_.push_back(text_.size());
    // From here on nothing can fail.
    if (number == FEW) {
      for (uint32_t earlier = 0; earlier < number; ++earlier) index(earlier);
    }
    if (number >= FEW) index(number);
    return number;
  }
  // Has the hash index find the name of `number`. add() has made the room before.
  void index(uint32_t number) { numbers_.change().add(TextHash{}((*this)[number]), number); }

  // All names, one behind the other, without anything between them.
  std::string text_;
  std::vector<size_t> ends_;  // of each name in text_
  Boxed<HashIndex> numbers_;
};

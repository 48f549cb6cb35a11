// Name tables: numbers for names, in the order in which they are added.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/hash_index.h"
#include "base/text_map.h"

/// The names are kept behind one another, so that looking for one leaves everything else alone.
class Interner {
 public:
  /// The number of `name`, or nothing.
  [[nodiscard]] std::optional<uint32_t> find(std::string_view name) const {
    return numbers_.find(TextHash{}(name),
                         [&](uint32_t number) { return (*this)[number] == name; });
  }
  /// Adds a name that is not there yet. Its number is the count of those before it. Where memory is
  /// exhausted, the table is as before.
  void add(std::string_view name) {
    numbers_.makeRoom();
    text_.resize(ends_.empty() ? 0 : ends_.back());
    text_.append(name);
    ends_.push_back(text_.size());
    numbers_.add(TextHash{}(name), static_cast<uint32_t>(ends_.size() - 1));
  }
  [[nodiscard]] size_t size() const { return ends_.size(); }
  [[nodiscard]] std::string_view operator[](uint32_t number) const {
    const size_t begin = number == 0 ? 0 : ends_[number - 1];
    return std::string_view(text_).substr(begin, ends_[number] - begin);
  }

 private:
  std::string text_;
  std::vector<size_t> ends_;  // of each name in text_
  HashIndex numbers_;
};

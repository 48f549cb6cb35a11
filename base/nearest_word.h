// Nearest words: what a mistyped word may have been meant to be.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

/// How many letters have to be changed, added, left out or swapped with their neighbour to make
/// `to` of `from`. Upper and lower case count as different by half: the result is in halves. Not
/// more than `limit` is worked out: `limit` + 1 stands for all that is further.
size_t wordDistance(std::string_view from, std::string_view to, size_t limit);

/// Gathers candidates for a word and keeps the nearest.
class NearestWord {
 public:
  explicit NearestWord(std::string_view word);
  /// Offers a candidate. Of equally near ones the first stays.
  void offer(std::string_view candidate);
  void offer(std::span<const std::string_view> candidates);
  /// The nearest candidate, or nothing where none is so near that it may have been meant: a third
  /// of the letters may differ, of short words one.
  [[nodiscard]] std::optional<std::string_view> found() const { return found_; }

 private:
  std::string_view word_;
  size_t limit_;                   // in halves
  size_t caseChanges_ = SIZE_MAX;  // of a candidate that differs in case alone
  std::optional<std::string_view> found_;
};

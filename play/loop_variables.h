// The variables of the loops that are being played.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "play/session_words.h"

class LoopVariables {
 public:
  /// How many there are.
  [[nodiscard]] size_t size() const { return variables_.size(); }
  /// Adds the variables of a loop, which have no value yet.
  void add(const std::vector<std::string>& names);
  /// Gives the variable `number`, in the order in which they were added, its value.
  void set(size_t number, std::string value) { variables_[number].second = std::move(value); }
  /// Takes all but the first `size` away.
  void keep(size_t size) { variables_.resize(size); }

  /// The value of a variable, or null.
  [[nodiscard]] const std::string* find(const std::string& name) const;
  /// The text of a word from its piece `first` on, with the values of its variables, all of which
  /// have to be there.
  [[nodiscard]] std::string valueOf(const SessionWord& word, size_t first = 0) const;
  /// All of them as words: "s=720p/50 c=1".
  [[nodiscard]] std::string shown() const;

 private:
  std::vector<std::pair<std::string, std::string>> variables_;
};

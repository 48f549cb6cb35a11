// Ranges as the model knows them: which values they take, and what becomes of any other.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The number that the whole of `text` is; the empty text is 0.
std::optional<int> numberOf(const std::string& text);

struct Range {
  std::vector<std::pair<int, int>> spans;  ///< ascending, apart, both ends included
  std::vector<std::string> texts;          ///< the first one corrects

  /// Whether the range takes `value`; if not, it is brought in. The empty value is never taken
  /// where there are only numbers, but stays as it is where 0 is allowed.
  bool takes(std::string& value) const;
  [[nodiscard]] bool takesWithoutCorrection(std::string value) const { return takes(value); }

 private:
  [[nodiscard]] int nearest(int number) const;
  bool takesNumber(std::string& value) const;
  bool takesText(std::string& value) const;
};

// Narrowing: beginnings in the place of more candidates than anybody reads.
#pragma once

#include <string>
#include <vector>

/// What may be typed next.
struct Candidates {
  std::vector<std::string> words = {};
  bool isWhole = true;  ///< else words are beginnings, and more has to be typed behind them
};

/// As many as are offered at once.
constexpr size_t MOST_CANDIDATES = 200;

/// The words, which differ from each other and are in any order. Where they are too many, their
/// beginnings up to the bracket of an index, else up to the first sign in which they differ: more
/// than one of them, and not too many.
Candidates narrowed(std::vector<std::string> words);

// Explained places: the parts of a text about which a finding has said all that follows from it.
#pragma once

#include <cstdint>
#include <set>
#include <utility>

#include "deflang/expression/token.h"

/// The tokens that a static finding explains. What is proved of an expression that has one of them
/// mostly follows from that finding, and is not worth a second one.
class ExplainedPlaces {
 public:
  /// Explains the token at `at`.
  void add(Position at) { places_.emplace(at.line, at.column); }
  /// Whether the token at `at` is explained.
  [[nodiscard]] bool contains(Position at) const { return places_.contains({at.line, at.column}); }
  /// Whether a token of `expression` is explained. Takes time linear in the tokens.
  [[nodiscard]] bool explains(const Expression& expression) const {
    for (const Token& token : expression.tokens) {
      if (contains(token.at)) return true;
    }
    return false;
  }

 private:
  std::set<std::pair<uint32_t, uint32_t>> places_;
};

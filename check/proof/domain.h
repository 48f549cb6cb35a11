// Domains: the values that a name may have in any situation at all.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "sw/parm/bounds.h"

/// A set of value texts: every spelling of the numbers in its spans, and its texts. A superset of
/// what can be held is as good for a proof that something never happens.
class Domain {
 public:
  /// The set of all texts.
  static Domain all();
  /// The set of one text.
  static Domain of(std::string_view text);

  void addSpan(int32_t low, int32_t high) { integers_.addSpan(low, high); }
  /// Adds a text: the number where it spells one. The empty text is a text of its own, though an
  /// expression reads it as 0.
  void addText(std::string_view text);
  /// Adds what `bounds` accept; all texts where they have no entries.
  void add(const BoundsParm& bounds);
  void add(const Domain& other);
  /// The same without the empty text, unless it is the set of all texts.
  [[nodiscard]] Domain withoutEmpty() const;
  /// Makes it the set of all texts.
  void addAll() { isAll_ = true; }

  [[nodiscard]] bool isAll() const { return isAll_; }
  [[nodiscard]] bool contains(std::string_view text) const;
  [[nodiscard]] const Spans& spans() const { return integers_.spans(); }
  [[nodiscard]] const std::set<std::string, std::less<>>& texts() const { return texts_; }
  /// How many values there are, every number counted once; UINT64_MAX for all texts.
  [[nodiscard]] uint64_t size() const;
  /// Every value, numbers first in decimal, for a set of at most `most` values; else nullopt.
  [[nodiscard]] std::optional<std::vector<std::string>> values(uint64_t most) const;

 private:
  bool isAll_ = false;
  BoundsInteger integers_;
  std::set<std::string, std::less<>> texts_;
};

/// How many values of one parameter are tried where several parameters are set one after the other.
constexpr uint64_t TRIED_VALUES = 12;

/// Values of `domain` to try: all where there are at most `few`, else so many of the ends of its
/// spans and of its texts.
std::vector<std::string> valuesToTry(const Domain& domain, uint64_t few);

// Random definition texts, for tests: the same for the same seed.
//
// A text has two indices, i (0 and 1, with statements at random) and j (0 and "a"), and the
// parameters a, b, c and d:
//
//   i index { rangeValid { 0..1 } ctrlValid ( b[0] > 2 ) }
//   j index { rangeValid { 0, "a" } }
//   a rw { index { i } default { (i + c) } ctrlRO ( d ) }
//   ...
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/database.h"

using Texts = std::vector<std::string>;

/// Values to set: numbers on both sides of the ranges' ends, and texts.
inline const Texts VALUES = {"",   "0",  "1",          "2", "5", "9",
                             "10", "-1", "2147483647", "a", "b", "abc"};

/// As define() without constants, but returns the result of buildDefinitions() instead of expecting
/// 0: many random texts have a cycle of dependencies, and are refused.
inline int defineOrRefuse(Database& database, std::string_view text) {
  DefinitionText definitions;
  readText(text, definitions);
  DiagnosticCollector diagnostics;
  return buildDefinitions(diagnostics, definitions.records, definitions.lines, false, database);
}

/// Makes definition texts without syntax errors, whose names refer to one another at random.
class RandomTexts {
 public:
  explicit RandomTexts(uint32_t seed) : random_(seed) {}

  /// A number from 0 to `end` - 1; `end` is at least 1.
  size_t below(size_t end) { return random_() % end; }
  /// One of `texts`, of which there is at least one.
  std::string oneOf(const Texts& texts) { return texts[below(texts.size())]; }

  /// The next text.
  std::string text() {
    for (Texts& indices : indices_) indices = INDEX_LISTS[below(std::size(INDEX_LISTS))];
    own_.clear();
    std::string text = "i index { rangeValid { 0..1 } ";
    for (size_t count = below(4); count > 0; --count) text += indexStatement();
    text += "}\nj index { rangeValid { 0, \"a\" } }\n";
    for (const char name : NAMES) text += name + parameter(name);
    return text;
  }

 private:
  std::string parameter(char name) {
    const std::string access = oneOf({"rw", "rw", "rw", "ro", "wo", "rostrict"});
    own_ = indicesOf(name);
    std::string text = " " + access + " { " + indexList();
    for (size_t count = below(4); count > 0; --count) {
      text += statement();
      // "ro" and "rostrict" always are read-only, and "wo" may not have the statement.
      if (access == "rw" && below(4) == 0) text += "ctrlRO ( " + expression() + " ) ";
    }
    return text + "}\n";
  }

  [[nodiscard]] const Texts& indicesOf(char name) const { return indices_[NAMES.find(name)]; }

  [[nodiscard]] std::string indexList() const {
    std::string list;
    for (const std::string& index : own_) list += (list.empty() ? "" : ", ") + index;
    return list.empty() ? "" : "index { " + list + " } ";
  }

  // A name without index values is the instance with the index values of the definition that names
  // it, so that definition must have all of the indices.
  std::string reference(char name) {
    const Texts& indices = indicesOf(name);
    std::string text(1, name);
    const bool hasAll = std::includes(own_.begin(), own_.end(), indices.begin(), indices.end());
    if (hasAll && below(2) == 0) return text;
    for (const std::string& index : indices) {
      text += "[" + oneOf(index == "i" ? Texts{"0", "1"} : Texts{"0", "a"}) + "]";
    }
    return text;
  }

  std::string operand() {
    if (below(2) == 0) return reference(NAMES[below(NAMES.size())]);
    if (!own_.empty() && below(4) == 0) return oneOf(own_);
    return oneOf({"sw::this", "0", "1", "2", "5", "9", "\"a\""});
  }

  std::string expression() {
    std::string text = operand();
    for (size_t count = below(3); count > 0; --count) {
      text += oneOf({" + ", " - ", " * ", " / ", " == ", " != ", " < ", " >= ", " && ", " || "}) +
              operand();
    }
    return text;
  }

  std::string item() {
    switch (below(5)) {
      case 0:
        return "\"" + oneOf(VALUES) + "\"";
      case 1:
        return std::to_string(below(5)) + ".." + std::to_string(5 + below(5));
      case 2:
        return "(" + expression() + ")";
      default:
        return "(" + expression() + ")..(" + expression() + ")";
    }
  }

  std::string condition() { return below(2) == 0 ? " " : " ( " + expression() + " ) "; }

  std::string rangeStatement(const std::string& keyword) {
    std::string text = keyword + condition() + "{ " + item();
    for (size_t count = below(2); count > 0; --count) text += ", " + item();
    return text + " } ";
  }

  std::string indexStatement() {
    switch (below(4)) {
      case 0:
        return "ctrlValid ( " + expression() + " ) ";
      case 1:
        return "valueChange { " + std::to_string(below(3)) + " -> " + std::to_string(below(3)) +
               " } ";
      default:
        return rangeStatement("rangeValid");
    }
  }

  std::string statement() {
    switch (below(5)) {
      case 0:
        return rangeStatement("rangeDoc");
      case 1:
        return "default" + condition() + "{ (" + expression() + ") } ";
      default:
        return indexStatement();
    }
  }

  static constexpr std::string_view NAMES = "abcd";
  inline static const Texts INDEX_LISTS[] = {{}, {}, {"i"}, {"j"}, {"i", "j"}};

  std::mt19937 random_;
  Texts indices_[NAMES.size()];  // the index list of each name
  Texts own_;                    // the index list of the definition that is being made
};

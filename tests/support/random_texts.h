// Random definition texts, for tests.
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

/// Numbers on both sides of the ranges' ends, and texts.
inline const Texts VALUES = {"",   "0",  "1",          "2", "5", "9",
                             "10", "-1", "2147483647", "a", "b", "abc"};

/// As define(), but what building says is returned: many random texts have a cycle of dependences.
inline int defineOrRefuse(Database& database, std::string_view text) {
  DefinitionText definitions;
  readText(text, definitions);
  DiagnosticCollector diagnostics;
  return buildDefinitions(diagnostics, definitions.records, definitions.lines, false, database);
}

/// Makes definition texts that a parser takes, of names that refer to one another at random.
class RandomTexts {
 public:
  explicit RandomTexts(uint32_t seed) : random_(seed) {}

  size_t below(size_t end) { return random_() % end; }
  std::string oneOf(const Texts& texts) { return texts[below(texts.size())]; }

  std::string text() {
    for (Texts& indices : indices_) {
      indices = INDEX_LISTS[below(std::size(INDEX_LISTS))];
    }
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
      // The others say by themselves when they are read-only.
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

  // Without index values a name stands for the instance with those of the definition that it is in,
  // which must have them.
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
  Texts indices_[NAMES.size()];  // of each name
  Texts own_;                    // of the definition that is made
};

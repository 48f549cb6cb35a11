// Text coverage: which statements of a definition text were chosen, and how often.
//
// A text is one however many devices it makes: what is noted of each variant adds up. Who judges
// notes nothing; device_coverage.h looks on beside it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "deflang/text/definition_text.h"

/// A statement of a text, and what was seen of it.
struct StatementCoverage {
  size_t definition = 0;          ///< the place in TextCoverage::definitions()
  std::string_view keyword = {};  ///< "rangeValid"
  size_t place = 0;               ///< among the statements of its keyword, from 0
  uint32_t line = 0;              ///< of the keyword, from 1
  bool hasCondition = false;
  uint64_t chosen = 0;  ///< how often it had a say
  uint64_t whenTrue = 0;
  uint64_t whenFalse = 0;
  // What cannot be, as a proof tells. It does not count.
  bool isNeverChosen = false;
  bool isNeverTrue = false;
  bool isNeverFalse = false;

  /// Whether anything that can be was not seen yet.
  [[nodiscard]] bool isMissing() const {
    return (chosen == 0 && !isNeverChosen) ||
           (hasCondition && ((whenTrue == 0 && !isNeverTrue) || (whenFalse == 0 && !isNeverFalse)));
  }
};

/// A definition of a text: one name.
struct DefinitionCoverage {
  std::string name;
  uint32_t line = 0;    ///< where the name first is, from 1
  uint64_t judged = 0;  ///< how often an instance of it was, or a value of an index
};

/// So many of so many.
struct CoverageShare {
  size_t reached = 0;
  size_t all = 0;

  void count(bool isReached) {
    reached += isReached ? 1 : 0;
    ++all;
  }
};

/// What counts, and how much of it was reached.
struct CoverageTotals {
  CoverageShare statements;   ///< chosen
  CoverageShare outcomes;     ///< of conditions: each may be true, and may be false
  CoverageShare definitions;  ///< judged

  /// Of all together, from 0 to 100; 100 of a text without anything.
  [[nodiscard]] double percent() const;
  /// Whether nothing is missing.
  [[nodiscard]] bool isFull() const;
};

/// All statements of a text. Raises std::bad_alloc where memory is exhausted.
class TextCoverage {
 public:
  /// Reads `text` by the grammar, up to its first fault.
  explicit TextCoverage(std::string_view text);
  TextCoverage(const TextCoverage&) = delete;
  TextCoverage& operator=(const TextCoverage&) = delete;

  /// In the order of the text. They stay where they are.
  [[nodiscard]] std::vector<DefinitionCoverage>& definitions() { return definitions_; }
  [[nodiscard]] const std::vector<DefinitionCoverage>& definitions() const { return definitions_; }
  /// By definition, and within one by kind.
  [[nodiscard]] std::vector<StatementCoverage>& statements() { return statements_; }
  [[nodiscard]] const std::vector<StatementCoverage>& statements() const { return statements_; }
  [[nodiscard]] CoverageTotals totals() const;

  /// The records of the text. In place of its line, each statement has its number: its place in
  /// statements() and one. Those of definitions are 0.
  [[nodiscard]] const DefinitionText& numbered() const { return text_; }

 private:
  template <typename List, typename HasCondition>
  void addStatements(std::string_view keyword, List& list, const HasCondition& hasCondition);
  void addDefinition(ParameterRecord& record);

  DefinitionText text_;
  std::vector<DefinitionCoverage> definitions_;
  std::vector<StatementCoverage> statements_;
};

// Text facts: what of a text is where, and what the engine makes of a single expression of it.
#pragma once

#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "check/text/finding.h"
#include "check/text/read_text.h"
#include "check/text/source_text.h"
#include "database/database.h"
#include "deflang/expression/program.h"

/// What the explanation of a build asks about a text. All that it is given has to outlive it.
class TextFacts {
 public:
  TextFacts(const SourceText& source, const ReadText& text, const Database& constants)
      : source_(source), text_(text), constants_(constants) {
    for (const DefinitionLayout& definition : text.layout.definitions) {
      names_.try_emplace(definition.record, definition.name);
    }
  }

  [[nodiscard]] const SourceText& source() const { return source_; }
  [[nodiscard]] const ReadText& text() const { return text_; }
  [[nodiscard]] const ParameterRecords& records() const { return text_.definitions.records; }

  /// The definition in which a place is, or null before the first one.
  [[nodiscard]] const DefinitionLayout* definitionAt(Position at) const;
  /// The statement in which a place is, or null.
  [[nodiscard]] const StatementLayout* statementAt(Position at) const;
  /// The record that defines a base name, or null.
  [[nodiscard]] const ParameterRecord* defined(std::string_view baseName) const;
  /// The expression with a token at a place, or null.
  [[nodiscard]] const Expression* expressionAt(Position at) const;

  /// A place with the length of the word, name, sign or quoted text that is there.
  [[nodiscard]] TextPlace tokenAt(Position at) const;
  /// As tokenAt(), up to the end of the line: a comment.
  [[nodiscard]] TextPlace restOfLine(Position at) const;
  [[nodiscard]] TextPlace nameOf(const ParameterRecord& record) const;
  /// The keyword of the statement in which a place is, or that place where there is no statement.
  [[nodiscard]] TextPlace keywordAt(Position at) const;

  /// The value of an expression by the constants of the command line alone; nothing where it
  /// depends on anything else or has no value.
  [[nodiscard]] std::optional<Value> constantValue(const Expression& expression) const;
  /// Whether the command line gives a constant of that name, and the text lets it count.
  [[nodiscard]] bool isConstant(std::string_view name) const;
  /// Whether a constant of the command line is among the names of an expression.
  [[nodiscard]] bool namesConstant(const Expression& expression) const;

 private:
  const SourceText& source_;
  const ReadText& text_;
  const Database& constants_;
  std::unordered_map<const ParameterRecord*, Position> names_;  // where each first is
  // By line and column; filled when it is first asked for.
  mutable std::unordered_map<uint64_t, const Expression*> expressions_;
};

/// What is wrong with the foreign quotes at `at`, within an expression; no value where there are
/// none.
std::optional<Finding> foreignQuotationAt(const TextFacts& facts, Position at);

/// The place `at` with a length.
TextPlace placeAt(Position at, size_t length);

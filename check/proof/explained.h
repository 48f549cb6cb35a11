// Explained: what findings have said of the definitions of a text, so that no other one says what
// only follows from it.
#pragma once

#include <optional>
#include <set>
#include <string_view>
#include <vector>

#include "check/proof/compiled_text.h"
#include "check/static/explained_places.h"
#include "check/text/findings.h"

/// What the questions about one text do not ask any more.
class Explained {
 public:
  /// `explainedPlaces`, which has to outlive it, and `findings` are of what needs no proof. The
  /// values of a parameter are in doubt where a place among its ranges is explained, or where they
  /// use a figure of a parameter that has no range or whose texts name no standard; and so are
  /// those that follow it.
  Explained(const ExplainedPlaces& explainedPlaces, const CompiledText& text,
            const Findings& findings);

  /// Whether a static finding says enough of a part of `expression`, or of what it names.
  [[nodiscard]] bool explains(const CompiledExpression& expression) const;
  /// Likewise of a part of `statement`.
  [[nodiscard]] bool explains(const CompiledStatement& statement) const;
  [[nodiscard]] bool explains(const std::vector<CompiledStatement>& statements) const;

  /// Whether `expression` uses a figure of a parameter with a value that was to select a standard
  /// and does not: what it gives in all situations may be due to that.
  [[nodiscard]] bool usesMisspelt(const CompiledExpression& expression) const;

  /// The text of the ranges of `subject` about which one says so, that is `text` or any, or null:
  /// what is corrected to it, or should be it, cannot be right.
  [[nodiscard]] const CompiledItem* explainedText(const Subject& subject,
                                                  std::optional<std::string_view> text = {}) const;

  const ExplainedPlaces& places;
  std::set<const CompiledStatement*> dead = {};  ///< statements that never count
  std::set<const CompiledStatement*> told = {};  ///< statements whose condition is told of

 private:
  std::set<const ParmEntry*> doubtful_;
  std::set<const ParmEntry*> misspelt_;  // those with such a value
};

/// Whether `statement` has the condition of an earlier one of `statements`.
bool isRepeated(const CompiledStatement& statement,
                const std::vector<CompiledStatement>& statements);

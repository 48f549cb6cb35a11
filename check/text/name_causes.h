// Name causes: why a name in an expression is none.
#pragma once

#include <map>
#include <set>
#include <string>

#include "check/text/findings.h"
#include "check/text/odd_names.h"
#include "check/text/text_facts.h"

/// What a name may have been meant to be.
enum NameKind {
  NAME_ANY,        ///< a parameter, an index or a constant
  NAME_PARAMETER,  ///< a parameter of the text
  NAME_INDEX,      ///< an index of the text
};

/// Explains names that nothing defines. Looks for near names as long as that does not take the
/// square of a long text.
class NameCauses {
 public:
  /// `constants` are those that the command line gives.
  NameCauses(const TextFacts& facts, const NamedValues& constants);

  /// What is wrong with the name `name`, as it is in an expression at `at`.
  [[nodiscard]] Finding undefined(Position at, std::string_view name);
  /// The name of that kind that is nearest to `name`, and not `name` itself.
  [[nodiscard]] std::optional<std::string> nearest(std::string_view name, NameKind kind);
  [[nodiscard]] const OddNames& oddNames() const { return oddNames_; }

 private:
  [[nodiscard]] Finding unknownFigure(Position at, std::string_view name) const;
  [[nodiscard]] std::optional<Finding> misspeltFigure(Position at, std::string_view name);
  [[nodiscard]] std::optional<Finding> unusableName(Position at) const;
  [[nodiscard]] std::optional<Finding> noName(Position at, std::string_view name) const;

  const TextFacts& facts_;
  const NamedValues& constants_;
  OddNames oddNames_;
  std::vector<std::string_view> parameters_;
  std::vector<std::string_view> indices_;
  std::set<std::string_view> texts_;  // all that the text has in quotes
  std::map<std::string, std::optional<std::string>, std::less<>> known_;
  size_t comparisons_ = 0;
};

// Index causes: names that are no index where one belongs, and indices where none belongs.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "check/text/name_causes.h"
#include "check/text/repeated_findings.h"
#include "check/text/text_facts.h"

/// Explains what the builder reports of indices, each cause once for all of its places.
class IndexCauses {
 public:
  /// All has to outlive the explanations. What is found goes to `repeated`.
  IndexCauses(const TextFacts& facts, NameCauses& names, RepeatedFindings& repeated)
      : facts_(facts), names_(names), repeated_(repeated) {}

  /// The name at `at`, in an index statement, is not defined.
  void undefined(Position at, const std::string& name);
  /// The name at `at`, in the index statement of `record`, is that of a parameter.
  void notAnIndex(const ParameterRecord& record, Position at);
  /// An expression of `record` has, at `place`, an index that is none of its own.
  void foreign(const ParameterRecord& record, const ParameterRecord& index, const TextPlace& place);
  /// Explains what only all places together tell. To be called once, at the end.
  void finish();

 private:
  [[nodiscard]] bool isMeantAsIndex(const ParameterRecord& record);
  [[nodiscard]] TextPlace accessOf(const ParameterRecord& record) const;

  const TextFacts& facts_;
  NameCauses& names_;
  RepeatedFindings& repeated_;
  std::map<std::string_view, std::vector<TextPlace>> parameters_;  // used as indices
  // The names that an expression has in a definition that is not indexed by them.
  std::optional<std::set<std::string_view>> values_;
};

// Proof memory: what was found of a definition in one variant is so in each other one that has the
// same constants wherever the definition looks.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "check/text/findings.h"
#include "check/text/read_text.h"
#include "check/text/variant.h"

/// What was found of one definition.
struct ProofResult {
  std::vector<Finding> findings = {};
  std::vector<Finding> undecided = {};
};

/// Keeps the results of the variants of one text. All that it is given has to outlive it.
class ProofMemory {
 public:
  ProofMemory(const ReadText& text, const ConstantChoices& choices);

  /// What was found of the definition `name` under the like of `constants`; null where that is not
  /// known.
  [[nodiscard]] const ProofResult* find(std::string_view name, const NamedValues& constants) const;
  void keep(std::string_view name, const NamedValues& constants, ProofResult result);

 private:
  using Names = std::set<std::string_view>;

  [[nodiscard]] std::string keyOf(std::string_view name, const NamedValues& constants) const;

  // By definition: the constants of several values that it depends on, or one that names it does.
  std::map<std::string_view, Names> constants_;
  std::map<std::string, ProofResult> results_;
};

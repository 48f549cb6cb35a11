// What all questions of one variant share.
#pragma once

#include "check/proof/anywhere.h"
#include "check/proof/healthy.h"
#include "check/proof/prove.h"

/// A text under proof, and what was found so far.
class Proof {
 public:
  Proof(const CheckedText& checked, Findings& findings, Findings& undecided)
      : text_(checked), domains_(text_), findings_(findings), undecided_(undecided) {}

  [[nodiscard]] const CompiledText& text() const { return text_; }
  [[nodiscard]] Domains& domains() { return domains_; }

  void add(Finding finding) { findings_.add(std::move(finding)); }
  void addUndecided(Finding finding) { undecided_.add(std::move(finding)); }
  /// Whether a finding of `code` names one of the values of `witness` already.
  [[nodiscard]] bool isTold(std::string_view code, const NamedValues& witness) const;
  /// Whether the goal is proved to be out of reach, whatever the values are.
  bool isImpossible(const Goal& goal, ConstantScope scope = THIS_VARIANT,
                    Effort effort = EFFORT_THOROUGH) {
    return decideAnywhere(goal, domains_, scope, effort).verdict == VERDICT_IMPOSSIBLE;
  }
  /// Adds `finding` with its witness where a healthy situation meets `goal`; adds it to those that
  /// are undecided where that was not found out. Returns whether it was added.
  bool addIfHealthy(const Goal& goal, Finding finding);

 private:
  CompiledText text_;
  Domains domains_;
  Findings& findings_;
  Findings& undecided_;
};

/// The place of a token.
TextPlace placeOf(const Token& token);
/// The place of all tokens of an expression on the line of its first one.
TextPlace placeOf(const Expression& expression);
/// The place of a statement's keyword.
TextPlace placeOf(const StatementLayout& statement);

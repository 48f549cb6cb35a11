// What all questions of one variant share.
#pragma once

#include "check/proof/anywhere.h"
#include "check/proof/healthy.h"
#include "check/proof/limited.h"
#include "check/proof/prove.h"
#include "check/proof/solver.h"

/// A text under proof, and what was found so far.
class Proof {
 public:
  Proof(const CheckedText& checked, const ProofLimits& limits, Findings& findings,
        Findings& undecided);

  [[nodiscard]] const CompiledText& text() const { return text_; }
  [[nodiscard]] Domains& domains() { return domains_; }
  /// Calls `visit` with each subject to ask about. What is added meanwhile is about it.
  template <typename Visit>
  void forEachSubject(const Visit& visit) {
    for (const Subject& subject : subjects_) {
      asked_ = &subject;
      visit(subject);
    }
    asked_ = nullptr;
  }
  /// Keeps what was found of the subjects for the next variants, where they have a memory.
  void keepResults();
  /// Whether the questions about the text as a whole are to be asked.
  [[nodiscard]] bool asksOfWhole() const { return limits_.part == 0; }

  void add(Finding finding);
  void addUndecided(Finding finding);
  /// As Findings::find().
  [[nodiscard]] Finding* found(std::string_view code, TextPlace at) {
    return findings_.find(code, at);
  }
  /// Whether there is a finding of `code`.
  [[nodiscard]] bool hasFound(std::string_view code) const;
  /// Whether there is one of which `is` is true.
  [[nodiscard]] bool hasFound(std::string_view code,
                              const std::function<bool(const Finding&)>& is) const;
  /// Whether a finding of `code` names one of the values of `witness` already.
  [[nodiscard]] bool isTold(std::string_view code, const NamedValues& witness) const;
  [[nodiscard]] const Deadline& deadline() const { return limits_.deadline; }
  /// Whether no more is to be asked. What is asked nevertheless is not decided.
  [[nodiscard]] bool isOver() const { return limits_.deadline.isOver(); }
  /// Runs a question, which may spend `units` of work. Returns whether it came to its end, with the
  /// work and the memory there is; where it did not, all values are unset.
  bool ask(const std::function<void()>& question, uint64_t units = QUESTION_WORK);
  /// Whether the last question was not asked, or did not come to its end.
  [[nodiscard]] bool isCutShort() const { return isCutShort_; }
  /// Whether the goal can be met at all, whatever the values are.
  Verdict decide(const Goal& goal, ConstantScope scope = THIS_VARIANT,
                 Effort effort = EFFORT_THOROUGH);
  /// Whether the goal is proved to be out of reach, whatever the values are.
  bool isImpossible(const Goal& goal, ConstantScope scope = THIS_VARIANT,
                    Effort effort = EFFORT_THOROUGH) {
    return decide(goal, scope, effort) == VERDICT_IMPOSSIBLE;
  }
  /// Looks for a healthy situation, as findHealthy() of healthy.h. The witness has the values of
  /// the definition's own indices as well, behind the others, where the goal asks about them.
  HealthyResult findHealthy(const Goal& goal,
                            const std::function<bool(const IndexTuple& indices)>& isMet = {});
  /// Whether some parameter that a settled device never has is read by `expression`: what follows
  /// from that is told of its conditions. Where the expression decides whether `own` is there,
  /// which else is null, what refers back to that may have the same cause, and does not count.
  bool readsWhatIsNeverThere(const CompiledExpression& expression, const ParmEntry* own);
  /// Whether some parameter that is in no variant is read by `expression`, as a ctrlValid without
  /// any name says.
  [[nodiscard]] bool readsWhatIsLeftOut(const CompiledExpression& expression) const;
  /// Adds `finding` with its witness where a healthy situation meets `goal`; adds it to those that
  /// are undecided where that was not found out. Returns whether it was added.
  bool addIfHealthy(const Goal& goal, Finding finding);

 private:
  void addSubject(const Subject& subject);
  SolverBudget& budgetOf(const Goal& goal);
  bool isNeverThere(const Subject& subject);

  CompiledText text_;
  Domains domains_;
  const ProofLimits& limits_;
  std::vector<std::reference_wrapper<const Subject>> subjects_;
  Findings& findings_;
  Findings& undecided_;
  bool isCutShort_ = false;
  std::map<const Subject*, SolverBudget> budgets_;
  // The places of what is about one subject among all findings.
  struct Places {
    std::vector<size_t> findings = {};
    std::vector<size_t> undecided = {};
  };
  const Subject* asked_ = nullptr;
  std::map<const Subject*, Places> places_;
};

/// The place of all tokens of an expression of `source` on the line of its first one.
TextPlace placeOf(const SourceText& source, const Expression& expression);
/// The place of a statement's keyword.
TextPlace placeOf(const StatementLayout& statement);

// Attempts: a goal for one reader, and what is set on the engine to meet it.
#pragma once

#include <algorithm>

#include "check/proof/cone.h"
#include "check/proof/deadline.h"
#include "check/proof/setter.h"

class SolverBudget;

/// What is looked for.
struct HealthyQuestion {
  const Goal& goal;
  const CompiledText& text;
  Domains& domains;
  /// What more is asked of the situation; may be null.
  const std::function<bool(const IndexTuple& indices)>& isMet;
  SolverBudget* budget = nullptr;
};

/// How much more may be tried for a question.
class TrialLimit {
 public:
  TrialLimit(size_t count, const Deadline& deadline) : left_(count), deadline_(deadline) {}

  [[nodiscard]] const Deadline& deadline() const { return deadline_; }
  /// Whether no time is left.
  [[nodiscard]] bool isOver() const { return deadline_.isOver(); }
  void take(size_t count) { left_ -= std::min(left_, count); }
  /// Whether nothing more may be tried; once so, always.
  bool isReached() {
    if (deadline_.isOver()) left_ = 0;
    return left_ == 0;
  }

 private:
  size_t left_;
  const Deadline& deadline_;
};

/// The goal of a question for one of its readers. Both have to outlive it.
class Attempt {
 public:
  Attempt(const HealthyQuestion& question, const Reader& reader)
      : question_(question), reader_(reader), cone_(question.goal, reader, question.text) {}

  [[nodiscard]] const HealthyQuestion& question() const { return question_; }
  [[nodiscard]] const Reader& reader() const { return reader_; }
  [[nodiscard]] Cone& cone() { return cone_; }
  [[nodiscard]] const Cone& cone() const { return cone_; }
  [[nodiscard]] Setter& setter() { return setter_; }

  // In what is set now:

  /// Whether the goal is met, and what more is asked.
  bool isMet();
  /// Whether each instance of the cone has a value, and keeps it.
  bool isHealthy();
  /// Whether an instance is there, with a value or without.
  bool isThere(const ConeInstance& instance);
  /// Whether each instance of the cone that is there has a value, and keeps it.
  bool isAtRest();
  /// What an instance may hold: what its definition allows just now.
  NameDomain presentDomain(const ConeInstance& instance);
  /// Whether an instance takes every value there though it has ranges: one of them has no values,
  /// or none counts.
  static bool isStray(const ConeInstance& instance, const NameDomain& present);
  /// Whether any other instance does than those of the goal's own parameter.
  bool isAstray();
  /// What each instance of the cone holds.
  [[nodiscard]] NamedValues situation() const;

 private:
  bool readerExists();
  [[nodiscard]] Value evaluate(const CompiledExpression& expression) const;

  const HealthyQuestion& question_;
  const Reader& reader_;
  Cone cone_;
  Setter setter_;
};

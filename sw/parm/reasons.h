// Reasons: which statement of a definition decides in a situation, and what it has seen there.
//
//   mode rw { rangeValid { "slow", "fast" } }
//   rate rw { rangeValid (mode == "slow") { 1..10 } rangeValid (mode == "fast") { 1..100 } }
//
// While mode is slow, the range of rate has the reason
//
//   line 2   rangeValid (mode == "slow") { 1..10 }   mode is "slow"
//
// They lie beside what judges, and ask the same programs and bounds: nothing that judges values
// knows of them. Whatever evaluates may raise std::bad_alloc or WorkExceeded.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sw/parm/present_bounds.h"
#include "sw/parm/statement_lines.h"

/// A name that a statement refers to, and what it is.
struct UsedName {
  std::string name;
  std::optional<std::string> value;  ///< nullopt: it is undefined there
  bool operator==(const UsedName& other) const = default;
};

/// A statement that decides.
struct Reason {
  uint32_t line = 0;            ///< of its keyword, or of the definition where that decides; from 1
  std::string statement;        ///< as it is written; an access word for "ro"
  std::vector<UsedName> names;  ///< that it refers to, each once, in the order of the text
  bool operator==(const Reason& other) const = default;
};

/// A statement that has changed a value.
struct ValueStep {
  Reason reason;
  std::string value;  ///< what it made of it
};

/// What becomes of a value.
struct ValueReasons {
  std::vector<ValueStep> steps;      ///< those that change it, in their order
  std::optional<Reason> acceptedBy;  ///< the bounds that the result lies in; nullopt: no bounds
  bool isRefused = false;            ///< the base bounds refuse the result of the steps
};

/// The reasons of an index or of what a parameter has of one. The definition outlives it; a
/// situation has a slot for each of the definition's variables.
class IndexReasons {
 public:
  IndexReasons(const IndexDef& index, StatementsOfDefinition statements)
      : index_(index), statements_(std::move(statements)) {}

  /// The validity conditions: the first that is not true, or all of them where all are.
  [[nodiscard]] std::vector<Reason> availability(const SituationView& situation) const;
  /// The bounds that refuse `value`, which no bounds correct: the base bounds, else the conditional
  /// ones that apply, else all of them, as none applies.
  [[nodiscard]] std::vector<Reason> refusal(const std::string& value,
                                            const SituationView& situation) const;

 protected:
  [[nodiscard]] Reason reason(const SourceStatement& statement,
                              std::initializer_list<const Program*> programs,
                              const SituationView& situation) const;
  [[nodiscard]] Reason baseReason() const;
  [[nodiscard]] Reason rangeReason(size_t place, const SituationView& situation) const;
  [[nodiscard]] Reason boundsReason(const SourceStatement& statement,
                                    const ConditionalBounds& bounds,
                                    const SituationView& situation) const;
  [[nodiscard]] const StatementsOfDefinition& statements() const { return statements_; }

 private:
  const IndexDef& index_;
  StatementsOfDefinition statements_;
};

/// The reasons of a parameter, in a situation with the index values of an instance bound.
class ParmReasons : public IndexReasons {
 public:
  ParmReasons(const ParmDef& parm, StatementsOfDefinition statements)
      : IndexReasons(parm, std::move(statements)), parm_(parm) {}

  /// The read-only conditions: the first that is true, or all of them where none is; of "wo" none.
  [[nodiscard]] std::vector<Reason> readOnly(const SituationView& situation) const;
  /// The statement of ParmDef::defaultValue(); nullopt where there is no default.
  [[nodiscard]] std::optional<Reason> defaultValue(const SituationView& situation) const;
  /// The statement of ParmDef::range(); nullopt where there are no bounds.
  [[nodiscard]] std::optional<Reason> range(const SituationView& situation) const;
  /// The base bounds and the conditional ones that apply, which are in the way of each other where
  /// setValue() refuses a value.
  [[nodiscard]] std::vector<Reason> colliding(const SituationView& situation) const;
  /// What step 4 of setValue() does with `value`, where no constraint rule is defined.
  [[nodiscard]] ValueReasons value(std::string value, const Situation& situation) const;

 private:
  void translate(std::string& value, ValueReasons& out) const;
  void judge(std::string& value, const Situation& situation, UnusableRange unusable,
             ValueReasons& out) const;

  const ParmDef& parm_;
};

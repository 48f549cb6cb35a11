// Index definitions: an index's name, the values it may take and the conditions under which it
// exists. A parameter definition is one with more to it.
#pragma once

#include <map>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/boxed.h"
#include "base/work.h"
#include "deflang/expression/program.h"
#include "deflang/expression/variables.h"
#include "sw/parm/bounds.h"
#include "sw/parm/index_tuple.h"

/// Bounds that count while a condition is true: a BoundsParm, or a BoundsExpression for a run-time
/// range.
struct ConditionalBounds {
  Program condition;
  std::unique_ptr<Bounds> bounds;
  /// `bounds` where they are computed in the situation (a run-time range), else null; and where
  /// they are not. The definition that takes the bounds sees to both.
  const BoundsExpression* computed = nullptr;
  const BoundsParm* constant = nullptr;
};

/// What it costs to tell which of `list` apply, in units of work, beside the texts.
uint64_t workOf(std::span<const ConditionalBounds> list);

/// What it costs to evaluate each of `programs`.
uint64_t workOf(std::span<const Program> programs);

/// Notes in each of `list` whether it is a run-time range.
void noteKinds(std::span<ConditionalBounds> list);

/// What an index and a parameter have in common.
struct DefinitionParts {
  std::string name;
  Variables variables;  ///< the slots of every program below
  std::vector<Program> validityConditions;
  BoundsParm baseBounds;
  std::vector<ConditionalBounds> conditionalBounds;  ///< in statement order
  std::map<std::string, std::string> translations;   ///< source to target
};

class BoundsCheck;

class IndexDef {
 public:
  explicit IndexDef(DefinitionParts parts);
  IndexDef(IndexDef&&) = default;
  IndexDef& operator=(IndexDef&&) = default;

  /// Whether the base bounds accept `value`, once translated.
  [[nodiscard]] virtual bool checkBase(std::string value) const;
  /// Whether all bounds accept `value` in a situation, once translated.
  [[nodiscard]] bool checkValue(std::string value, const SituationView& situation) const;
  /// The same by a check that was made for this definition and the situation.
  [[nodiscard]] virtual bool checkValue(std::string value, BoundsCheck& check) const;

  /// Whether every validity condition is true.
  [[nodiscard]] bool isValid(const SituationView& situation) const;
  /// Replaces a value that is the source of a translation by its target.
  void translate(std::string& value) const;
  /// Translates a value that is to be corrected: a target that is itself a source is followed once.
  void translateTwice(std::string& value) const;

  [[nodiscard]] const std::string& name() const { return name_; }
  [[nodiscard]] const Variables& variables() const { return variables_; }
  [[nodiscard]] const std::map<std::string, std::string>& translations() const {
    return translations_.get();
  }
  [[nodiscard]] const BoundsParm& baseBounds() const { return baseBounds_; }
  [[nodiscard]] std::span<const ConditionalBounds> conditionalBounds() const {
    return conditionalBounds_;
  }
  /// What it costs, in units of work, beside what is done to texts: to tell in a situation which
  /// bounds apply and whether the definition is valid;
  [[nodiscard]] uint64_t judgingWork() const { return judgingWork_; }
  /// the same, and to give all of its own variables their values;
  [[nodiscard]] uint64_t situationWork() const {
    return judgingWork_ + variables_.size() * WORK_PER_NAME;
  }
  /// to ask the bounds that apply about one value;
  [[nodiscard]] uint64_t askingWork() const {
    return conditionalBounds().size() * WORK_PER_CANDIDATE;
  }
  /// and the texts of its constant range on their way through an evaluation, the longest of them.
  [[nodiscard]] uint64_t textWork() const { return WORK_PER_VALUE_BYTE * longestText_; }
  /// Whether the base bounds alone tell which values there are, whatever the situation: no
  /// conditions, no translations.
  [[nodiscard]] bool isPlain() const {
    return validityConditions_.empty() && conditionalBounds().empty() && translations().empty();
  }

 protected:
  [[nodiscard]] Variables& ownVariables() { return variables_; }

 private:
  Variables variables_;
  std::vector<Program> validityConditions_;
  BoundsParm baseBounds_;
  std::vector<ConditionalBounds> conditionalBounds_;
  Boxed<std::map<std::string, std::string>> translations_;
  uint32_t judgingWork_;
  uint32_t longestText_;  // of the base bounds, in bytes
  std::string name_;      // last: ParmDef's constructor asserts that its value is beside it
};

/// The full bounds check of one definition, by the rules of an index: translates `value`, corrects
/// it by the base bounds, then asks the conditional bounds whose condition is true. It is accepted
/// when the base bounds took it and any of those accepts it (a run-time range that has no value
/// here accepts everything); otherwise the first of them corrects it. With conditional bounds of
/// which none applies it is refused. Returns whether `value` was accepted as it was. To check many
/// values in one situation, see BoundsCheck.
bool correctValue(const IndexDef& definition, std::string& value, const SituationView& situation);

/// Whether there are as many index values as indices, and the base bounds of each index accept its
/// value. A null index accepts every value.
bool fitIndices(std::span<const IndexDef* const> indices, const IndexTuple& values);

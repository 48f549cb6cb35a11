// Index definitions: an index's name, the values it may take and the conditions under which it
// is available. A parameter definition is one with more to it.
//
// A value is judged in this order:
//
//   translations         a value that is the source of one is replaced by its target
//   base bounds          constant, and the same in every situation
//   conditional bounds   with a condition, or computed at run time: where there are any, one that
//                        applies has to accept the value
//
// The validity conditions are judged apart, by isAvailable(). Everything that evaluates an
// expression may raise std::bad_alloc or WorkExceeded.
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

/// Bounds that count while a condition is true.
struct ConditionalBounds {
  Program condition;
  std::unique_ptr<Bounds> bounds;  ///< a BoundsParm or a BoundsExpression; never null
  /// `bounds` with its kind known, so that no evaluation has to find out: of the two pointers one
  /// is null. Both are null until noteKinds(), which the definition that takes the bounds calls.
  const BoundsExpression* computed = nullptr;  ///< a run-time range
  const BoundsParm* constant = nullptr;        ///< bounds that are known when the text is read
};

/// What it costs to tell which of `list` apply and to work out the run-time ranges among them, in
/// units of work, beside the work on texts.
uint64_t workOf(std::span<const ConditionalBounds> list);

/// What it costs to evaluate each of `programs` once, in units of work, beside the work on texts.
uint64_t workOf(std::span<const Program> programs);

/// Sets `computed` or `constant` in each of `list`. Bounds of any other kind are a programming
/// error and stop the program.
void noteKinds(std::span<ConditionalBounds> list);

/// What an index and a parameter have in common. The builder fills it and hands it over.
struct DefinitionParts {
  std::string name;                         ///< the base name
  Variables variables;                      ///< the slots of every program below
  std::vector<Program> validityConditions;  ///< all have to be true
  BoundsParm baseBounds;                    ///< without entries where every value is allowed
  std::vector<ConditionalBounds> conditionalBounds;  ///< in statement order
  std::map<std::string, std::string> translations;   ///< source to target
};

class BoundsCheck;

/// One index, or what a parameter has of one. The registry owns it; see definition_registry.h.
///
/// Two functions are virtual because ParmDef judges otherwise where it has constraints: whoever
/// asks a parameter as an index gets the parameter's answer. The daemon never does: an index of it
/// is an IndexDef, and it asks a ParmDef as a ParmDef. The destructor is not virtual, because every
/// owner knows the type: nobody deletes a ParmDef through a pointer to IndexDef.
///
/// The references and spans that it gives out are valid until it is moved or destroyed.
class IndexDef {
 public:
  /// Takes the parts over, and notes the kinds of the conditional bounds.
  explicit IndexDef(DefinitionParts parts);
  IndexDef(IndexDef&&) = default;
  IndexDef& operator=(IndexDef&&) = default;

  /// Whether the base bounds accept `value`, once translated. This needs no situation, so `set`
  /// refuses by it what is wrong in every one. A value of more than MAX_VALUE_BYTES is refused.
  [[nodiscard]] virtual bool checkBase(std::string value) const;
  /// Whether all bounds accept `value`, once translated; `value` is not corrected. `check` was made
  /// for this definition and the situation, and serves for many values.
  [[nodiscard]] virtual bool checkValue(std::string value, BoundsCheck& check) const;

  /// Whether the parameter or index is available in the situation: every validity condition is
  /// true, or there is none. A condition without a value, as of an undefined variable, is not
  /// true.
  [[nodiscard]] bool isAvailable(const SituationView& situation) const;
  /// Replaces a value that is the source of a translation by its target, once: with a -> b and
  /// b -> c, "a" becomes "b".
  void translate(std::string& value) const;
  /// Translates a value that is to be corrected: a target that is itself a source is followed once.
  /// With a -> b, b -> c and c -> d, "a" becomes "c".
  void translateTwice(std::string& value) const;

  /// The base name.
  [[nodiscard]] const std::string& name() const { return name_; }
  /// The names that its expressions use; their numbers are the slots of its situations.
  [[nodiscard]] const Variables& variables() const { return variables_.get(); }
  /// The targets of the translations, by source.
  [[nodiscard]] const std::map<std::string, std::string>& translations() const {
    return translations_.get();
  }
  /// The bounds that count in every situation.
  [[nodiscard]] const BoundsParm& baseBounds() const { return baseBounds_; }
  /// The bounds that count while their condition is true, in statement order.
  [[nodiscard]] std::span<const ConditionalBounds> conditionalBounds() const {
    return conditionalBounds_;
  }
  /// The conditions all of which are true where it is available, in statement order.
  [[nodiscard]] std::span<const Program> validityConditions() const {
    return validityConditions_.get();
  }
  /// What it costs to tell in a situation which bounds apply and whether the definition is
  /// available. This figure and the next three are units of work, which the caller counts; the work
  /// on texts is counted where it is done. At most UINT32_MAX.
  [[nodiscard]] uint64_t judgingWork() const { return judgingWork_; }
  /// What it costs to give all of its variables their values, and then judgingWork().
  [[nodiscard]] uint64_t situationWork() const {
    return judgingWork_ + variables().size() * WORK_PER_NAME;
  }
  /// What it costs to ask the bounds that apply about one value, at most.
  [[nodiscard]] uint64_t askingWork() const {
    return conditionalBounds().size() * WORK_PER_CANDIDATE;
  }
  /// What the longest text of the base bounds costs on its way through an evaluation; 0 without
  /// texts.
  [[nodiscard]] uint64_t textWork() const { return WORK_PER_VALUE_BYTE * longestText_; }
  /// Whether the base bounds alone tell which values there are, whatever the situation: no
  /// conditions, no translations.
  [[nodiscard]] bool isPlain() const {
    return validityConditions_->empty() && conditionalBounds().empty() && translations().empty();
  }

 protected:
  /// For ParmDef's constructor, which adds the names of its indices.
  [[nodiscard]] Variables& ownVariables() { return variables_.change(); }

 private:
  Boxed<Variables> variables_;
  Boxed<std::vector<Program>> validityConditions_;
  BoundsParm baseBounds_;
  std::vector<ConditionalBounds> conditionalBounds_;
  Boxed<std::map<std::string, std::string>> translations_;
  uint32_t judgingWork_;
  uint32_t longestText_;  // of the base bounds, in bytes
  std::string name_;      // last: ParmDef's constructor asserts that its value is beside it
};

/// The first half of correctValue(): translates `value` twice and corrects it by the base bounds.
/// Returns whether those did not have to.
bool correctByBase(const IndexDef& definition, std::string& value);

/// The full bounds check of one definition in a situation, by the rules of an index also for a
/// parameter: translates `value` twice, corrects it by the base bounds, then by the conditional
/// bounds whose condition is true, as PresentBounds::judge() does. A run-time range that has no
/// value here accepts everything. Where there are conditional bounds and none applies, the value is
/// refused and stays as the base bounds left it.
///
///   bounds                      value   result   corrected
///   0..9; 5..20 applies         "7"     true
///                               "3"     false    "5"   by the conditional bounds
///                               "15"    false    "9"   by the base bounds; 5..20 accepts the 9
///   0..9; none of some applies  "15"    false    "9"
///
/// Returns whether neither had to correct the translated value. May raise std::bad_alloc or
/// WorkExceeded. To check many values in one situation, see BoundsCheck.
bool correctValue(const IndexDef& definition, std::string& value, const SituationView& situation);

/// Whether there are as many index values as indices, and each index accepts its value by
/// IndexDef::checkBase(). A null index accepts every value: the builder has one where a text names
/// an index that it does not define.
bool fitIndices(std::span<const IndexDef* const> indices, const IndexTuple& values);

// Parameter definitions: an index definition with indices, access, defaults, rules and the values
// of its instances, one for each combination of index values.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/interner.h"
#include "base/segmented_list.h"
#include "sw/parm/index_def.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/value_text.h"

/// Who may write, beside the read-only conditions.
enum AccessMode : int {
  MODE_NEVER = 0,     ///< nobody, ever
  MODE_NORMAL = 1,    ///< "ro" (which has an ever true read-only condition) and "rw"
  MODE_ROSTRICT = 2,  ///< as "ro"; a stored value is reported to nobody
  MODE_WRITE_ONLY = 3,
};

/// While `condition` is true, `value` is the default.
struct ConditionalDefault {
  Program condition;
  Program value;
};

/// While `condition` is true, a value for which `test` is false becomes `correction`. All three
/// read the value as sw::this.
struct ConstraintRule {
  Program condition;
  Program test;
  Program correction;
};

/// The committed value of one instance.
struct CommittedValue {
  ValueText value;
  bool announced = false;  ///< whether a commit has ever reported the instance
};

/// What a parameter has beyond an index.
struct ParmParts {
  std::vector<const IndexDef*> indices;  ///< in the order of the index statement; not owned
  AccessMode mode = MODE_NORMAL;
  std::string fallbackDefault;
  std::vector<ConditionalDefault> defaults;
  std::vector<ConstraintRule> constraintRules;
  std::vector<Program> readOnlyConditions;
  std::vector<ConditionalBounds> documentedRanges;  ///< rangeDoc, in the order they are asked
};

class ParmDef final : public IndexDef {
 public:
  ParmDef(DefinitionParts parts, ParmParts parmParts);
  ParmDef(ParmDef&&) = default;

  /// As of an index; a parameter with constraint rules accepts every value here and leaves the
  /// judgement to the rules.
  [[nodiscard]] bool checkBase(std::string value) const override;
  [[nodiscard]] bool checkValue(std::string value, BoundsCheck& check) const override;
  using IndexDef::checkValue;

  /// Whether values are judged by rules: constraint rules, or ranges computed at run time.
  [[nodiscard]] bool hasConstraints() const;
  [[nodiscard]] bool hasRunTimeRanges() const { return hasRunTimeRanges_; }
  [[nodiscard]] bool isReadOnly(const SituationView& situation) const;
  /// Finds the default of an instance in a situation with its index values bound. Returns 0, or 1
  /// when no default applied and `value` is the fallback.
  int defaultValue(std::string& value, const SituationView& situation) const;
  /// The range that holds in a situation with the index values bound: the first that applies of
  /// the documented ranges and the conditional bounds, else the base bounds. Returns 0 or the code
  /// of BoundsExpression::evaluate.
  int range(BoundsParm& out, const SituationView& situation) const;

  [[nodiscard]] AccessMode mode() const { return mode_; }
  [[nodiscard]] const std::vector<const IndexDef*>& indices() const { return indexing_->indices; }
  [[nodiscard]] const std::vector<ConstraintRule>& constraintRules() const {
    return constraintRules_.get();
  }
  /// How many names the expressions of the parameter itself use: those of the first slots. sw::this
  /// is among them where it is used. The names that its indices use stay with the indices.
  [[nodiscard]] size_t usedNames() const {
    return indices().empty() ? variables().size() : indexing_->usedNames;
  }

  /// What it costs to evaluate one instance, in units of work, beside what is done to its texts and
  /// what its indices are: at most, because where one condition decides the others are not asked.
  [[nodiscard]] uint64_t evaluationWork() const { return evaluationWork_; }

  /// Binds the value of the index at `place`, in index order from 0, under the index's name.
  void bindIndex(Situation& situation, size_t place, std::string_view value) const;
  /// Binds each value of an instance; those beyond the number of indices are left out.
  void bindIndices(Situation& situation, const IndexTuple& indices) const;

  /// The committed value of an instance; null while it was never stored, but for a parameter
  /// without indices, whose one instance then holds the empty text.
  [[nodiscard]] const CommittedValue* committed(const IndexTuple& indices) const;
  [[nodiscard]] CommittedValue* committed(const IndexTuple& indices);
  /// The same for an instance with a number of its own, which is the same in every call: once the
  /// value is found it is not looked for again.
  [[nodiscard]] CommittedValue* committed(const IndexTuple& indices, size_t number);
  /// The text of committed(), empty where it is null.
  [[nodiscard]] const std::string& committedText(const IndexTuple& indices) const;
  /// Stores the value of an instance.
  void store(const IndexTuple& indices, const std::string& value);
  /// The value of an instance, which from now on is there. It stays where it is.
  CommittedValue& stored(const IndexTuple& indices);

 private:
  void takeIndices(std::vector<const IndexDef*> indices);
  [[nodiscard]] uint64_t countEvaluationWork() const;

  // What only a parameter with indices has.
  struct Indexing {
    std::vector<const IndexDef*> indices;
    std::vector<uint32_t> nameSlots;        // by index: the slot of its name
    uint32_t usedNames = 0;                 // how many variables the expressions use
    Interner suffixes;                      // of the instances that hold a value
    SegmentedList<CommittedValue> values;   // by the number of the suffix
    std::vector<CommittedValue*> numbered;  // by the instance's number; null where not known
  };

  // First, beside the name: a value that is asked for by name comes into the cache with it. Among
  // 100,000 parameters a name is looked up in half the time.
  Boxed<Indexing> indexing_;
  CommittedValue single_;  // of a parameter without indices
  AccessMode mode_;
  bool hasRunTimeRanges_ = false;
  uint32_t evaluationWork_;
  std::string fallbackDefault_;
  std::vector<ConditionalDefault> defaults_;
  std::vector<Program> readOnlyConditions_;
  Boxed<std::vector<ConstraintRule>> constraintRules_;
  Boxed<std::vector<ConditionalBounds>> documentedRanges_;
};

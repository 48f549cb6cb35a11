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
  MODE_NEVER = 0,       ///< nobody, ever: a ctrlValid of the text is constantly false
  MODE_NORMAL = 1,      ///< "ro" (which has an ever true read-only condition) and "rw"
  MODE_ROSTRICT = 2,    ///< as "ro"; a stored value is reported to nobody
  MODE_WRITE_ONLY = 3,  ///< "wo": the read-only conditions are not asked, each write is reported
};

/// The access word of the text. What it means for writing is in AccessMode and in the conditions.
enum AccessWord : uint8_t { WORD_RW, WORD_RO, WORD_ROSTRICT, WORD_WO };

/// The word as it is written: "rw".
std::string_view accessText(AccessWord word);

/// While `condition` is true, `value` is the default.
struct ConditionalDefault {
  Program condition;
  Program value;
};

/// While `condition` is true, a value for which `test` is false becomes `correction`. All three
/// read the value under test as sw::this; it is undefined where Constraints::apply() asks the
/// condition. With the condition 1, the test sw::this != 7 and the correction 8, 7 becomes 8.
///
/// No statement of a definition text makes a rule: only tests do. A run-time range takes the place
/// of such rules, and the walk over the levels of a commit serves both.
struct ConstraintRule {
  Program condition;
  Program test;
  Program correction;
};

/// The committed value of one instance. setValue() sets it; a commit that has no room to report the
/// value puts the one before back.
struct CommittedValue {
  ValueText value;
  bool announced = false;  ///< whether a commit has ever reported the instance
};

/// What a parameter has beyond an index. The builder fills it and hands it over. Its programs have
/// the slots of DefinitionParts::variables.
struct ParmParts {
  std::vector<const IndexDef*> indices;  ///< in the order of the index statement; not owned
  AccessMode mode = MODE_NORMAL;
  AccessWord access = WORD_RW;
  std::string fallbackDefault;                  ///< while none of `defaults` applies; may be empty
  std::vector<ConditionalDefault> defaults;     ///< in the order they are asked
  std::vector<ConstraintRule> constraintRules;  ///< in the order they correct; none from a text
  std::vector<Program> readOnlyConditions;      ///< one that is true suffices
  std::vector<ConditionalBounds> documentedRanges;  ///< rangeDoc, in the order they are asked
};

/// One parameter with all its instances. The registry owns it; see definition_registry.h. It refers
/// to its indices, which have to outlive it and stay where they are.
///
/// The definition itself never changes after it is built. What changes are the committed values: by
/// stored() and store(), and through the pointers that committed() gives.
///
/// Every situation here has a slot for each of variables(). What evaluates an expression may raise
/// std::bad_alloc or WorkExceeded.
class ParmDef final : public IndexDef {
 public:
  /// Takes the parts over. The names of the indices become variables behind those of the
  /// expressions, where they are not among these.
  ParmDef(DefinitionParts parts, ParmParts parmParts);
  ParmDef(ParmDef&&) = default;

  /// As of an index, but a parameter with constraints accepts every value of at most
  /// MAX_VALUE_BYTES and leaves the judgement to them.
  [[nodiscard]] bool checkBase(std::string value) const override;
  /// As of an index, but a parameter with constraints accepts every value.
  [[nodiscard]] bool checkValue(std::string value, BoundsCheck& check) const override;

  /// Whether values are judged by constraints: constraint rules, or ranges computed at run time.
  [[nodiscard]] bool hasConstraints() const;
  /// Whether one of the conditional bounds is computed at run time. A documented range does not
  /// count: it judges no value.
  [[nodiscard]] bool hasRunTimeRanges() const { return hasRunTimeRanges_; }
  /// Whether a write that is not forced is refused in a situation with the index values bound:
  /// always with MODE_NEVER, never with MODE_WRITE_ONLY, otherwise while a read-only condition is
  /// true.
  [[nodiscard]] bool isReadOnly(const SituationView& situation) const;
  /// The default that counts in a situation with the index values of an instance bound, and its
  /// value in `result`: the first whose condition is true and whose value exists. Null where none
  /// applies, and the fallback counts. Counts the work of each default that it asks.
  const ConditionalDefault* decidingDefault(const SituationView& situation, Value& result) const;
  /// The first that applies, in such a situation, of the documented ranges, then of the conditional
  /// bounds. Null where none does, and the base bounds count. Counts the work.
  [[nodiscard]] const ConditionalBounds* decidingRange(const SituationView& situation) const;
  /// Finds the default of an instance in a situation with its index values bound: the first whose
  /// condition is true and whose value exists. Numbers are written in decimal: 0x10 gives "16".
  /// Returns 0, or 1 when no default applied and `value` is the fallback. Counts the work of each
  /// default that it asks.
  int defaultValue(std::string& value, const SituationView& situation) const;
  /// Finds the range of an instance in a situation with its index values bound: the first that
  /// applies of the documented ranges, then of the conditional bounds, else the base bounds. `out`
  /// is empty before. Returns 0, or the code of BoundsExpression::evaluate() where that first one
  /// is a run-time range without values; the others are not asked then. Counts the work.
  int range(BoundsParm& out, const SituationView& situation) const;

  /// Who may write.
  [[nodiscard]] AccessMode mode() const { return mode_; }
  /// The access word, for whoever tells what there is.
  [[nodiscard]] AccessWord access() const { return access_; }
  /// The conditions of which one that is true makes it read-only; the first is the constant 1 where
  /// the access word does. Empty with MODE_WRITE_ONLY.
  [[nodiscard]] std::span<const Program> readOnlyConditions() const {
    return readOnlyConditions_.get();
  }
  /// The defaults, in the order they are asked, and what counts while none of them applies.
  [[nodiscard]] std::span<const ConditionalDefault> defaults() const { return defaults_; }
  [[nodiscard]] const std::string& fallbackDefault() const { return fallbackDefault_; }
  /// The ranges that are told in place of those that judge, in the order they are asked.
  [[nodiscard]] std::span<const ConditionalBounds> documentedRanges() const {
    return documentedRanges_.get();
  }
  /// The indices, in index order; no pointer is null. Empty for a parameter without indices.
  [[nodiscard]] const std::vector<const IndexDef*>& indices() const { return indexing_->indices; }
  /// The constraint rules, in the order they correct. Empty for whatever comes from a text.
  [[nodiscard]] const std::vector<ConstraintRule>& constraintRules() const {
    return constraintRules_.get();
  }
  /// How many names the expressions of the parameter itself use: they have the slots from 0 to one
  /// less. sw::this is among them where it is used. The names that the expressions of its indices
  /// use stay with the indices.
  [[nodiscard]] size_t usedNames() const {
    return indices().empty() ? variables().size() : indexing_->usedNames;
  }

  /// What it costs at most to evaluate one instance, in units of work: gathering its situation and
  /// setValue(). At most, because where one condition decides, the others are not asked. Not
  /// contained are the work on texts and that of its indices (IndexDef::situationWork(),
  /// IndexDef::askingWork()). Never more than UINT32_MAX.
  [[nodiscard]] uint64_t evaluationWork() const { return evaluationWork_; }

  /// Binds the value of the index at `place`, in index order from 0 and less than the number of
  /// indices, under the index's name. The situation views `value`, which has to live as long.
  void bindIndex(Situation& situation, size_t place, std::string_view value) const;
  /// Binds each value of an instance; the situation views `indices`. Values beyond the number of
  /// indices are left out, and an index without a value stays as it is.
  void bindIndices(Situation& situation, const IndexTuple& indices) const;

  /// The committed value of an instance; null while it was never stored. The one instance of a
  /// parameter without indices is never null: it begins with the empty text. Index values are
  /// compared as texts: "0x1" does not find "1". Valid as long as the definition stays where it is.
  /// Takes expected time linear in the length of the index values. May raise std::bad_alloc.
  [[nodiscard]] const CommittedValue* committed(const IndexTuple& indices) const;
  /// As the other committed(), for whoever may change the value.
  [[nodiscard]] CommittedValue* committed(const IndexTuple& indices);
  /// As committed(), for instance `number` of forEachInstance(); the number of an instance never
  /// changes. Once found, the value is not looked for again: a pointer to it is kept, in a list of
  /// one pointer for each number up to the largest.
  [[nodiscard]] CommittedValue* committed(const IndexTuple& indices, size_t number);
  /// The text of committed(), empty where that is null. Valid as long as the definition stays where
  /// it is and the value is not set.
  [[nodiscard]] const std::string& committedText(const IndexTuple& indices) const;
  /// Stores `value`, unchecked, as the value of an instance. For tests and tools: the daemon stores
  /// by setValue().
  void store(const IndexTuple& indices, const std::string& value);
  /// The value of an instance, which is added with the empty text where it was never stored. The
  /// reference is valid as long as the definition stays where it is. Where memory runs out
  /// (std::bad_alloc), no instance is added.
  CommittedValue& stored(const IndexTuple& indices);
  /// Takes the values of all instances away, as at the start: each holds the empty text, and was
  /// never announced. Pointers to committed values stay valid. For tools.
  void forgetValues();

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

  // These two are first, so that they are beside IndexDef's name, which is last there: a value that
  // is asked for by name comes into the cache with the name. Among 100,000 parameters a name is
  // looked up in half the time. The constructor asserts the distance.
  Boxed<Indexing> indexing_;
  CommittedValue single_;  // of a parameter without indices
  AccessMode mode_;
  AccessWord access_;
  bool hasRunTimeRanges_ = false;
  uint32_t evaluationWork_;
  std::string fallbackDefault_;
  std::vector<ConditionalDefault> defaults_;
  Boxed<std::vector<Program>> readOnlyConditions_;
  Boxed<std::vector<ConstraintRule>> constraintRules_;
  Boxed<std::vector<ConditionalBounds>> documentedRanges_;
};

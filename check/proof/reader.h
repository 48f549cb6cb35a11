// Readers: what the names of an expression stand for, for one instance of what it is written in.
#pragma once

#include "check/proof/domains.h"
#include "database/staged_values.h"

/// Who evaluates an expression.
class Reader {
 public:
  /// An index by itself, which is the same for all instances.
  Reader() = default;
  /// An instance of `parm`, of whose indices the expression sees the values of the first `seen`.
  Reader(ParmEntry* parm, IndexTuple indices, size_t seen)
      : parm_(parm), indices_(std::move(indices)), seen_(seen) {}

  /// Null for an index by itself.
  [[nodiscard]] ParmEntry* parm() const { return parm_; }
  [[nodiscard]] const IndexTuple& indices() const { return indices_; }
  /// The index values with which it reads the parameter `source`.
  [[nodiscard]] IndexTuple indicesOf(const VariableSource& source) const;
  /// The value of its own index that `source` names; null where it names none that is seen.
  [[nodiscard]] const std::string* ownIndex(const VariableSource& source) const;
  /// What the constant or index `source` may be.
  [[nodiscard]] NameDomain domainOf(const VariableSource& source, Domains& domains) const;
  /// What `source` is now. The view holds as long as this object and what is set.
  [[nodiscard]] Operand valueOf(const VariableSource& source, const StagedValues& staged) const;

 private:
  ParmEntry* parm_ = nullptr;
  IndexTuple indices_;
  size_t seen_ = 0;
};

/// Those that evaluate the expressions of a goal.
struct Readers {
  std::vector<Reader> all = {};
  bool areAll = true;  ///< no others do so
};

/// The readers of the expressions of `subject`: where they are many, those of the first and the
/// last values of each index. `seesIndices` is false for the expressions of a parameter that see
/// none.
Readers readersOf(const Subject& subject, bool seesIndices, const CompiledText& text);

// Statement lines: where in the definition text the statements of a definition are.
//
// They are kept beside the definitions, not in them, so that nothing that judges values becomes
// larger: one number for each statement, in the order of the definition's own lists.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "base/small_vector.h"
#include "sw/parm/parm_def.h"

/// The lines of one definition, from 1, as the builder collects them. Each list has one line for
/// each element of the definition's list of that name.
struct StatementLines {
  /// Few definitions have more statements of one kind, so collecting them takes no allocation.
  using List = SmallVector<uint32_t, 4>;

  uint32_t definition = 0;  ///< of the name
  List validity;            ///< of the validity conditions
  List ranges;              ///< of the conditional bounds; of a set that of its first
  List translations;        ///< by source
  List readOnly;            ///< of the read-only conditions; the definition's for "ro"
  List defaults;            ///< of the defaults
  List documented;          ///< of the documented ranges
  uint32_t fallback = 0;    ///< of the fallback default; 0 where there is none
  uint32_t base = 0;        ///< of the first of the base bounds; 0 where there are none
  // The statements that are one set, of which the lists above have one. Only tools look at these.
  List inBase;           ///< of all statements that the base bounds are made of
  List inSet;            ///< of all that the one of `ranges` without a condition is made of
  List inDocumentedSet;  ///< of all that the one of `documented` without a condition is made of

  /// Adds all of them to `list`, one behind the other, but for those of the sets.
  void appendTo(std::vector<uint32_t>& list) const;
};

/// The lines of one definition again, in what StatementLines::appendTo() added for it. It views the
/// numbers, which outlive it.
class LinesOfDefinition {
 public:
  /// `joined` are the numbers from the first of the definition on.
  LinesOfDefinition(const IndexDef& index, std::span<const uint32_t> joined);
  LinesOfDefinition(const ParmDef& parm, std::span<const uint32_t> joined);

  uint32_t definition;
  std::span<const uint32_t> validity;
  std::span<const uint32_t> ranges;
  std::span<const uint32_t> translations;
  std::span<const uint32_t> readOnly;
  std::span<const uint32_t> defaults;
  std::span<const uint32_t> documented;
  uint32_t fallback;
  uint32_t base;

 private:
  LinesOfDefinition(const IndexDef& index, const ParmDef* parm, std::span<const uint32_t> joined);
};

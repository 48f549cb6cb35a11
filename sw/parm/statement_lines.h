// Statement lines: where in the definition text the statements of a definition are.
//
// They are kept beside the definitions, not in them, so that nothing that judges values becomes
// larger: a byte or two for each statement, in the order of the definition's own lists.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "base/small_vector.h"
#include "deflang/expression/source_statement.h"
#include "sw/parm/parm_def.h"

/// The places of one definition, as the builder collects them. Each list has one for each element
/// of the definition's list of that name.
struct StatementLines {
  /// Few definitions have more statements of one kind, so collecting them takes no allocation.
  using List = SmallVector<StatementPlace, 4>;

  StatementPlace definition;  ///< of the name
  List validity;              ///< of the validity conditions
  List ranges;                ///< of the conditional bounds; of a set that of its first
  List translations;          ///< by source
  List readOnly;              ///< of the read-only conditions; the definition's for "ro"
  List defaults;              ///< of the defaults
  List documented;            ///< of the documented ranges
  StatementPlace fallback;    ///< of the fallback default; line 0 where there is none
  // The statements that are one set, of which the lists above have the first.
  List inBase;           ///< of all statements that the base bounds are made of
  List inSet;            ///< of all that the one of `ranges` without a condition is made of
  List inDocumentedSet;  ///< of all that the one of `documented` without a condition is made of

  /// Adds all of them to `bytes`, one behind the other.
  void appendTo(std::string& bytes) const;
};

/// The statements of one definition as they are written, from what StatementLines::appendTo() added
/// for it; these lists are as its lists. A set of several statements is one: on the line of its
/// first, with the texts of all.
class StatementsOfDefinition {
 public:
  /// What StatementSources::statement() gives; for the definition itself the line of its name.
  using FindSource = std::function<SourceStatement(uint32_t definition, uint32_t source)>;

  /// `kept` are the bytes from the first of the definition on.
  StatementsOfDefinition(const IndexDef& index, std::string_view kept, const FindSource& find);
  StatementsOfDefinition(const ParmDef& parm, std::string_view kept, const FindSource& find);

  /// The definition in StatementSources.
  static uint32_t definitionIn(std::string_view kept);

  using List = std::vector<SourceStatement>;

  uint32_t definition;  ///< the line of its name
  List validity;
  List ranges;
  List translations;
  List readOnly;  ///< no statement where the access word says so
  List defaults;
  List documented;
  SourceStatement fallback;  ///< no statement where there is none
  SourceStatement base;      ///< no statement where there is none

 private:
  StatementsOfDefinition(const IndexDef& index, const ParmDef* parm, std::string_view kept,
                         const FindSource& find);
};

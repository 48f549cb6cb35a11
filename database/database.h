// The parameter database: constants, definitions, how parameters depend on one another, and what a
// variable of a definition holds.
#pragma once

#include <array>
#include <cassert>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/boxed.h"
#include "base/hash_index.h"
#include "base/interner.h"
#include "base/segmented_list.h"
#include "base/text_map.h"
#include "sw/parm/build/definition_registry.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/statement_lines.h"
#include "sw/parm/value_text.h"

struct IndexEntry;
struct ParmEntry;
struct vidFigure_t;

/// Where a variable of a definition finds its value.
struct VariableSource {
  std::string_view name;                ///< the name referred to: P of a video standard name
  const vidFigure_t* figure = nullptr;  ///< F of a video standard name, else null
  ParmEntry* parm = nullptr;            ///< of a parameter
  const ValueText* constant = nullptr;  ///< of a command-line constant
  IndexTuple indices;                   ///< those that the name itself carries
  bool qualified = false;               ///< whether the name carries any "["
};

/// The sources of a definition's variables, by slot. Equal names have one source in all.
using VariableSources = std::vector<std::reference_wrapper<const VariableSource>>;

/// What a parameter has to do with indices. The names of an index are kept with the index alone,
/// however many parameters it indexes: these depend on them through it.
struct IndexLinks {
  std::vector<IndexEntry*> own;     ///< the parameter's indices, in index order
  std::vector<IndexEntry*> naming;  ///< the indices with dependents whose expressions refer to it
};

/// A parameter and its place among the others.
struct ParmEntry {
  ParmDef parm;                        ///< in place: what is asked for by name is at hand at once
  VariableSources sources;             ///< of the names that its own expressions use
  std::vector<ParmEntry*> dependents;  ///< whose own expressions refer to it, in name order
  Boxed<IndexLinks> indices;
  uint32_t level = 0;
  uint32_t rank = 0;              ///< its place in name order
  uint32_t walk = 0;              ///< the last walk over dependents that came here
  uint32_t lines = 0;             ///< where its lines begin: see Database::statementsOf()
  bool isNamedByIndices = false;  ///< whether `indices` has indices that name it

  /// Whether a parameter depends on it.
  [[nodiscard]] bool hasDependents() const { return !dependents.empty() || isNamedByIndices; }
};

/// An index and where its own variables find their values.
struct IndexEntry {
  std::unique_ptr<IndexDef> index;
  VariableSources sources;
  std::vector<std::string> values;     ///< the base bounds' values as a set of texts, once asked
  std::vector<ParmEntry*> dependents;  ///< the parameters that it indexes, in name order
  uint32_t walk = 0;                   ///< the last walk over dependents that came here
  uint32_t lines = 0;                  ///< where its lines begin: see Database::statementsOf()
  /// Whether it is the same for all instances at one moment: none of its names is an index, or a
  /// parameter's that is read by the index values of the instance.
  bool isShared = true;
};

/// Holds a device for the life of the process. It is filled once, in this order: constants, the
/// indices and parameters that the builder registers, finish(). From then on no name and no
/// dependence changes; only values do, through commit().
class Database final : public DefinitionRegistry {
 public:
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  /// Defines a constant of the command line (-D name=value). Returns 0, or 1 for a name that is
  /// defined already and keeps its value.
  int defineConstant(const std::string& name, const std::string& value);

  // What the builder asks and registers: see DefinitionRegistry.
  [[nodiscard]] const std::string* findConstant(std::string_view name) const override;
  int registerIndex(std::unique_ptr<IndexDef> index) override;
  void keepSources(const std::shared_ptr<const StatementSources>& sources) override;
  void keepIndexLines(std::string_view name, const StatementLines& lines) override;
  void keepParmLines(std::string_view name, const StatementLines& lines) override;
  void keepDescription(std::string_view name, std::string_view text) override;
  [[nodiscard]] const IndexDef* findIndex(std::string_view name) const override;
  int registerParm(std::unique_ptr<ParmDef> parm) override;
  int finish(std::string& name) override;

  /// The parameter of a base name, or null. Parameters stay where they are.
  [[nodiscard]] ParmEntry* findParm(std::string_view base);
  /// The parameter that a full name, as clients give them, begins with, or null. A name with a
  /// part that is too long names none.
  [[nodiscard]] ParmEntry* findNamed(std::string_view name);
  /// Looks up at most NAMES_TOGETHER base names, and calls `visit(i, parm)` for each in turn, with
  /// what findParm() gives for it. Memory is asked for all of them before the first answer is
  /// waited for: among 100,000 parameters a name and its value take about half the time of looking
  /// them up one by one (bench/names.cpp). Whoever wants the value reads it within `visit`, while
  /// the next names are still on their way; read after all names, it makes the look-up twice as
  /// long.
  template <typename Visit>
  void findAll(std::span<const std::string_view> bases, const Visit& visit);
  static constexpr size_t NAMES_TOGETHER = 16;  ///< enough that memory has answered for the first
  /// The constants of the command line by name; those that the text does not name are among them.
  [[nodiscard]] const std::map<std::string, ValueText, std::less<>>& constants() const {
    return constants_;
  }
  /// The index of a name, or null.
  [[nodiscard]] IndexEntry* findIndexEntry(std::string_view name);
  /// Where an expression finds the value of `variable`: the parameter, constant and figure that it
  /// names, or none of them, as for an index. The views in it are of `variable`.
  [[nodiscard]] VariableSource findSource(std::string_view variable);
  /// Takes the values of all instances away, as at the start. For tools; pointers to committed
  /// values stay valid.
  void forgetValues();
  /// The statements behind the lists of a definition, which came from a text.
  [[nodiscard]] StatementsOfDefinition statementsOf(const ParmEntry& entry) const;
  [[nodiscard]] StatementsOfDefinition statementsOf(const IndexEntry& entry) const;
  /// The line of its name, and all its statements in the order of the text: `lines` of its entry.
  [[nodiscard]] uint32_t lineOf(uint32_t lines) const;
  [[nodiscard]] std::vector<SourceStatement> sourceOf(uint32_t lines) const;
  /// What the text's comments say of a definition: lines, with newlines between them. Empty where
  /// they say nothing.
  [[nodiscard]] std::string_view descriptionOf(std::string_view name) const;
  /// The indices in name order.
  [[nodiscard]] std::vector<IndexEntry*> indicesInNameOrder();
  /// How many parameters, and how many indices, there are.
  [[nodiscard]] size_t parmCount() const { return parms_.size(); }
  [[nodiscard]] size_t indexCount() const { return indices_.size(); }
  /// The parameters in name order.
  [[nodiscard]] std::vector<ParmEntry*> parmsInNameOrder();
  /// Begins a walk over dependents, and gives its number: no parameter and no index has it yet as
  /// the last walk that came there. So a walk marks what it has reached without a table of its own.
  [[nodiscard]] uint32_t newWalk();

 private:
  [[nodiscard]] uint32_t keepLines(const StatementLines& lines);
  [[nodiscard]] std::string_view linesFrom(uint32_t lines) const;
  [[nodiscard]] ParmEntry* findParm(std::string_view base, size_t hash);
  [[nodiscard]] const VariableSource& sourceOf(std::string_view variable);
  [[nodiscard]] bool isKnown(const VariableSource& source) const;
  [[nodiscard]] bool isFixed(const VariableSource& source) const;
  [[nodiscard]] std::optional<std::string> firstUnknownName() const;
  void bindSources(const std::vector<ParmEntry*>& parms);
  void linkIndices(const std::vector<ParmEntry*>& parms);
  int assignLevels(const std::vector<ParmEntry*>& parms, std::string& name);

  std::map<std::string, ValueText, std::less<>> constants_;
  TextMap<IndexEntry> indices_;
  SegmentedList<ParmEntry> parms_;
  HashIndex parmPlaces_;  // by the hash of the name
  std::shared_ptr<const StatementSources> texts_;
  std::string lines_;  // of all statements of all definitions
  TextMap<std::string> descriptions_;
  SegmentedList<VariableSource> sources_;  // of the distinct variables of all definitions
  Interner sourceNames_;
  uint32_t walks_ = 0;  // the number of the last one
};

template <typename Visit>
void Database::findAll(std::span<const std::string_view> bases, const Visit& visit) {
  assert(bases.size() <= NAMES_TOGETHER);
  std::array<size_t, NAMES_TOGETHER> hashes;
  for (size_t i = 0; i < bases.size(); ++i) {
    hashes[i] = TextHash{}(bases[i]);
    parmPlaces_.prefetch(hashes[i]);
  }
  for (size_t i = 0; i < bases.size(); ++i) visit(i, findParm(bases[i], hashes[i]));
}

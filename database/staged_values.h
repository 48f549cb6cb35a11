// Staged values: what a transaction, or a range query on top of one, has put aside for instances of
// parameters.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "database/database.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/value_text.h"

/// The staged value of one instance.
struct StagedEntry {
  ParmEntry* parm = nullptr;
  IndexTuple indices;
  ValueText value;
  bool reset = false;      ///< to be replaced by the default at commit
  bool status = true;      ///< the force argument of setValue
  bool generated = false;  ///< made by a commit or a range query, not by a client
};

/// The full name of a staged entry.
std::string fullName(const StagedEntry& entry);

class StagedValues {
 public:
  /// `below` is what shows through where nothing is staged here; it is never changed.
  explicit StagedValues(const StagedValues* below = nullptr) : below_(below) {}

  /// The entry of an instance, here or below, or null.
  [[nodiscard]] const StagedEntry* find(const ParmEntry& parm, const IndexTuple& indices) const;
  /// The entry of an instance here. A new one is a copy of the one below, or else holds the
  /// committed value, with the reset flag clear and the status flag set; `generated` marks a new
  /// one that is no copy. Entries stay where they are until clear().
  StagedEntry& stage(ParmEntry& parm, const IndexTuple& indices, bool generated);
  /// The entries here, ascending by full name.
  [[nodiscard]] std::vector<StagedEntry*> inNameOrder();
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  void clear();

  /// What an instance holds as seen from here: its staged value, else its committed one.
  [[nodiscard]] Operand value(const ParmEntry& parm, const IndexTuple& indices) const;
  [[nodiscard]] const std::string& text(const ParmEntry& parm, const IndexTuple& indices) const;

 private:
  struct Key {
    const ParmEntry* parm;
    std::string suffix;
    bool operator==(const Key&) const = default;
  };
  struct KeyHash {
    size_t operator()(const Key& key) const;
  };

  // Makes a new entry of stage().
  void fill(StagedEntry& entry, ParmEntry& parm, const IndexTuple& indices, bool generated) const;

  const StagedValues* below_;
  std::unordered_map<Key, StagedEntry, KeyHash> entries_;
};

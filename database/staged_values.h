// Staged values: what a transaction, or a range query on top of one, has put aside for instances of
// parameters.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/hash_index.h"
#include "base/segmented_list.h"
#include "database/database.h"
#include "sw/parm/index_tuple.h"
#include "sw/parm/value_text.h"

/// The staged value of one instance, and how it is to be written.
struct StagedEntry {
  ParmEntry* parm = nullptr;
  IndexTuple indices;
  ValueText value;
  CommittedValue* held = nullptr;  ///< where the committed value is; null while none was known
  bool reset = false;              ///< to be replaced by the default at commit
  bool force = true;               ///< the read-only conditions are not asked
  bool generated = false;          ///< made by a commit or a range query, not by a client
};

/// The full name of a staged entry, as it is announced: "gain[1]".
std::string fullName(const StagedEntry& entry);

/// What the instance of a staged entry holds, the empty text where it was never stored.
const std::string& committedText(const StagedEntry& entry);
/// Whether clients were ever told what the instance of a staged entry holds. It may have been
/// stored by another transaction after it was staged.
bool wasAnnounced(const StagedEntry& entry);

/// What a transaction has staged, one entry for each instance. A commit adds the instances that
/// depend on them. A range query works on a scratch copy of its own, which only holds what differs:
/// everything else shows through from the transaction below.
///
/// Invariants:
/// 1. An instance has at most one entry here; the entry here is found, not the one below.
/// 2. An entry stays where it is until clear(), however many are staged after it.
/// 3. What is below is never changed. A new entry is a copy of the entry below, or else holds the
///    committed value.
/// 4. Where memory runs out (std::bad_alloc), the entries are as before.
/// 5. Without entries no memory is taken, also after clear().
class StagedValues {
 public:
  /// `below` is what shows through where nothing is staged here; it is never changed.
  explicit StagedValues(const StagedValues* below = nullptr) : below_(below) {}

  /// The entry of an instance, here or below, or null.
  [[nodiscard]] const StagedEntry* find(const ParmEntry& parm, const IndexTuple& indices) const;
  /// The entry of an instance here. A new one is a copy of the one below, or else holds the
  /// committed value, with the reset flag clear and the force flag set; `generated` marks a new
  /// one that is no copy. Entries stay where they are until clear().
  StagedEntry& stage(ParmEntry& parm, const IndexTuple& indices, bool generated);
  /// As stage(), for a plan's own use, where every entry below is here too: a new entry is a
  /// generated one.
  /// `number` is the instance's place in forEachInstance().
  StagedEntry& stageNumbered(ParmEntry& parm, const IndexTuple& indices, size_t number);
  /// Makes room for `more` entries, so that finding them later is not slowed down by growing.
  void makeRoom(size_t more) { places_.makeRoom(more); }
  /// The entries here, ascending by full name in byte order. Counts the work, and raises
  /// WorkExceeded. The pointers hold until clear().
  [[nodiscard]] std::vector<StagedEntry*> inNameOrder();
  /// Whether an entry here is to be replaced by its default.
  [[nodiscard]] bool hasResets() const;
  [[nodiscard]] bool empty() const { return entries_.empty(); }
  /// How many entries are here.
  [[nodiscard]] size_t count() const { return entries_.size(); }
  /// The memory that the entries take, in bytes, with what the allocator needs for itself. It is
  /// what a client's share is measured by.
  [[nodiscard]] size_t bytes() const;
  /// Drops all entries here.
  void clear();

  /// What an instance holds as seen from here: its staged value, else the one below, else the
  /// committed one, else the empty text. The view and the reference hold until the instance is
  /// staged or stored anew.
  [[nodiscard]] Operand value(const ParmEntry& parm, const IndexTuple& indices) const;
  [[nodiscard]] const std::string& text(const ParmEntry& parm, const IndexTuple& indices) const;

 private:
  [[nodiscard]] std::optional<uint32_t> placeOf(const ParmEntry& parm, const IndexTuple& indices,
                                                size_t hash) const;
  template <typename Make>
  StagedEntry& findOrAdd(const ParmEntry& parm, const IndexTuple& indices, const Make& make);

  const StagedValues* below_;
  SegmentedList<StagedEntry> entries_;
  HashIndex places_;
};

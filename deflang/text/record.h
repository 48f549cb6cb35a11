// Parameter records: what the grammar makes of a definition text, one record for each name.
#pragma once

#include <boost/intrusive/slist.hpp>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>
#include <vector>

#include "base/arena.h"
#include "base/hash_index.h"
#include "deflang/expression/source_statement.h"
#include "deflang/expression/token.h"
#include "deflang/text/statement_sources.h"

/// The word after the name.
enum AccessCode : int {
  ACCESS_NONE = -1,     ///< the text ended before the word; such a record is not built
  ACCESS_INDEX = 0,     ///< an index, no parameter
  ACCESS_RO = 1,        ///< read-only, but for a forced write
  ACCESS_ROSTRICT = 2,  ///< as "ro", and never announced
  ACCESS_WO = 3,        ///< always writable, and always announced
  ACCESS_RW = 4,        ///< writable, unless a ctrlRO is true
};

/// One name of an `index` statement, and where it is in the text.
struct IndexName {
  std::string_view name;
  Position at;
};
using IndexStatement = std::span<const IndexName>;

/// One item of a range statement: a quoted text, or a value with an optional upper value. A bare
/// number is an expression of one token. Of `{ "off", 1..(max), 7 }`, the items have the text off,
/// the lower and upper values 1 and max, and the lower value 7.
struct RangeItem {
  Position at;
  std::optional<std::string_view> text;
  Expression lower;
  std::optional<Expression> upper;
};

/// A `rangeValid` or `rangeDoc` statement. No condition and an empty one, `()`, are the same: the
/// expression without tokens. So in every statement that has a condition.
struct RangeStatement {
  Expression condition;
  std::span<const RangeItem> items;
};

/// A `default` statement: a quoted text or an expression (a bare number is one of one token).
struct DefaultStatement {
  Expression condition;
  Position at;  ///< of the value
  std::optional<std::string_view> text;
  Expression value;
};

/// A `valueChange` statement; numbers are in decimal.
struct Translation {
  Position at;  ///< of the source
  std::string_view source;
  std::string_view target;
};

/// A statement in the list of those of its kind. The link is the library's; a normal_link has
/// nothing to give back, so the arena may drop it without a destructor.
template <typename T>
struct Listed : T,
                boost::intrusive::slist_base_hook<
                    boost::intrusive::link_mode<boost::intrusive::normal_link>> {
  static_assert(std::is_trivially_copyable_v<T>, "the arena destroys nothing");
  Listed(const T& statement, StatementPlace written) : T(statement), place(written) {}
  StatementPlace place;
};

/// The statements of one kind, in statement order, linked within the arena that keeps them. With
/// vectors instead, each with an allocation of its own, a text of 100,000 definitions takes 1.9
/// times as long to read.
template <typename T>
using StatementList = boost::intrusive::slist<Listed<T>, boost::intrusive::cache_last<true>,
                                              boost::intrusive::constant_time_size<false>>;

/// Everything that the text says of one name, in one definition or in several, each kind of
/// statement in statement order. What it refers to lives in the arena of its records.
struct ParameterRecord {
  std::string_view name;
  uint32_t line = 0;  ///< where the name first is, from 1
  /// Where its statements are among the sources; 0 where they are not kept.
  uint32_t source = 0;
  AccessCode access = ACCESS_NONE;
  StatementList<IndexStatement> indices;     ///< `index`: the first counts, a further one is wrong
  StatementList<RangeStatement> rangeValid;  ///< the values that are accepted
  StatementList<RangeStatement> rangeDoc;    ///< the values that are told in their place
  StatementList<Expression> ctrlRO;          ///< read-only while one of them is true
  StatementList<Expression> ctrlValid;       ///< available while all of them are true
  StatementList<DefaultStatement> defaults;  ///< the first whose condition is true counts
  StatementList<Translation> valueChange;    ///< the values that are replaced before a check
};

/// The records of a text, by name, while it is read and built; up to 2^31 of them. Where memory is
/// exhausted, std::bad_alloc is raised, and what was read so far is of no use.
///
/// Invariants:
/// 1. A name has one record, which keeps the line where the name was first.
/// 2. A record stays where it is while others are added, and when the records are moved.
/// 3. Texts and statements of a record are in the arena of its records, never in the lines that
///    were read: these may be gone.
/// 4. inNameOrder() gives each record once, ascending by the bytes of the name.
class ParameterRecords {
 public:
  ParameterRecords() = default;
  ParameterRecords(ParameterRecords&&) = default;
  ParameterRecords& operator=(ParameterRecords&&) = default;

  /// The record of `name`, or null. The one added last is found at once: a text mostly goes on with
  /// the record that it is in.
  [[nodiscard]] const ParameterRecord* find(std::string_view name) const;
  [[nodiscard]] ParameterRecord* find(std::string_view name);
  /// The record of `name`; a new one without statements, first found on `line` (from 1), when there
  /// is none.
  ParameterRecord& findOrAdd(std::string_view name, uint32_t line);
  /// All records, ascending by name in byte order: the order in which they are built and their
  /// diagnostics are printed.
  [[nodiscard]] std::vector<const ParameterRecord*> inNameOrder() const;
  /// How many names the text defines.
  [[nodiscard]] size_t size() const { return records_.size(); }
  /// The statements as they are written. They may outlive the records.
  [[nodiscard]] const std::shared_ptr<StatementSources>& sources() const { return sources_; }
  /// Where what the records refer to lives.
  [[nodiscard]] Arena& arena() { return arena_; }

 private:
  [[nodiscard]] std::optional<uint32_t> placeOf(std::string_view name) const;

  Arena arena_;
  std::shared_ptr<StatementSources> sources_ = std::make_shared<StatementSources>();
  std::deque<ParameterRecord> records_;
  HashIndex places_;  // by name
};

// What the service answers, taken off the bus.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// In place of a transaction's id: the committed situation.
constexpr uint32_t COMMITTED = 4294967295;

/// A name with a value, as in gain=5.
struct Assignment {
  std::string name;
  std::string value;
  bool operator==(const Assignment& other) const = default;
};

/// A row of List.
struct ListedParameter {
  std::string name;    ///< the base name
  std::string access;  ///< "rw", "ro", "rostrict", "wo", or "index"
  std::vector<std::string> indices;
  uint32_t line = 0;  ///< of its definition, from 1
  uint32_t level = 0;

  [[nodiscard]] bool isIndex() const { return access == "index"; }
  /// Whether a client may ever set it, and not the device alone.
  [[nodiscard]] bool canBeSet() const { return access == "rw" || access == "wo"; }
};

/// The integers from the first to the second, both included.
using Span = std::pair<int32_t, int32_t>;

/// The flags of an instance.
enum StateFlag : uint32_t {
  STATE_KNOWN = 1,
  STATE_EXISTS = 2,
  STATE_WRITABLE = 4,  ///< a plain set would be stored
  STATE_STAGED = 8,
  STATE_LIMITED = 16,
  STATE_NO_LIMITS = 32,  ///< they cannot be computed
  STATE_HAS_VALUE = 64,
};

/// A row of GetState: an instance as a transaction sees it.
struct InstanceState {
  std::string name = {};  ///< the full name
  uint32_t flags = 0;
  std::string value = {};
  std::vector<Span> spans = {};         ///< ascending
  std::vector<std::string> texts = {};  ///< ascending

  [[nodiscard]] bool is(StateFlag flag) const { return (flags & flag) != 0; }
};

/// A row of Explain: a question about an instance, its answer, and the statement that decided.
struct Reason {
  std::string question;  ///< "exists", "writable", "limits", "default", or "value"
  std::string answer;
  uint32_t line = 0;  ///< 0 where no statement decided
  std::string statement;
  std::vector<Assignment> names;  ///< that the statement used, with their values
};

/// What a commit did, or would do, to a value.
struct Change {
  std::string name;
  std::string before;
  std::string after;
  std::vector<std::string> because = {};  ///< only of a preview: names that make it so
};

/// A staged name that a commit would not store.
struct Refusal {
  std::string name;
  std::string why;
};

/// What a commit would do.
struct Preview {
  std::vector<Change> changes;  ///< ascending by name
  std::vector<Refusal> refused = {};
  std::vector<Refusal> failing = {};  ///< what is not staged, and makes the commit fail
};

/// A row of ListTransactions.
struct OpenTransaction {
  uint32_t id = 0;
  std::string owner;  ///< a unique bus name; empty where everybody may use the transaction
  uint32_t staged = 0;
  uint32_t seconds = 0;  ///< since it was opened
};

/// A row of History.
struct PastCommit {
  uint32_t serial = 0;
  uint64_t time = 0;   ///< in microseconds since 1970
  std::string caller;  ///< a unique bus name
  std::vector<Change> changes;
};

/// What a service tells of itself. What an older one does not know keeps its value here.
struct Vitals {
  std::string version;
  uint32_t definitions = 0;
  uint64_t commits = 0;  ///< the serial of the last
  uint32_t transactions = 0;
  uint32_t watchers = 0;
  uint64_t started = 0;  ///< in microseconds since 1970
  bool isReady = true;
  double latency = 0;                   ///< of the call, in seconds
  std::optional<uint64_t> memory = {};  ///< of the process, in bytes, where that is known
};

/// What GetDefinition says, as far as it is used.
struct Definition {
  std::vector<std::string> indices;
  std::vector<std::string> statements;   ///< as they are written, in the order of the text
  std::vector<Assignment> translations;  ///< a value, and what it becomes
  std::vector<std::string> usedBy;       ///< parameters and indices that refer to it, ascending
};

/// The names of assignments, in their order.
std::vector<std::string> namesOf(const std::vector<Assignment>& assignments);
/// Takes out what has been refused.
void removeRefused(std::vector<Assignment>& assignments, const std::vector<Refusal>& refused);

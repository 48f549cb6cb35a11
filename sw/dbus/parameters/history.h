// History: the last commits that changed something.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "database/commit.h"

/// A commit as it is kept.
struct PastCommit {
  uint32_t serial = 0;
  uint64_t time = 0;  ///< in microseconds since 1970
  std::string caller;
  std::string texts;  ///< of each change the name, the old and the new value, a NUL behind each

  /// The memory that it counts for, in bytes.
  [[nodiscard]] size_t bytes() const { return sizeof(PastCommit) + caller.size() + texts.size(); }
};

/// Keeps at most MOST_COMMITS and MOST_BYTES; the oldest go. A commit that is larger than
/// MOST_BYTES by itself is not kept.
class History {
 public:
  static constexpr size_t MOST_COMMITS = 1000;
  static constexpr size_t MOST_BYTES = size_t{1} << 20U;  ///< 1 MiB

  /// Adds a commit. Where there is no memory for it, it is not kept.
  void add(uint32_t serial, uint64_t time, std::string_view caller,
           const std::vector<Change>& changes, const CommitRecord& record) noexcept;
  /// The commits that are kept, the oldest first.
  [[nodiscard]] const std::deque<PastCommit>& commits() const { return commits_; }
  /// The memory that they take, in bytes.
  [[nodiscard]] size_t bytes() const { return bytes_; }

 private:
  std::deque<PastCommit> commits_;
  size_t bytes_ = 0;
};

/// Calls `visit(name, before, after)` for each change of `commit`.
void forEachChange(
    const PastCommit& commit,
    const std::function<void(const std::string&, const std::string&, const std::string&)>& visit);

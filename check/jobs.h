// Jobs: pieces of work that processes share, because the engine's counters are those of a process.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What became of shared work.
struct JobResults {
  std::vector<std::string> results;  ///< in the order of the pieces
  std::string failure;               ///< why there are none, else empty
};

/// Calls `work(piece)` for each piece from 0 to `pieces` - 1 and collects what it returns. With
/// `jobs` of 2 or more, up to so many processes share the pieces, and `work` changes nothing in
/// this one. A process that ends before its pieces are done is a failure. Raises std::bad_alloc
/// where this process or one of the others has no memory left.
JobResults runJobs(size_t pieces, uint32_t jobs,
                   const std::function<std::string(size_t piece)>& work);

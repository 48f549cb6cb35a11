// Restoring: many values at once, in an order in which each is judged after those that it follows.
#pragma once

#include <string>
#include <vector>

#include "ctl/words/client.h"
#include "ctl/words/levels.h"

/// A value that was not stored as it was wanted.
struct CutValue {
  Assignment wanted;
  InstanceState stored;
};

/// What became of values.
struct Restored {
  size_t count = 0;  ///< that are as wanted, those that were so before included
  std::vector<CutValue> cut;
  std::vector<Refusal> refused;
  Names absent;   ///< instances that do not exist now
  Names unknown;  ///< names of no parameter
};

/// What would be refused of the values in one commit, at once or in the end. Nothing is stored.
std::vector<Refusal> refusedTogether(Service& service, const std::vector<Assignment>& assignments,
                                     bool isStatus);

/// Commits the values of one level; returns those that are refused. The others are stored.
std::vector<Refusal> commitLevel(Service& service, uint32_t transaction,
                                 const std::vector<Assignment>& assignments, bool isStatus);

/// Commits the values level by level, until that changes no more. `isStatus` as of the device;
/// otherwise what some of the values would lock is stored before those.
Restored restoreByLevels(Service& service, const Levels& levels,
                         const std::vector<Assignment>& wanted, bool isStatus);

/// Whether an instance can be set in the state `now`, and exists and cannot be set in that of
/// `then`.
bool wouldBeLocked(const InstanceState& now, const InstanceState& then);

/// Why the value is refused for an instance in this state: by its limits, where those refuse it, or
/// `why` in the service's words.
std::string refusalText(const InstanceState& state, const std::string& value,
                        const std::string& why);

/// Says that the device has been brought up. Returns `status`, or STATUS_REFUSED after a complaint
/// where it was STATUS_DONE and the service refuses.
int tellReady(Client& client, int status);

/// Compares with what is stored; `refused` is what a commit has refused on the way. A commit passes
/// over what is read-only without a word: where it was not made as of the device, that is refused,
/// too.
Restored restoredOf(Service& service, const Levels& levels, const std::vector<Assignment>& wanted,
                    const std::vector<Refusal>& refused, bool isStatus);

/// Prints what was cut and complains of the rest; `verb` as in "kept". Returns the exit status.
int tellRestored(Client& client, const Restored& restored, const std::string& verb, bool isStrict,
                 std::optional<uint32_t> transaction = std::nullopt);

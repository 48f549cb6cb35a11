// Candidates: the parameters whose values decide about an instance, and values to try for them.
#pragma once

#include <string>
#include <vector>

#include "ctl/words/client.h"

/// A parameter to change.
struct Candidate {
  InstanceState state;
  std::vector<std::string> values;  ///< to try: all others, or the telling ones, the nearest first
  /// To try as well: telling ones that it does not take now, and may take with another change.
  std::vector<std::string> beyond = {};
};

/// Those that decide now about the instance `name`. `reasons` are the deciding ones; `wanted` is
/// the value that it shall take, or empty.
std::vector<Candidate> findCandidates(Client& client, const std::string& name,
                                      const std::vector<Reason>& reasons,
                                      const std::string& wanted);

/// Those that may decide about it in any situation: of all statements that may lock it, and of
/// those that lock or limit a candidate.
std::vector<Candidate> findWiderCandidates(Client& client, const std::string& name,
                                           const std::string& wanted);

/// The numbers and quoted texts in a statement.
std::vector<std::string> literalsOf(const std::string& statement);

/// Whether `name` is a word of the statement.
bool mentions(const std::string& statement, std::string_view name);

/// The values to try for an instance with this state: all that it takes where they are few, else
/// the ends, and those of `literals` that it takes with their neighbours. Where it takes
/// everything, a number and a text besides. Without its own.
std::vector<std::string> valuesToTry(const InstanceState& state,
                                     const std::vector<std::string>& literals);

/// Those of the reasons that keep an instance from being written, and from taking a value where it
/// `isForValue`.
std::vector<Reason> decidingReasons(const std::vector<Reason>& reasons, bool isForValue);

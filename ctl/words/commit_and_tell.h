// A commit, and what became of the values in it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "ctl/words/client.h"

/// A value that a client wants; no value for the default.
struct Wanted {
  std::string name;
  std::optional<std::string> value;
};

std::vector<Wanted> wantedOf(const std::vector<Assignment>& assignments);

struct TellOptions {
  bool isStrict = false;  ///< STATUS_CUT where something was cut
  bool onlyCut = false;   ///< prints lines only for what was cut
};

/// Commits what `transaction` has staged: `wanted`. Prints what is stored, what was cut, and what
/// has followed. Where the service would refuse something, complains and stores nothing. Returns
/// the exit status.
int commitAndTell(Client& client, uint32_t transaction, const std::vector<Wanted>& wanted,
                  const TellOptions& options);

/// A change of a parameter that follows others, as a line.
std::string followerLine(const Style& style, const Change& change);

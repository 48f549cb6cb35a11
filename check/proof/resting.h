// Resting: whether parameters stay as they are when they are set to what they hold.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "check/proof/compiled_text.h"
#include "check/proof/deadline.h"
#include "check/text/finding.h"

/// What each of `names` holds now, in their order; the empty text where it was never stored.
NamedValues heldValues(const std::vector<std::string>& names, Database& database);

/// Sets everything that is not empty to what it holds, in one commit of each level, up to the
/// deadline. Returns whether no commit was too large.
bool commitAgain(const NamedValues& values, Database& database, const Deadline& deadline);

/// Whether `names`, which between them have all that they depend on, stay as they are after a
/// start. All their values are unset afterwards.
bool restAfterStart(const std::vector<std::string>& names, Database& database,
                    const Deadline& deadline);

/// An instance that does not rest.
struct Motion {
  std::string name;
  std::string before;
  std::string after;  ///< once the same values are set again
};

/// The first instance of each parameter that has moved, by base name.
using Motions = std::map<std::string, Motion, std::less<>>;

/// What has moved between two calls of heldValues() with the same names.
Motions motionsBetween(const NamedValues& before, const NamedValues& after);

/// That an instance does not come to rest. `when` says where it was as before.
std::string restlessText(const Motion& motion, std::string_view when);

/// The finding that the first parameter in the text that has moved does not rest, with some of the
/// others: they mostly move one another. Nullopt where nothing has moved.
std::optional<Finding> findRestless(const CompiledText& text, const Motions& motions,
                                    std::string_view when);

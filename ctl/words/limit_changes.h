// What a commit would do to what parameters take, and to whether they exist and can be written.
#pragma once

#include <string>
#include <vector>

#include "ctl/words/client.h"

struct LimitChange {
  InstanceState before;
  InstanceState after;
  /// The changed instances that it reads; their base names where the service cannot tell.
  std::vector<std::string> because;
};

/// Of the instances that refer to one of the changes, those that would be different once the commit
/// is done, by name. `changes` are those of its preview; `untold` is what it stores besides.
std::vector<LimitChange> limitChanges(Client& client, const std::vector<Change>& changes,
                                      const std::vector<Assignment>& untold);

/// What is different, in words: "takes 0..9, was 0..5", "can be written", and so on.
std::vector<std::string> limitTexts(const LimitChange& change);

// Taking back: what a commit has changed gets its old values, by other commits.
#pragma once

#include "ctl/words/client.h"
#include "ctl/words/confirmation.h"

/// Waits for the commit that `confirmation` has seen to be confirmed, or takes it back. `what` is
/// what it has set, in words. Returns the exit status; where it is confirmed, that is `confirmed`.
int awaitConfirmation(Client& client, Confirmation& confirmation, const std::string& what,
                      int seconds, bool isStatus, int confirmed);

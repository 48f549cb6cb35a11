// Reads sessions: the grammar that ostrel-session(5) describes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "play/session.h"

/// Reads all of a file into `text`. Returns 0, or the error number of what went wrong.
using ReadSessionFile = std::function<int(const std::string& name, std::string& text)>;

/// So many loops and included files may be within each other.
constexpr size_t MAX_SESSION_DEPTH = 32;
/// So many files a session may be made of; one that is included twice counts twice.
constexpr size_t MAX_SESSION_FILES = 1000;

/// Reads the session `text`, which is that of the file `name`, and what it includes, into
/// `session`, which is empty before but for transactions. `errors` gets what is wrong, in order,
/// one for each line; the session is to be played only where there is nothing. Included files are
/// relative to the file that names them, and are read by `readFile`. Raises std::bad_alloc where
/// memory is exhausted.
void readSession(const std::string& name, std::string text, const ReadSessionFile& readFile,
                 Session& session, std::vector<SessionError>& errors);

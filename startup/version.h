// The version text: what this build is and where it comes from.
#pragma once

/// "ostrel Built on DATE TIME [VERSION REPOSITORY COMMIT]", as in
/// "ostrel Built on Sep 27 2019 17:20:36 [2.05 ostrel 0a74f5e]".
extern const char VERSION_TEXT[];

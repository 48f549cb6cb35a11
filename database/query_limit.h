// The limit of queries: how much of names, texts and spans one of them gathers.
#pragma once

#include <cstddef>

/// More than this, in bytes, fits into no message. Names can carry the index values of the name
/// that is asked for, which may be long; a span has 8 bytes.
constexpr size_t MAX_QUERY_BYTES = size_t{32} << 20U;

// Past commits in words.
#pragma once

#include <string>
#include <vector>

#include "ctl/text/output.h"

/// The time of a commit in the local time zone, as 2026-11-23 07:30:05.
std::string timeText(uint64_t microseconds);

/// A change as a line: gain: 5 -> 7.
std::string changeLine(const Style& style, const Change& change);

/// A change in JSON.
Json changeJson(const Change& change);

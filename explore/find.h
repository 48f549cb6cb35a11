// Finds: walks that show a fault, made as short as they go, and written as sessions that fail.
#pragma once

#include <string>
#include <vector>

#include "explore/probe.h"
#include "explore/walk.h"

/// A walk whose last step shows a fault; without steps, bringing the device up does.
struct Find {
  Walk walk;
  Fault fault;
};

/// Walks again, and looks only at the last step. Returns the fault, if it is one of the same kind
/// about the same definition as that of `find`.
std::optional<Fault> foundAgain(const Find& find, const StartDevice& start,
                                const DeviceNames& names);

/// `find` without the steps that do not matter. It walks at most `walks` times, each time with a
/// new device; where that is not enough, some steps are left.
Find shrunk(Find find, const StartDevice& start, const DeviceNames& names, size_t walks = 300);

/// The session of a find: a comment with its sentence, the walk, and an expectation that is not
/// met.
std::string sessionOf(const Find& find);

// Finds: walks that show a fault, made as short as they go, and written as sessions that fail.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "explore/probe.h"
#include "explore/walk.h"

/// A walk whose last step shows a fault; without steps, bringing the device up does.
struct Find {
  Walk walk;
  Fault fault;
};

/// Walks again, and looks only at the last step. Returns the fault, if it is one of the same kind:
/// the same property does not hold, and it is a value of the same parameter that is wrong.
std::optional<Fault> foundAgain(const Find& find, const StartDevice& start,
                                const DeviceNames& names);

/// How long a find is made shorter.
struct ShrinkBudget {
  size_t walks = 300;                 ///< each with a new device
  std::function<bool()> isOver = {};  ///< asked before each walk; may be null
};

/// `find` without the steps that do not matter; where the budget is not enough, some are left.
Find shrunk(Find find, const StartDevice& start, const DeviceNames& names,
            ShrinkBudget budget = {});

/// The session of a find: a comment with its sentence, the walk, and an expectation that is not
/// met.
std::string sessionOf(const Find& find);

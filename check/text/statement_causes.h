// Statement causes: faults within a statement.
#pragma once

#include "check/text/fault_view.h"

/// A fault behind the keyword of a statement, up to its closing sign.
ReadingCause causeInStatement(const FaultView& view);

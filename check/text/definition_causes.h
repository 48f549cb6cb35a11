// Definition causes: faults outside of statements.
#pragma once

#include "check/text/fault_view.h"

/// A fault between the name of a definition and its opening brace.
ReadingCause causeInHead(const FaultView& view);

/// A fault where a statement or the closing brace has to be.
ReadingCause causeInBody(const FaultView& view);

// The builder's step for default statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the defaults and the fallback default.
///
/// With the parameters mode and lo, and X = 1 on the command line:
///
///   default { 7 }               the fallback, wherever it is among the statements
///   default { (lo + 1) }        a run-time value: the last of the defaults, always true
///   default (mode == 1) { 8 }   a default, in the order of the statements
///   default (1) { 7 }           as without the condition
///   default (X) { 8 }           a default that is always true: it wins over those after it and
///                               over the fallback
///   default (X == 0) { 8 }      dropped without a word
///   default (1 > 2) { 8 }       dropped with a warning
///
/// Errors are: two statements without a condition; two whose run-time conditions are token for
/// token the same, unless they name a command-line constant; and an expression that is malformed or
/// never has a value, whose statement is left out.
void buildDefaults(DefinitionDraft& draft);

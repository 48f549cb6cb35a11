// The builder's step for default statements.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the defaults and the fallback default.
///
/// The statement without a condition is the fallback, wherever it stands; with a run-time value it
/// is the last default, which always applies. A condition that is constantly not 0 counts as none,
/// unless it names a command-line constant: then the statement wins over those after it and over
/// the fallback. A condition that is constantly 0 drops the statement, with a warning unless it
/// names a command-line constant.
///
/// Two statements without a condition, and two with the same run-time condition, are errors.
void buildDefaults(DefinitionDraft& draft);

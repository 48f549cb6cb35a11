// The builder's steps for control statements: the read-only and validity conditions.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the read-only conditions from the ctrlRO statements, in their order. A condition that is
/// constantly 0 is dropped; one that is constantly another value is kept as always true. "ro" and
/// "rostrict" put an always true one in front.
///
/// Constant conditions are compared: one that agrees with an earlier one is reported as a warning,
/// one that only contradicts earlier ones as an error. Conditions that name a command-line constant
/// are not compared. A condition that cannot be evaluated is an error and left out.
void buildReadOnlyConditions(DefinitionDraft& draft);

/// Builds the validity conditions from the ctrlValid statements, in their order. A condition that
/// is constantly not 0 is dropped. One that is constantly 0 makes the definition never valid, and a
/// parameter one that can never be written; it is reported as a warning unless it names a
/// command-line constant. Constant conditions are compared as those of ctrlRO.
void buildValidityConditions(DefinitionDraft& draft);

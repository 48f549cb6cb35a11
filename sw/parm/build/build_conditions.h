// The builder's steps for control statements: the read-only and validity conditions.
#pragma once

#include "sw/parm/build/definition_draft.h"

/// Builds the read-only conditions from the ctrlRO statements. One that is constantly 0 is dropped,
/// one that is constantly not stays as always true. "ro" and "rostrict" add one of their own.
void buildReadOnlyConditions(DefinitionDraft& draft);

/// Builds the validity conditions from the ctrlValid statements. One that is constantly not 0 is
/// dropped. One that is constantly 0 makes a definition that is never valid, and a parameter that
/// can never be written; it is reported as a warning unless it names a command-line constant.
void buildValidityConditions(DefinitionDraft& draft);

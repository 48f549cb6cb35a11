// The definition builder: parameter records into index and parameter definitions.
#pragma once

#include "deflang/text/diagnostics.h"
#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"
#include "sw/parm/build/definition_registry.h"

/// Builds every record (indices first, then parameters, each in name order), registers the
/// definitions and has the registry finish them; what is wrong goes to `diagnostics`. With
/// `checkOnly` only the diagnostics are made. Returns 0, or the first non-zero result of a step: -1
/// for what `diagnostics` or standard error tells, otherwise the registry's.
///
/// The diagnostics are in the order in which the records are built, those of one record by
/// statement: index, rangeValid, rangeDoc, ctrlRO, ctrlValid, default, valueChange, each in the
/// order of the text; at last the names in its expressions. The names of index records are reported
/// after all index records.
int buildDefinitions(DiagnosticCollector& diagnostics, const ParameterRecords& records,
                     const LineTexts& lines, bool checkOnly, DefinitionRegistry& registry);

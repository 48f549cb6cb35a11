// The definition builder: parameter records into index and parameter definitions.
#pragma once

#include "deflang/text/diagnostics.h"
#include "deflang/text/line_texts.h"
#include "deflang/text/record.h"
#include "sw/parm/build/definition_registry.h"

/// Builds every record (indices first, then parameters, each in name order), registers the
/// definitions and has the registry finish them. What is wrong goes to `diagnostics`; nothing stops
/// the build before its end. With `checkOnly` only the diagnostics are made: `registry` is asked
/// for its constants and not changed. A name that `registry` already holds keeps its definition.
///
/// Returns 0, or the first result of a step that is not 0: -1 for what `diagnostics` or standard
/// error tells, otherwise that of DefinitionRegistry::finish(). Raises std::bad_alloc where memory
/// is exhausted; the registry is then of no use. No step walks over what came before, so that long
/// texts take no more than their share of time.
///
/// The diagnostics are in the order in which the records are built, those of one record by
/// statement: index, rangeValid, rangeDoc, ctrlRO, ctrlValid, default, valueChange, each in the
/// order of the text; at last the names in its expressions. The names of index records are reported
/// after all index records.
int buildDefinitions(DiagnosticCollector& diagnostics, const ParameterRecords& records,
                     const LineTexts& lines, bool checkOnly, DefinitionRegistry& registry);

// Build causes: what the builder reports about a text, with the cause and the other places.
#pragma once

#include "check/text/findings.h"
#include "check/text/read_text.h"
#include "check/text/variant.h"
#include "deflang/text/diagnostics.h"

/// What a build has come to.
struct BuildReport {
  const DiagnosticCollector& diagnostics;
  int result;          ///< of buildDefinitions()
  int finishResult;    ///< of Database::finish()
  std::string onRing;  ///< the name that it gave with the result 1
};

/// Adds a finding for each cause among the diagnostics; none for what only follows from a fault of
/// reading. Where the build has failed and nothing was wrong with the reading, there is at least
/// one error.
void explainBuild(const SourceText& source, const ReadText& text, const Variant& variant,
                  const BuildReport& report, Findings& findings);

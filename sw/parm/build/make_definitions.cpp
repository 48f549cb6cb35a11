#include "sw/parm/build/make_definitions.h"

#include <cstdio>

#include "deflang/text/diagnostics.h"
#include "sw/parm/build/builder.h"

int makeDefinitions(bool checkOnly, const DefinitionText& text, DefinitionRegistry& registry) {
  DiagnosticCollector diagnostics;
  const int result = buildDefinitions(diagnostics, text.records, text.lines, checkOnly, registry);
  diagnostics.print(stderr);
  return result == 0 ? 0 : 1;
}

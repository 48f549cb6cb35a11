#include "fuzz/built_text.h"

#include "fuzz/captured_stderr.h"
#include "fuzz/demand.h"
#include "fuzz/pieces.h"
#include "sw/parm/build/builder.h"
#include "tests/support/lines.h"
#include "vid_std.h"

namespace {

bool read(std::string_view text, DefinitionText& definitions) {
  const std::vector<std::string> pieces = piecesOf(text);
  return readDefinitionText(pulledFrom(pieces), definitions) == PARSE_DONE;
}

}  // namespace

BuiltText::BuiltText(std::string_view text, bool checkOnly) {
  static const bool haveStandards = (initVidStdTables(), true);
  demand(haveStandards, "no video standards");
  for (const Constant& constant : CONSTANTS) {
    demand(database.defineConstant(constant.name, constant.value) == 0, "a constant given twice");
  }
  CapturedStderr captured;
  readable = read(text, definitions);
  if (readable) {
    result =
        buildDefinitions(diagnostics, definitions.records, definitions.lines, checkOnly, database);
  }
  errors = captured.restore();
}

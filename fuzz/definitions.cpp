// Fuzzes whole definition texts: read, built and finished. A text without a diagnostic must
// serve: every parameter is read, reset, committed and asked for its range.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "base/number.h"
#include "base/system_log.h"
#include "database/commit.h"
#include "database/dependencies.h"
#include "database/index_query.h"
#include "database/range_query.h"
#include "database/transaction.h"
#include "fuzz/built_text.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "sw/parm/parm_name.h"

namespace {

// A commit takes in every instance of a dependent, and a text may ask for any number of them.
constexpr uint64_t MAX_INSTANCES = 2000;

uint64_t valueCount(const IndexDef& index) {
  uint64_t count = index.baseBounds().strings().count();
  for (const Span& span : index.baseBounds().integers().spans()) {
    count += static_cast<uint64_t>(static_cast<int64_t>(span.second) - span.first + 1);
  }
  return count;
}

// Up to MAX_INSTANCES + 1, so that nothing overflows.
uint64_t instanceCount(const ParmDef& parm) {
  uint64_t count = 1;
  for (const IndexDef* index : parm.indices()) {
    count = std::min(count * valueCount(*index), MAX_INSTANCES + 1);
  }
  return count;
}

std::string firstValue(const IndexDef& index) {
  const Spans& spans = index.baseBounds().integers().spans();
  if (!spans.empty()) return numberText(spans.front().first);
  const std::set<std::string>& texts = index.baseBounds().strings().texts();
  return texts.empty() ? "any" : *texts.begin();
}

std::string firstInstance(const ParmDef& parm) {
  IndexTuple values;
  for (const IndexDef* index : parm.indices()) values.push_back(firstValue(*index));
  return fullName(parm.name(), values);
}

// All diagnostics, without the lines about the text as a whole: a check does not finish it.
std::string printed(const DiagnosticCollector& diagnostics) {
  size_t lines = 0;
  for (const std::string& line : diagnostics.textLines()) lines += line.size() + 1;
  char* text = nullptr;
  size_t size = 0;
  FILE* const out = open_memstream(&text, &size);
  demand(out != nullptr, "no stream");
  diagnostics.print(out);
  fclose(out);
  std::string result(text + lines, size - lines);
  free(text);
  return result;
}

// A diagnostic names a line that was read and a column within it, or neither.
void expectPlaces(const BuiltText& built) {
  for (const Diagnostic& diagnostic : built.diagnostics.diagnostics()) {
    if (diagnostic.at.line == NO_POSITION) continue;
    const auto line = built.definitions.lines.find(diagnostic.at.line);
    demand(line && diagnostic.at.column < line->size(),
           "a diagnostic points nowhere: ", diagnosticMessage(diagnostic.code));
  }
  const bool failed = built.result != 0;
  const bool isReported =
      !built.diagnostics.textLines().empty() || !built.diagnostics.diagnostics().empty();
  demand(!failed || isReported, "refused without a word");
}

void expectSameWhenOnlyChecked(std::string_view text, const BuiltText& built) {
  const BuiltText checked(text, true);
  demand(printed(checked.diagnostics) == printed(built.diagnostics), "check-only reports ",
         printed(checked.diagnostics), "and not ", printed(built.diagnostics));
}

void askIndices(Database& database, const Transaction& transaction, const ParmDef& parm) {
  static_cast<void>(validIndices(database, transaction.staged(), parm));
  for (const IndexDef* index : parm.indices()) {
    if (!index->isPlain() && valueCount(*index) > MAX_INSTANCES) continue;
    std::vector<std::string> texts;
    Spans spans;
    const int result = indexRange(database, transaction.staged(), index->name(), texts, spans);
    demand(result == INDEX_RANGE_FOUND || result == INDEX_RANGE_NOT_AVAILABLE, "no index ",
           index->name());
  }
}

// Whatever the answers are, there is one for every parameter.
void askAll(Database& database, const Transaction& transaction) {
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    const ParmDef& parm = entry->parm;
    const std::string instance = firstInstance(parm);
    std::string value;
    // A text may define the name of the value under test, which is never looked up.
    const int expected = instance == THIS_VALUE ? 2 : 0;
    demand(transaction.get(instance, value) == expected, "no value of ", instance);
    std::set<std::string> names;
    demand(dependencies(database, parm.name(), false, names) == DEPENDENCIES_FOUND,
           "no dependencies of ", parm.name());
    BoundsParm range;
    static_cast<void>(queryRange(database, transaction.staged(), instance, range));
    demand(range.isConsistent(), "no proper range of ", instance);
    askIndices(database, transaction, parm);
  }
}

// Resets every parameter at once, as a hasty client does.
void resetAll(Database& database, Transaction& transaction) {
  uint64_t instances = 0;
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    instances += instanceCount(entry->parm);
    demand(transaction.reset(firstInstance(entry->parm), true) == STAGE_DONE, "no reset");
  }
  if (instances > MAX_INSTANCES) return;
  std::vector<Change> changes;
  static_cast<void>(commit(transaction, changes));
  demand(transaction.staged().empty(), "a commit left something staged");
}

void serve(Database& database) {
  const LogRedirection silence([](const std::string&) {});
  Transaction transaction(database);
  askAll(database, transaction);
  resetAll(database, transaction);
  askAll(database, transaction);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text = textOf(data, size);
  BuiltText built(text);
  if (built.readable) {
    expectPlaces(built);
    expectSameWhenOnlyChecked(text, built);
  }
  if (built.isClean()) serve(built.database);
  return 0;
}

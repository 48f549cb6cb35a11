#include "database/commit_steps.h"

#include <utility>

#include "database/gather.h"

void resolveReset(StagedEntry& entry, const StagedValues& staged) {
  std::string value;
  // Without a default that applies, the value is the fallback: both serve.
  static_cast<void>(
      entry.parm->parm.defaultValue(value, gatherBound(*entry.parm, entry.indices, staged)));
  entry.value.set(std::move(value));
}

void resolveResets(StagedValues& staged) {
  if (!staged.hasResets()) return;
  for (StagedEntry* entry : staged.inNameOrder()) {
    if (entry->reset) resolveReset(*entry, staged);
  }
}

void copyStaged(StagedValues& staged, StagedValues& copies) {
  for (const StagedEntry* entry : staged.inNameOrder()) {
    static_cast<void>(copies.stage(*entry->parm, entry->indices, false));
  }
}

bool isReported(const ParmDef& parm, bool wasAnnounced, const std::string& value,
                const std::string& before) {
  return !wasAnnounced || parm.mode() == MODE_WRITE_ONLY || value != before;
}

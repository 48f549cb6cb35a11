#include "database/commit_steps.h"

#include <utility>

#include "database/gather.h"

void resolveResets(StagedValues& staged) {
  if (!staged.hasResets()) return;
  for (StagedEntry* entry : staged.inNameOrder()) {
    if (entry->reset) {
      std::string value;
      // Without a default that applies, the value is the fallback: both serve.
      static_cast<void>(
          entry->parm->parm.defaultValue(value, gatherBound(*entry->parm, entry->indices, staged)));
      entry->value.set(std::move(value));
    }
  }
}

bool isReported(const ParmDef& parm, bool wasAnnounced, const std::string& value,
                const std::string& before) {
  return !wasAnnounced || parm.mode() == MODE_WRITE_ONLY || value != before;
}

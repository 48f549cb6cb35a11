#include "check/proof/setter.h"

#include "database/index_situations.h"

SetCode Setter::set(ParmEntry& parm, const IndexTuple& indices, std::string& value, bool dryRun) {
  StagedEntry entry;
  entry.parm = &parm;
  entry.indices = indices;
  entry.value.set(value);
  entry.generated = true;
  IndexSituations situations(staged_);
  const SetCode code = evaluate(entry, situations, dryRun);
  value = entry.value.text();
  return code;
}

bool Setter::stays(ParmEntry& parm, const IndexTuple& indices) {
  const std::string held = parm.parm.committedText(indices);
  std::string value = held;
  return isAccepted(set(parm, indices, value, true)) && value == held;
}

void Setter::unset(ParmEntry& parm, const IndexTuple& indices) {
  CommittedValue* const held = parm.parm.committed(indices);
  if (held != nullptr) *held = CommittedValue();
}

std::optional<std::string> valueKept(ParmEntry& parm, const IndexTuple& indices,
                                     const std::string& value) {
  std::string kept = value;
  if (!isAccepted(Setter().set(parm, indices, kept, true))) return std::nullopt;
  return kept;
}

#include "check/proof/questions.h"
#include "database/gather.h"
#include "database/index_values.h"
#include "sw/parm/present_index.h"

namespace {

// How many of its values an index takes in what is set now.
size_t countTaken(IndexEntry& index) {
  const StagedValues staged;
  PresentIndex present(*index.index, gather(index, staged));
  if (!present.isAvailable()) return 0;
  const std::vector<std::string>& values = indexValues(index);
  return static_cast<size_t>(std::count_if(
      values.begin(), values.end(), [&](const auto& value) { return present.takes(value); }));
}

std::string parametersText(const IndexEntry& index) {
  const size_t count = index.dependents.size();
  return count == 1 ? index.dependents.front()->parm.name() : std::to_string(count) + " parameters";
}

// Tells the situation in which the fewest values are left: none, or some less than there can be.
void askIndex(Proof& proof, const Subject& subject) {
  IndexEntry& index = *subject.index;
  const bool followsParameters =
      std::any_of(index.sources.begin(), index.sources.end(),
                  [](const VariableSource& source) { return source.parm != nullptr; });
  // Without a range that always counts no commit takes instances in by itself.
  const uint64_t count = countIndexValues(*index.index);
  if (count == 0 || count > MAX_INDEX_VALUES) return;
  if (!followsParameters || !index.isShared || index.dependents.empty()) return;
  Goal anything{&subject};
  anything.dependsOnRanges = true;
  const size_t all = indexValues(index).size();
  size_t left = all;
  for (const size_t most : {size_t{0}, all - 1}) {
    const HealthyResult result =
        findHealthy(anything, proof.text(), proof.domains(), [&](const IndexTuple&) {
          left = countTaken(index);
          return left <= most;
        });
    if (result.verdict != VERDICT_POSSIBLE) continue;
    const Position at = proof.text().checked().text.layout.nameOf(*subject.record);
    Finding finding{"narrowed-away",
                    {at.line, at.column, static_cast<uint32_t>(subject.name().size())},
                    std::to_string(left) + " of " + std::to_string(all) +
                        " index values can be left, and the other instances of " +
                        parametersText(index) + " are then out of reach, with what they hold"};
    finding.witness = result.witness;
    proof.add(std::move(finding));
    return;
  }
}

}  // namespace

void askIndices(Proof& proof) {
  for (const Subject& subject : proof.text().subjects()) {
    if (subject.index != nullptr) askIndex(proof, subject);
  }
}

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

void addUndecided(Proof& proof, const Subject& subject) {
  Finding finding{"narrowed-away", placeOfName(subject),
                  "instances can be out of reach, with what they hold"};
  proof.addUndecided(std::move(finding));
}

// Tells the situation in which the fewest values are left: none, or some less than there can be.
void askIndex(Proof& proof, const Subject& subject) {
  IndexEntry& index = *subject.index;
  const bool followsParameters =
      std::any_of(index.sources.begin(), index.sources.end(),
                  [](const VariableSource& source) { return source.parm != nullptr; });
  // Without a range that always counts no commit takes instances in by itself.
  const uint64_t count = countIndexValues(*index.index);
  if (count == 0 || !followsParameters || !index.isShared || index.dependents.empty()) return;
  if (count > MAX_INDEX_VALUES) {
    addUndecided(proof, subject);
    return;
  }
  Goal anything{&subject};
  anything.dependsOnRanges = true;
  const size_t all = indexValues(index).size();
  size_t left = all;
  bool isUndecided = false;
  for (const size_t most : {size_t{0}, all - 1}) {
    const HealthyResult result = proof.findHealthy(anything, [&](const IndexTuple&) {
      left = countTaken(index);
      return left <= most;
    });
    isUndecided = isUndecided || result.verdict == VERDICT_UNDECIDED;
    if (result.verdict != VERDICT_POSSIBLE) continue;
    Finding finding{"narrowed-away", placeOfName(subject),
                    std::to_string(left) + " of " + std::to_string(all) +
                        " index values can be left, and the other instances of " +
                        parametersText(index) + " are then out of reach, with what they hold"};
    finding.witness = result.witness;
    proof.add(std::move(finding));
    return;
  }
  if (isUndecided) addUndecided(proof, subject);
}

}  // namespace

void askIndices(Proof& proof, const Explained& explained) {
  proof.forEachSubject([&](const Subject& subject) {
    // One that is never available has no values in any situation: that is told of its condition.
    const bool isDead = std::ranges::any_of(subject.ctrlValid, [&](const auto& statement) {
      return explained.dead.contains(&statement);
    });
    const bool isAsked =
        subject.index != nullptr && !isDead && !proof.text().isNamedByOthers(subject.name());
    if (isAsked) askIndex(proof, subject);
  });
}

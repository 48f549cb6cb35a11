#include "database/reference_ring.h"

#include <algorithm>
#include <unordered_map>

namespace {

// Calls `take(index, parm)` for each parameter to which `from` refers, by an index or by itself.
template <typename Take>
void forEachReference(const ParmEntry& from, const Take& take) {
  const auto look = [&](const VariableSources& sources, const IndexEntry* index) {
    for (const VariableSource& source : sources) {
      if (source.parm != nullptr) take(index, *source.parm);
    }
  };
  look(from.sources, nullptr);
  for (const IndexEntry* index : from.indices->own) look(index->sources, index);
}

bool refersTo(const ParmEntry& from, const ParmEntry& to) {
  bool refers = false;
  forEachReference(from, [&](const IndexEntry* /*index*/, const ParmEntry& named) {
    refers = refers || &named == &to;
  });
  return refers;
}

// A walk along the references, breadth first, that remembers how it came to each parameter.
class RingSearch {
 public:
  explicit RingSearch(ParmEntry& start) : start_(start) {}

  std::vector<RingStep> find() {
    lookAround(start_);
    // NOLINTNEXTLINE(modernize-loop-convert): there come to be more of them.
    for (size_t i = 0; i < reached_.size() && closing_.parm == nullptr; ++i) {
      lookAround(*reached_[i]);
    }
    return closing_.parm == nullptr ? std::vector<RingStep>() : wayBack();
  }

 private:
  void lookAround(ParmEntry& from) {
    forEachReference(from, [&](const IndexEntry* index, ParmEntry& named) {
      const bool isStart = &from == &start_;
      if (&named == &start_) {
        if (!isStart && closing_.parm == nullptr) closing_ = {&from, index};
      } else if (!cameFrom_.contains(&named) && !(isStart && refersTo(named, start_))) {
        cameFrom_.emplace(&named, RingStep{&from, index});
        reached_.push_back(&named);
      }
    });
  }

  std::vector<RingStep> wayBack() {
    std::vector<RingStep> ring = {closing_};
    while (ring.back().parm != &start_) ring.push_back(cameFrom_.at(ring.back().parm));
    std::ranges::reverse(ring);
    return ring;
  }

  ParmEntry& start_;
  std::unordered_map<const ParmEntry*, RingStep> cameFrom_;
  std::vector<ParmEntry*> reached_;
  RingStep closing_;  // the one that refers to the start
};

}  // namespace

std::vector<RingStep> referenceRing(ParmEntry& start) { return RingSearch(start).find(); }

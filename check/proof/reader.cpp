#include "check/proof/reader.h"

#include <algorithm>

#include "base/number.h"
#include "database/gather.h"
#include "database/index_values.h"

namespace {

constexpr size_t MANY_READERS = 64;

// The first and the last value of an index that has any.
std::vector<std::string> endsOf(const BoundsParm& bounds) {
  const Spans& spans = bounds.integers().spans();
  const std::set<std::string>& texts = bounds.strings().texts();
  return {spans.empty() ? *texts.begin() : numberText(spans.front().first),
          texts.empty() ? numberText(spans.back().second) : *texts.rbegin()};
}

// The ends that the ranges of an index say, where no range counts always.
std::vector<std::string> conditionalEnds(const Subject& index) {
  std::set<std::string> values;
  for (const CompiledStatement& range : index.rangeValid) {
    for (const CompiledItem& item : range.items) {
      if (item.text) values.insert(*item.text);
      forEachExpression(item, [&](const CompiledExpression& end) {
        const Value value = end.program.evaluate(Situation(end.variables.size()));
        if (value.valid()) values.insert(value.asText());
      });
    }
  }
  return {values.begin(), values.end()};
}

// Each of `tuples` with each of `values` behind it.
std::vector<IndexTuple> lengthened(const std::vector<IndexTuple>& tuples,
                                   const std::vector<std::string>& values) {
  std::vector<IndexTuple> longer;
  for (const IndexTuple& tuple : tuples) {
    for (const std::string& value : values) {
      longer.push_back(tuple);
      longer.back().push_back(value);
    }
  }
  return longer;
}

// Collects the readers of one goal.
class ReaderList {
 public:
  explicit ReaderList(const CompiledText& text) : text_(text) {}

  // Adds the instances of a parameter.
  void add(ParmEntry& parm, size_t seen) {
    std::vector<IndexTuple> tuples = {{}};
    for (IndexEntry* const index : parm.indices->own) {
      tuples = lengthened(tuples, valuesOf(*index, tuples.size()));
    }
    for (IndexTuple& tuple : tuples) readers_.all.emplace_back(&parm, std::move(tuple), seen);
  }

  // Adds those who judge an index that follows other indices: each instance shows it the values of
  // those before it.
  void addDependents(const IndexEntry& index) {
    for (ParmEntry* const parm : index.dependents) {
      if (readers_.all.size() >= MANY_READERS) {
        readers_.areAll = false;
        return;
      }
      const std::vector<IndexEntry*>& own = parm->indices->own;
      const auto place = std::find(own.begin(), own.end(), &index) - own.begin();
      add(*parm, static_cast<size_t>(place));
    }
  }

  [[nodiscard]] Readers take() { return std::move(readers_); }

 private:
  // The values that an index may have in instances of which there are `tuples` so far.
  std::vector<std::string> valuesOf(IndexEntry& index, size_t tuples) {
    const uint64_t count = countIndexValues(*index.index);
    if (count > 0 && count * tuples <= MANY_READERS) return indexValues(index);
    readers_.areAll = false;
    std::vector<std::string> values = count == 0 ? conditionalEnds(*text_.find(index.index->name()))
                                                 : endsOf(index.index->baseBounds());
    // Each further index would double them.
    if (tuples >= MANY_READERS && values.size() > 1) values.resize(1);
    if (values.size() > MANY_READERS) values.resize(MANY_READERS);
    return values;
  }

  const CompiledText& text_;
  Readers readers_;
};

}  // namespace

IndexTuple Reader::indicesOf(const VariableSource& source) const {
  return parm_ == nullptr ? source.indices : ::indicesOf(source, parm_->parm, indices_);
}

const std::string* Reader::ownIndex(const VariableSource& source) const {
  if (source.parm != nullptr || source.constant != nullptr) return nullptr;
  for (size_t i = 0; i < seen_; ++i) {
    if (parm_->parm.indices()[i]->name() == source.name) return &indices_[i];
  }
  return nullptr;
}

NameDomain Reader::domainOf(const VariableSource& source, Domains& domains) const {
  if (source.constant != nullptr) return domains.of(source);
  const std::string* const index = ownIndex(source);
  return index == nullptr ? NameDomain{{}, true} : NameDomain{Domain::of(*index), false};
}

Operand Reader::valueOf(const VariableSource& source, const StagedValues& staged) const {
  if (source.parm != nullptr) return ::valueOf(source, indicesOf(source), staged);
  const std::string* const index = ownIndex(source);
  return index == nullptr ? ::valueOf(source, {}, staged) : operandOf(*index);
}

Readers readersOf(const Subject& subject, bool seesIndices, const CompiledText& text) {
  ReaderList readers(text);
  if (subject.parm != nullptr) {
    readers.add(*subject.parm, seesIndices ? subject.parm->indices->own.size() : 0);
    return readers.take();
  }
  if (subject.index->isShared || subject.index->dependents.empty()) return {{Reader()}};
  readers.addDependents(*subject.index);
  return readers.take();
}

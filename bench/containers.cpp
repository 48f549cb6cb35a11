// Containers: those made by hand beside the library types that could take their places, at the work
// and the sizes that the daemon has for them. All of one kind use the same hash, so that the ratio
// of two times is that of the containers.
#include <absl/container/flat_hash_map.h>
#include <absl/container/flat_hash_set.h>
#include <absl/container/inlined_vector.h>
#include <absl/strings/cord.h>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <boost/container/deque.hpp>
#include <boost/unordered/unordered_flat_set.hpp>
#include <deque>
#include <numeric>
#include <optional>
#include <random>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/hash_index.h"
#include "base/interner.h"
#include "base/joined_text.h"
#include "base/segmented_list.h"
#include "base/small_vector.h"
#include "base/text_map.h"
#include "database/commit.h"
#include "database/name_order.h"
#include "deflang/expression/variables.h"

namespace {

constexpr int64_t SMALL = 1000;
constexpr int64_t LARGE = 100000;

using Texts = std::vector<std::string>;

// Shuffled, in the same way in each run.
template <typename T>
std::vector<T> shuffled(std::vector<T> elements) {
  std::shuffle(elements.begin(), elements.end(), std::mt19937(1));
  return elements;
}

// "p[1]" to "p[<count>]" in no order, or with another base name.
Texts instances(int64_t count, const std::string& base = "p") {
  Texts names;
  for (int64_t i = 1; i <= count; ++i) names.push_back(base + "[" + std::to_string(i) + "]");
  return shuffled(std::move(names));
}

// ---- Hash index: texts that are held elsewhere are found by their places. ----

constexpr size_t TOGETHER = 16;

class PlacesInHashIndex {
 public:
  explicit PlacesInHashIndex(const Texts& texts) : texts_(texts) {}
  void add(uint32_t place) {
    const size_t hash = TextHash{}(texts_[place]);
    if (!has(hash, texts_[place])) index_.add(hash, place);
  }
  [[nodiscard]] bool has(std::string_view text) const { return has(TextHash{}(text), text); }
  // As many as the daemon looks up together: the slots of all are on their way before the first
  // is needed.
  void findAll(std::span<const std::string, TOGETHER> names) const {
    std::array<size_t, TOGETHER> hashes;
    for (size_t i = 0; i < TOGETHER; ++i) {
      hashes[i] = TextHash{}(names[i]);
      index_.prefetch(hashes[i]);
    }
    for (size_t i = 0; i < TOGETHER; ++i) benchmark::DoNotOptimize(has(hashes[i], names[i]));
  }

 private:
  [[nodiscard]] bool has(size_t hash, std::string_view text) const {
    return index_.find(hash, [&](uint32_t place) { return texts_[place] == text; }).has_value();
  }

  const Texts& texts_;
  HashIndex index_;
};

struct PlaceHash {
  using is_transparent = void;
  using is_avalanching = void;  // boost need not mix the bits once more
  const Texts* texts;
  size_t operator()(std::string_view text) const { return TextHash{}(text); }
  size_t operator()(uint32_t place) const { return TextHash{}((*texts)[place]); }
};

struct PlaceEqual {
  using is_transparent = void;
  const Texts* texts;
  bool operator()(uint32_t a, uint32_t b) const { return (*texts)[a] == (*texts)[b]; }
  bool operator()(uint32_t place, std::string_view text) const { return (*texts)[place] == text; }
  bool operator()(std::string_view text, uint32_t place) const { return (*texts)[place] == text; }
};

template <typename Set>
class PlacesInSet {
 public:
  explicit PlacesInSet(const Texts& texts) : set_(0, PlaceHash{&texts}, PlaceEqual{&texts}) {}
  void add(uint32_t place) { set_.insert(place); }
  [[nodiscard]] bool has(std::string_view text) const { return set_.find(text) != set_.end(); }
  // Nothing is brought into the cache ahead of use: boost has no call for it, and absl's computes
  // each hash once more, which costs at least what it gains.
  void findAll(std::span<const std::string, TOGETHER> names) const {
    for (const std::string& name : names) benchmark::DoNotOptimize(has(name));
  }

 private:
  Set set_;
};

using PlacesInAbslSet = PlacesInSet<absl::flat_hash_set<uint32_t, PlaceHash, PlaceEqual>>;
using PlacesInBoostSet = PlacesInSet<boost::unordered_flat_set<uint32_t, PlaceHash, PlaceEqual>>;

template <typename Places>
void addAll(Places& places, const Texts& texts) {
  for (uint32_t place = 0; place < texts.size(); ++place) places.add(place);
}

template <typename Places>
void indexAll(benchmark::State& state) {
  const Texts texts = instances(state.range(0));
  while (state.KeepRunning()) {
    Places places(texts);
    addAll(places, texts);
    benchmark::DoNotOptimize(places);
  }
}

// Asks for each of `wanted` in turn.
template <typename Places>
void ask(benchmark::State& state, const Texts& wanted) {
  const Texts texts = instances(state.range(0));
  Places places(texts);
  addAll(places, texts);
  size_t next = 0;
  while (state.KeepRunning()) {
    benchmark::DoNotOptimize(places.has(wanted[next]));
    next = next + 1 == wanted.size() ? 0 : next + 1;
  }
}

template <typename Places>
void findPresent(benchmark::State& state) {
  ask<Places>(state, shuffled(instances(state.range(0))));
}

template <typename Places>
void findAbsent(benchmark::State& state) {
  ask<Places>(state, instances(state.range(0), "q"));
}

template <typename Places>
void findSixteen(benchmark::State& state) {
  const Texts texts = instances(state.range(0));
  const Texts wanted = shuffled(texts);
  Places places(texts);
  addAll(places, texts);
  size_t next = 0;
  while (state.KeepRunning()) {
    places.findAll(std::span<const std::string, TOGETHER>(&wanted[next], TOGETHER));
    next = next + 2 * TOGETHER > wanted.size() ? 0 : next + TOGETHER;
  }
}

BENCHMARK_TEMPLATE(findPresent, PlacesInHashIndex)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findPresent, PlacesInAbslSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findPresent, PlacesInBoostSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findAbsent, PlacesInHashIndex)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findAbsent, PlacesInAbslSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findAbsent, PlacesInBoostSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findSixteen, PlacesInHashIndex)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findSixteen, PlacesInAbslSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(findSixteen, PlacesInBoostSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(indexAll, PlacesInHashIndex)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(indexAll, PlacesInAbslSet)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(indexAll, PlacesInBoostSet)->Arg(SMALL)->Arg(LARGE);

// ---- Interner: all names get their numbers; then each is looked for. ----

template <typename Map>
class MapAndNames {
 public:
  uint32_t intern(std::string_view name) {
    if (const auto found = numbers_.find(name); found != numbers_.end()) return found->second;
    const auto number = static_cast<uint32_t>(names_.size());
    names_.emplace_back(name);
    numbers_.emplace(name, number);
    return number;
  }
  [[nodiscard]] std::optional<uint32_t> find(std::string_view name) const {
    const auto found = numbers_.find(name);
    return found == numbers_.end() ? std::nullopt : std::optional(found->second);
  }

 private:
  Map numbers_;
  Texts names_;
};

using AbslMapAndNames =
    MapAndNames<absl::flat_hash_map<std::string, uint32_t, TextHash, std::equal_to<>>>;
using StdMapAndNames = MapAndNames<TextMap<uint32_t>>;

template <typename Names>
void internAndFind(benchmark::State& state) {
  const Texts names = instances(state.range(0));
  const Texts wanted = shuffled(names);
  while (state.KeepRunning()) {
    Names interned;
    for (const std::string& name : names) benchmark::DoNotOptimize(interned.intern(name));
    for (const std::string& name : wanted) benchmark::DoNotOptimize(interned.find(name));
  }
}

BENCHMARK_TEMPLATE(internAndFind, Interner)->Arg(3)->Arg(8)->Arg(9)->Arg(LARGE);
BENCHMARK_TEMPLATE(internAndFind, AbslMapAndNames)->Arg(3)->Arg(8)->Arg(9)->Arg(LARGE);
BENCHMARK_TEMPLATE(internAndFind, StdMapAndNames)->Arg(3)->Arg(8)->Arg(9)->Arg(LARGE);

// ---- Segmented list: elements of the size of a parameter. ----

struct Element {
  uint64_t next = 0;  // the place that is read after this one
  std::array<uint64_t, 61> others{};
};

using Segmented = SegmentedList<Element>;
using StdDeque = std::deque<Element>;
using BoostDeque = boost::container::deque<Element>;
// With blocks as large as one likes.
using BoostDequeOf64 =
    boost::container::deque<Element, void,
                            boost::container::deque_options_t<boost::container::block_size<64U>>>;

void add(Segmented& list, const Element& element) { list.add(element); }
template <typename Deque>
void add(Deque& list, const Element& element) {
  list.push_back(element);
}

// A search knows the place of an element only when it has the one before, so each access waits.
template <typename List>
void readAnywhere(benchmark::State& state) {
  std::vector<uint64_t> places(static_cast<size_t>(state.range(0)));
  std::iota(places.begin(), places.end(), 0U);
  places = shuffled(std::move(places));
  List list;
  for (size_t i = 0; i < places.size(); ++i) add(list, Element());
  for (size_t i = 0; i < places.size(); ++i) list[places[i]].next = places[(i + 1) % places.size()];
  uint64_t at = 0;
  while (state.KeepRunning()) at = list[at].next;
  benchmark::DoNotOptimize(at);
}

template <typename List>
void addElements(benchmark::State& state) {
  while (state.KeepRunning()) {
    List list;
    for (int64_t i = 0; i < state.range(0); ++i) add(list, Element());
    benchmark::DoNotOptimize(list);
  }
}

// The counter is the memory of one in bytes, with what the allocator adds.
template <typename List>
void makeEmpty(benchmark::State& state) {
  while (state.KeepRunning()) {
    List list;
    benchmark::DoNotOptimize(list);
  }
  const size_t before = mallinfo2().uordblks;
  const std::vector<List> many(SMALL);
  state.counters["bytes"] = static_cast<double>(mallinfo2().uordblks - before) / SMALL;
}

BENCHMARK_TEMPLATE(readAnywhere, Segmented)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(readAnywhere, StdDeque)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(readAnywhere, BoostDeque)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(readAnywhere, BoostDequeOf64)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(addElements, Segmented)->Arg(1)->Arg(LARGE);
BENCHMARK_TEMPLATE(addElements, StdDeque)->Arg(1)->Arg(LARGE);
BENCHMARK_TEMPLATE(addElements, BoostDeque)->Arg(1)->Arg(LARGE);
BENCHMARK_TEMPLATE(addElements, BoostDequeOf64)->Arg(1)->Arg(LARGE);
BENCHMARK_TEMPLATE(makeEmpty, Segmented);
BENCHMARK_TEMPLATE(makeEmpty, StdDeque);
BENCHMARK_TEMPLATE(makeEmpty, BoostDeque);
BENCHMARK_TEMPLATE(makeEmpty, BoostDequeOf64);

// ---- Small vector: the values of an expression's variables, made and dropped with each use. ----

class ArrayAndVector {
 public:
  explicit ArrayAndVector(size_t size) : size_(size), many_(size > few_.size() ? size : 0) {}
  [[nodiscard]] size_t size() const { return size_; }
  Operand& operator[](size_t slot) {
    return (size_ > few_.size() ? many_.data() : few_.data())[slot];
  }

 private:
  size_t size_;
  std::array<Operand, 4> few_;
  std::vector<Operand> many_;
};

using BoostSmallVector = SmallVector<Operand, 4>;
using AbslInlinedVector = absl::InlinedVector<Operand, 4>;
using StdVector = std::vector<Operand>;

template <typename Operands>
void bindAndRead(benchmark::State& state) {
  while (state.KeepRunning()) {
    auto slots = static_cast<size_t>(state.range(0));
    benchmark::DoNotOptimize(slots);
    Operands operands(slots);
    for (size_t slot = 0; slot < slots; ++slot) operands[slot] = {OPERAND_NUMBER, 7, {}};
    benchmark::ClobberMemory();
    int32_t sum = 0;
    for (size_t slot = 0; slot < slots; ++slot) sum += operands[slot].number;
    benchmark::DoNotOptimize(sum);
  }
}

BENCHMARK_TEMPLATE(bindAndRead, BoostSmallVector)->Arg(3)->Arg(6);
BENCHMARK_TEMPLATE(bindAndRead, ArrayAndVector)->Arg(3)->Arg(6);
BENCHMARK_TEMPLATE(bindAndRead, AbslInlinedVector)->Arg(3)->Arg(6);
BENCHMARK_TEMPLATE(bindAndRead, StdVector)->Arg(3)->Arg(6);

// ---- Joined text: additions of three bytes, and the text that they make. ----

constexpr std::string_view PART = "abc";

class Joined {
 public:
  void append() { text_.append(PART); }
  void prepend() { text_.prepend(PART); }
  std::string_view view() { return text_.view(); }

 private:
  JoinedText text_{""};
};

class StdString {
 public:
  void append() { text_.append(PART); }
  void prepend() { text_.insert(0, PART); }
  std::string_view view() { return text_; }

 private:
  std::string text_;
};

class DequeOfChars {
 public:
  void append() { letters_.insert(letters_.end(), PART.begin(), PART.end()); }
  void prepend() { letters_.insert(letters_.begin(), PART.begin(), PART.end()); }
  std::string_view view() { return text_.assign(letters_.begin(), letters_.end()); }

 private:
  std::deque<char> letters_;
  std::string text_;
};

class AbslCord {
 public:
  void append() { cord_.Append({PART.data(), PART.size()}); }
  void prepend() { cord_.Prepend({PART.data(), PART.size()}); }
  std::string_view view() {
    const absl::string_view flat = cord_.Flatten();
    return {flat.data(), flat.size()};
  }

 private:
  absl::Cord cord_;
};

template <typename Text>
void joinAtBothEnds(benchmark::State& state) {
  while (state.KeepRunning()) {
    Text text;
    for (int64_t i = 0; i < state.range(0); i += 2) {
      text.append();
      text.prepend();
    }
    benchmark::DoNotOptimize(text.view());
  }
}

template <typename Text>
void joinInFront(benchmark::State& state) {
  while (state.KeepRunning()) {
    Text text;
    for (int64_t i = 0; i < state.range(0); ++i) text.prepend();
    benchmark::DoNotOptimize(text.view());
  }
}

BENCHMARK_TEMPLATE(joinAtBothEnds, Joined)->Arg(2)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinAtBothEnds, StdString)->Arg(2)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinAtBothEnds, DequeOfChars)->Arg(2)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinAtBothEnds, AbslCord)->Arg(2)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinInFront, Joined)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinInFront, StdString)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinInFront, DequeOfChars)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_TEMPLATE(joinInFront, AbslCord)->Arg(SMALL)->Arg(LARGE);

// ---- Sorting by names that begin alike. ----

void byName(std::vector<Change>& elements) { sortByName(elements); }
void byStdSort(std::vector<Change>& elements) {
  std::sort(elements.begin(), elements.end(),
            [](const Change& a, const Change& b) { return a.name < b.name; });
}

void sortNames(benchmark::State& state, void (*sort)(std::vector<Change>&)) {
  std::vector<Change> unsorted;
  for (const std::string& name : instances(state.range(0))) unsorted.push_back({name});
  while (state.KeepRunning()) {
    state.PauseTiming();
    std::vector<Change> elements = unsorted;
    state.ResumeTiming();
    sort(elements);
    benchmark::DoNotOptimize(elements);
  }
}

BENCHMARK_CAPTURE(sortNames, sortByName, byName)->Arg(SMALL)->Arg(LARGE);
BENCHMARK_CAPTURE(sortNames, stdSort, byStdSort)->Arg(SMALL)->Arg(LARGE);

}  // namespace

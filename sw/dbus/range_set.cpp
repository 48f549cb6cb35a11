#include "sw/dbus/range_set.h"

#include <utility>

#include "database/name_order.h"
#include "database/range_query.h"
#include "sw/dbus/errors.h"
#include "sw/dbus/reply.h"
#include "sw/parm/parm_name.h"

namespace {

// What a name takes beside its range, in bytes: its places in the tables, and an empty BoundsParm.
constexpr size_t NAME_MEMORY = 256;

// What a name and its range take in tables and reply, in bytes.
size_t memoryOf(std::string_view name, const BoundsParm& bounds) {
  size_t memory = NAME_MEMORY + bounds.count() * (STRUCT_MEMORY + name.size());
  for (const std::string& text : bounds.strings().texts()) memory += text.size();
  return memory;
}

// Whether `name` is the full name of its instance: its base name and index values in brackets, and
// no byte between or behind the brackets.
bool isFullName(std::string_view name) {
  size_t open = name.find('[');
  while (open < name.size()) {
    const size_t close = name[open] == '[' ? name.find(']', open) : std::string_view::npos;
    if (close == std::string_view::npos) return false;
    open = close + 1;
  }
  return true;
}

}  // namespace

int RangeSet::findBounds(std::string_view name, const BoundsParm*& bounds) {
  if (!isFullName(name)) name = fullNames_.add(fullName(baseName(name), splitName(name).indices));
  Known& instance = known_[name];
  if (instance.bounds == nullptr) {
    BoundsParm& found = bounds_.add({});
    const int result = queryRange(transaction_.database(), transaction_.staged(), name, found);
    if (result != RANGE_FOUND) return result;
    instance.bounds = &found;
  }
  bounds = instance.bounds;
  return RANGE_FOUND;
}

int RangeSet::add(std::string_view name) {
  Work::add(WORK_PER_REQUEST + name.size());
  if (std::exchange(known_[name].isNamed, true)) return RANGE_FOUND;
  const BoundsParm* bounds = nullptr;
  if (const int result = findBounds(name, bounds); result != RANGE_FOUND) return result;
  memory_ += memoryOf(name, *bounds);
  if (memory_ > MAX_REPLY_MEMORY) return INTERNAL_ERROR;
  ranges_.push_back({name, bounds});
  return RANGE_FOUND;
}

const std::vector<RangeSet::NamedRange>& RangeSet::inNameOrder() {
  sortByName(ranges_);
  return ranges_;
}

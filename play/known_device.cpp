#include "play/known_device.h"

#include <string>
#include <vector>

#include "database/index_values.h"

namespace {

bool isTooLarge(const std::vector<ParmEntry*>& parms) {
  uint64_t room = MAX_KNOWN_INSTANCES;
  for (const ParmEntry* entry : parms) {
    const uint64_t count = countInstances(entry->parm);
    if (count > room) return true;
    room -= count;
  }
  return false;
}

// Of more values than there may be instances, the parameters have none: another of their indices
// has no values.
const std::vector<std::string>& listedValues(IndexEntry& index) {
  static const std::vector<std::string> NONE;
  return countIndexValues(*index.index) > MAX_KNOWN_INSTANCES ? NONE : indexValues(index);
}

}  // namespace

std::optional<KnownDevice> knownDevice(Database& database) {
  const std::vector<ParmEntry*> parms = database.parmsInNameOrder();
  if (isTooLarge(parms)) return {};
  KnownDevice device;
  for (const ParmEntry* entry : parms) {
    const std::string& name = entry->parm.name();
    KnownDevice::Names& indices = device.parms[name];
    for (IndexEntry* index : entry->indices->own) {
      const std::string& indexName = index->index->name();
      indices.push_back(indexName);
      if (!device.indices.contains(indexName)) device.indices[indexName] = listedValues(*index);
      if (!index->isShared) device.variedIndices.insert(indexName);
    }
    if (entry->parm.translations().contains("0")) device.replacingZero.insert(name);
  }
  return device;
}

#include "play/known_device.h"

#include <string>

#include "database/index_values.h"

KnownDevice knownDevice(Database& database) {
  KnownDevice device;
  for (const ParmEntry* entry : database.parmsInNameOrder()) {
    const std::string& name = entry->parm.name();
    KnownDevice::Names& indices = device.parms[name];
    for (IndexEntry* index : entry->indices->own) {
      const std::string& indexName = index->index->name();
      indices.push_back(indexName);
      if (!device.indices.contains(indexName)) device.indices[indexName] = indexValues(*index);
      if (!index->isShared) device.variedIndices.insert(indexName);
    }
    if (entry->parm.translations().contains("0")) device.replacingZero.insert(name);
  }
  return device;
}

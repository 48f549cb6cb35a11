// Instances: parameters with index values, as the fuzz targets keep account of them.
#pragma once

#include <map>
#include <string>

#include "database/database.h"
#include "sw/parm/index_tuple.h"

struct Instance {
  ParmEntry* parm;
  IndexTuple indices;
};

/// Instances by their full names.
using Instances = std::map<std::string, Instance>;

/// Adds the instance to `instances`, if it is not among them.
void addInstance(Instances& instances, ParmEntry& parm, const IndexTuple& indices);

/// Adds every instance that the base bounds of the parameter's indices name.
void addAllInstances(Instances& instances, Database& database, ParmEntry& parm);

/// What the parameter holds.
const std::string& committedText(const Instance& instance);

// Instances: parameters with index values, as the fuzz targets keep account of them.
#pragma once

#include <map>
#include <string>

#include "database/database.h"
#include "database/dependencies.h"
#include "deflang/expression/variables.h"
#include "sw/parm/index_tuple.h"

/// Instances by their full names.
using Instances = std::map<std::string, Instance>;

/// Adds the instance to `instances`, if it is not among them.
void addInstance(Instances& instances, ParmEntry& parm, const IndexTuple& indices);

/// Adds every instance that the base bounds of the parameter's indices name.
void addAllInstances(Instances& instances, Database& database, ParmEntry& parm);

/// What the parameter holds.
const std::string& committedText(const Instance& instance);

/// The committed situation of an instance, its index values bound.
Situation committedSituation(const Instance& instance);

/// Whether the bounds of the instance's parameter take its value in the committed situation.
bool isWithinBounds(const Instance& instance);

/// Whether the parameter, asked again in the committed situation, leaves its value alone: the value
/// is within its bounds and is not corrected, or it would not be written.
bool isSettled(const Instance& instance);

/// The sources of all names that decide about a parameter: its own and those of its indices.
VariableSources allSources(const ParmEntry& parm);

/// Whether a parameter refers to one on its own level: to itself, or to one that refers back.
bool refersToOwnLevel(const ParmEntry& parm);

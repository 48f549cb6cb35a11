// One parameter or index of the page.
#pragma once

#include <string>

#include "doc/model.h"

/// Adds the card of a parameter: what it is, its values, conditions and neighbours. Its heading has
/// the level `heading`, from 1 to 6.
void appendParameter(std::string& html, const DocModel& model, const DocParameter& parameter,
                     int heading);
/// Adds the card of an index, with a heading of level 3.
void appendIndex(std::string& html, const DocModel& model, const DocIndex& index);

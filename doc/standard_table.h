// Standard tables: what the parameters that follow a video standard are under each that may be
// selected.
//
// The engine works it out: the device is brought up, the selector set to one standard after the
// other, and everything that follows it reset.
#pragma once

#include <string>
#include <vector>

#include "doc/model.h"
#include "play/device.h"

/// So many instances of a parameter are looked at; what has more is shown by the first.
constexpr size_t MANY_INSTANCES = 64;

/// A cell has so many spans and texts of a range at most, and so many characters of a value.
constexpr size_t MANY_ITEMS = 30;
constexpr size_t MANY_CHARACTERS = 100;

/// A device that may have more instances than these is not brought up.
constexpr size_t MANY_TO_BRING_UP = 50000;

/// The standards of each parameter of `model` that selects some. A selector is tried with the names
/// of the catalogue and with the texts of its own ranges; those that it does not hold then are left
/// out. A parameter is a row where it names a figure of the standard, or where it follows one that
/// does and is not the same under all standards. `device` has just been started on the same text.
/// Empty where it may have more than MANY_TO_BRING_UP instances.
std::vector<DocStandards> standardsOf(const DocModel& model, Device& device);

// Constant choices: the values that the command line gives to constants.
#pragma once

#include <string>
#include <string_view>

#include "check/text/variant.h"

/// More variants than this are refused.
constexpr size_t MAX_VARIANTS = 4096;

/// Adds "NAME=VALUE[,VALUE...]". Returns what is wrong with it, or an empty text.
std::string addConstantChoice(std::string_view definition, ConstantChoices& choices);

/// Adds each line of `text`, which `name` is the file of; lines that are blank or begin with "#"
/// are passed over, as is white space around what a line says. Returns what is wrong with one, with
/// its place, or an empty text.
std::string addConstantChoices(std::string_view name, std::string_view text,
                               ConstantChoices& choices);

/// Whether there are more than MAX_VARIANTS: what to say of that, or an empty text.
std::string tooManyVariants(const ConstantChoices& choices);

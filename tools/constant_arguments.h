// The option -D of the command lines of the tools.
#pragma once

#include <argp.h>

#include <string>
#include <utility>

#include "check/text/variant.h"

/// The name and the value of "NAME=VALUE", which -D has behind it. Refuses anything else.
std::pair<std::string, std::string> takeConstant(const std::string& argument,
                                                 const argp_state* state);
/// Refuses `argument`, in which the constant `name` is given once more.
void refuseSecond(const std::string& argument, const std::string& name, const argp_state* state);

/// Adds the values of "NAME=VALUE,VALUE", or of the file of "@FILE", to `choices`. Refuses what is
/// wrong.
void takeChoices(const std::string& argument, ConstantChoices& choices, const argp_state* state);

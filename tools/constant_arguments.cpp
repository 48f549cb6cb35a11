#include "tools/constant_arguments.h"

#include <cstring>

#include "check/constant_choices.h"
#include "tools/common_arguments.h"
#include "tools/input_file.h"

std::pair<std::string, std::string> takeConstant(const std::string& argument,
                                                 const argp_state* state) {
  const size_t sign = argument.find('=');
  if (sign == std::string::npos) {
    refuse(state, "-D " + argument + ": a value is missing; write NAME=VALUE");
  }
  if (sign == 0) refuse(state, "-D " + argument + ": a name is missing; write NAME=VALUE");
  return {argument.substr(0, sign), argument.substr(sign + 1)};
}

void refuseSecond(const std::string& argument, const std::string& name, const argp_state* state) {
  refuse(state, "-D " + argument + ": the constant \"" + name + "\" is given twice");
}

void takeChoices(const std::string& argument, ConstantChoices& choices, const argp_state* state) {
  if (!argument.starts_with('@')) {
    const std::string wrong = addConstantChoice(argument, choices);
    if (!wrong.empty()) refuse(state, "-D " + argument + ": " + wrong);
    return;
  }
  const std::string name = argument.substr(1);
  std::string text;
  const int error = readInputFile(name.c_str(), text);
  if (error != 0) refuse(state, "cannot read " + name + ": " + std::strerror(error));
  const std::string wrong = addConstantChoices(name, text, choices);
  if (!wrong.empty()) refuse(state, wrong);
}

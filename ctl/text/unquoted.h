// Lines that were written by quotedAssignment(), read again.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "ctl/service/answers.h"

/// The name and the value of a line, without its newline; nullopt where it is no such line, or what
/// it says is not valid UTF-8 without NUL bytes, as the bus wants it. `fault` then says for people
/// what is wrong.
std::optional<Assignment> unquotedAssignment(std::string_view line, std::string_view& fault);

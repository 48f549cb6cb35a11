// What the command lines of the tools have in common: refusals, help and version.
#pragma once

#include <argp.h>

#include <span>
#include <string>
#include <string_view>

/// The key of --usage, beside those of the tool's own long options, which count from 256.
constexpr int OPTION_USAGE = 1000;

/// Ends the process with status 2 and a message on standard error.
void refuse(const argp_state* state, const std::string& message);
/// Ends the process after an answer on standard output: with status 0, or 2 where the output cannot
/// be written.
[[noreturn]] void endAnswered();
/// Answers --help, --usage and --version, and ends the process; to be called with each key that is
/// none of the tool's own. Returns ARGP_ERR_UNKNOWN for any other key.
error_t takeCommonOption(int key, const argp_state* state);

/// To be called at ARGP_KEY_INIT: refuses the first long option that is none of `options`, which
/// end with an empty one. argp itself only says that it does not know an option. The one-letter
/// options in `withValue` have their value in the next argument.
void refuseUnknownOptions(std::span<const argp_option> options, std::string_view withValue,
                          const argp_state* state);

/// The place of `word` in `words`; refuses another word with `sentence`, which says what is right.
size_t placeAmong(std::span<const std::string_view> words, std::string_view word,
                  const std::string& sentence, const argp_state* state);

// The frame of argp: the library is not made for exceptions, so none goes through it.
#pragma once

#include <argp.h>

#include <cerrno>
#include <new>

/// The parser function for an argp: `take` with its std::bad_alloc held back.
template <error_t (*take)(int key, char* argument, argp_state* state)>
error_t takeWithoutExceptions(int key, char* argument, argp_state* state) {
  try {
    return take(key, argument, state);
  } catch (const std::bad_alloc&) {
    return ENOMEM;
  }
}

/// Parses a command line with such a function, into `input`; `flags` are argp_parse()'s. Raises
/// std::bad_alloc; for a fault of the command line argp ends the process itself.
inline void parseArguments(const argp& parser, int argc, char** argv, unsigned flags, void* input) {
  if (argp_parse(&parser, argc, argv, flags, nullptr, input) != 0) throw std::bad_alloc();
}

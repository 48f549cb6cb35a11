#include "tools/common_arguments.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/nearest_word.h"
#include "startup/version.h"

namespace {

bool isNamed(const argp_option& option) {
  return option.name != nullptr && (option.flags & OPTION_DOC) == 0;
}

// The start of a long option is enough where it is the start of one only.
bool isLongOption(std::span<const argp_option> options, std::string_view name) {
  return std::ranges::any_of(options, [name](const argp_option& option) {
    return isNamed(option) && std::string_view(option.name).starts_with(name);
  });
}

// What a refusal proposes, with the signs before the word.
std::string proposal(const NearestWord& nearest, const char* signs) {
  if (!nearest.found()) return {};
  return std::string("; did you mean \"") + signs + std::string(*nearest.found()) + "\"?";
}

void refuseUnknownOption(std::span<const argp_option> options, std::string_view argument,
                         const argp_state* state) {
  const std::string_view name = argument.substr(2, argument.find('=') - 2);
  if (isLongOption(options, name)) return;
  NearestWord nearest(name);
  for (const argp_option& option : options) {
    if (isNamed(option)) nearest.offer(option.name);
  }
  const std::string proposed = proposal(nearest, "--");
  refuse(state, "there is no option \"--" + std::string(name) + "\"" +
                    (proposed.empty() ? "; --help lists them" : proposed));
}

// Prints help, by the flags of argp_state_help(). Where argp ends the process itself, it does so
// with status 0 whatever became of the output.
[[noreturn]] void giveHelp(const argp_state* state, unsigned int what) {
  argp_state_help(state, stdout, what);
  endAnswered();
}

}  // namespace

void refuse(const argp_state* state, const std::string& message) {
  argp_error(state, "%s", message.c_str());
}

void endAnswered() {
  if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "%s: cannot write: %s\n", program_invocation_short_name,
                 std::strerror(errno));
    std::exit(2);
  }
  std::exit(0);
}

error_t takeCommonOption(int key, const argp_state* state) {
  switch (key) {
    case '?':
      giveHelp(state, ARGP_HELP_STD_HELP & ~ARGP_HELP_EXIT_OK);
    case OPTION_USAGE:
      giveHelp(state, ARGP_HELP_USAGE);
    case 'V':
      std::puts(VERSION_TEXT);
      endAnswered();
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

void refuseUnknownOptions(std::span<const argp_option> options, std::string_view withValue,
                          const argp_state* state) {
  for (int i = 1; i < state->argc; ++i) {
    const std::string_view argument = state->argv[i];
    const std::string_view before = state->argv[i - 1];
    if (argument == "--") return;
    const bool isValue = before.size() == 2 && before[0] == '-' &&
                         withValue.find(before[1]) != std::string_view::npos;
    if (!isValue && argument.starts_with("--")) refuseUnknownOption(options, argument, state);
  }
}

size_t placeAmong(std::span<const std::string_view> words, std::string_view word,
                  const std::string& sentence, const argp_state* state) {
  const auto found = std::ranges::find(words, word);
  if (found == words.end()) {
    NearestWord nearest(word);
    nearest.offer(words);
    refuse(state, sentence + ", not \"" + std::string(word) + "\"" + proposal(nearest, ""));
  }
  return static_cast<size_t>(found - words.begin());
}

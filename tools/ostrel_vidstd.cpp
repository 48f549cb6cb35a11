// ostrel-vidstd: lists the names of the video standards, or describes some of them.

#include <argp.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <span>
#include <string_view>

#include "startup/version.h"
#include "vid_std.h"

// Found by argp under this name.
const char* argp_program_version = VERSION_TEXT;

namespace {

struct Arguments {
  std::span<char*> names;
};

error_t takeArgument(int key, char* /*argument*/, argp_state* state) {
  Arguments& arguments = *static_cast<Arguments*>(state->input);
  if (key != ARGP_KEY_ARGS) return ARGP_ERR_UNKNOWN;
  arguments.names = std::span(state->argv, static_cast<size_t>(state->argc))
                        .subspan(static_cast<size_t>(state->next));
  return 0;
}

// Ends the process after --help, --usage and --version, and for an unknown option.
Arguments parseArguments(int argc, char** argv) {
  Arguments arguments;
  const argp parser = {nullptr,
                       takeArgument,
                       "[NAME...]",
                       "ostrel-vidstd -- List the video standards that ostrel knows, or describe "
                       "those of the NAMEs",
                       nullptr,
                       nullptr,
                       nullptr};
  argp_parse(&parser, argc, argv, 0, nullptr, &arguments);
  return arguments;
}

// Some names stand in several rows; they are listed once, where they stand first.
void listNames() {
  std::set<std::string_view> listed;
  for (const vidStd_t& standard : vidStds()) {
    if (listed.insert(standard.name).second) std::printf("%s\n", standard.name);
  }
}

// Describes every row of exactly that name, so that each row of the catalogue can be seen: by the
// prefixes that definitions go by, most segmented-frame standards could not. Descriptions after
// the first are set off by an empty line. Returns 0, or 1 when there is no such name.
int describe(std::string_view name, bool& first) {
  int result = 1;
  for (const vidStd_t& standard : vidStds()) {
    if (standard.name != name) continue;
    if (!first) std::printf("\n");
    first = false;
    describeVidStd(standard);
    result = 0;
  }
  return result;
}

}  // namespace

int main(int argc, char* argv[]) {
  const Arguments arguments = parseArguments(argc, argv);
  initVidStdTables();
  int status = 0;
  if (arguments.names.empty()) listNames();
  bool first = true;
  for (const char* const name : arguments.names) {
    if (describe(name, first) != 0) {
      std::fprintf(stderr,
                   "ostrel-vidstd: there is no video standard \"%s\"; without arguments, all "
                   "names are listed\n",
                   name);
      status = 1;
    }
  }
  if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "ostrel-vidstd: cannot write: %s\n", std::strerror(errno));
    status = 1;
  }
  return status;
}

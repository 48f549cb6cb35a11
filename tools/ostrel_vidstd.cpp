// ostrel-vidstd: lists the names of the video standards, describes some of them, or tells what
// values select.

#include <argp.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <span>
#include <string_view>

#include "startup/version.h"
#include "vid_std.h"

// argp finds it under this name.
const char* argp_program_version = VERSION_TEXT;

namespace {

struct Arguments {
  bool select = false;  ///< the names are values, and what they select is asked
  std::span<char*> names;
};

const argp_option OPTIONS[] = {
    {"select", 's', nullptr, 0, "Tell what each NAME selects as the value of a parameter", 0}, {}};

error_t takeArgument(int key, char* /*argument*/, argp_state* state) {
  Arguments& arguments = *static_cast<Arguments*>(state->input);
  switch (key) {
    case 's':
      arguments.select = true;
      return 0;
    case ARGP_KEY_ARGS:
      arguments.names = std::span(state->argv, static_cast<size_t>(state->argc))
                            .subspan(static_cast<size_t>(state->next));
      return 0;
    case ARGP_KEY_END:
      if (arguments.select && arguments.names.empty()) argp_usage(state);
      return 0;
    default:
      return ARGP_ERR_UNKNOWN;
  }
}

// Reads the arguments. Ends the process after --help, --usage and --version, for an unknown option,
// and for --select without a name.
Arguments parseArguments(int argc, char** argv) {
  Arguments arguments;
  const argp parser = {OPTIONS,
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

// Some names are in several rows; they are listed once, where they come first.
void listNames() {
  std::set<std::string_view> listed;
  for (const vidStd_t& standard : vidStds()) {
    if (listed.insert(standard.name).second) std::printf("%s\n", standard.name);
  }
}

bool selectsItself(const vidStd_t& row) { return selectVid(row.name).standard == &row; }
bool selectsItself(const vidFormat_t& row) { return selectVid(row.name).format == &row; }

// Writes the names that begin with `start` and select their own row: `lead` before the first, a
// comma before each other. Returns what has to be written before a further name.
template <typename Row>
const char* writeLonger(std::span<const Row> rows, std::string_view start, const char* lead,
                        std::FILE* out) {
  for (const Row& row : rows) {
    if (!std::string_view(row.name).starts_with(start) || !selectsItself(row)) continue;
    std::fprintf(out, "%s%s", lead, row.name);
    lead = ", ";
  }
  return lead;
}

// Writes which row `value` selects, or that it selects no row and which names begin with it.
// Returns 0, or 1 when it selects no row.
int tellSelected(const char* value, std::FILE* out) {
  const vidSelection_t selected = selectVid(value);
  if (selected.standard != nullptr) {
    std::fprintf(out, "\"%s\" selects the standard %s\n", value, selected.standard->name);
    return 0;
  }
  if (selected.format != nullptr) {
    std::fprintf(out, "\"%s\" selects the picture format %s\n", value, selected.format->name);
    return 0;
  }
  std::fprintf(out, "\"%s\" selects nothing", value);
  if (*value != '\0') {
    const char* const lead = writeLonger(vidStds(), value, "; names that begin with it: ", out);
    writeLonger(vidFormats(), value, lead, out);
  }
  std::fprintf(out, "\n");
  return 1;
}

// Describes every standard of exactly this name. So each row can be seen; by the rule for values,
// where a name that begins the value selects, most segmented-frame standards could not. An empty
// line comes before each description but the `first`. Returns the first row described, or null.
const vidStd_t* describe(std::string_view name, bool& first) {
  const vidStd_t* found = nullptr;
  for (const vidStd_t& standard : vidStds()) {
    if (standard.name != name) continue;
    if (!first) std::printf("\n");
    first = false;
    describeVidStd(standard);
    if (found == nullptr) found = &standard;
  }
  return found;
}

// Describes the standards of that name. Whoever looks up a name may be about to write it into a
// definition text, so this also says where the name selects another row there. Returns 0, or 1 when
// there is no such name.
int answer(const char* name, bool& first) {
  const vidStd_t* const described = describe(name, first);
  if (described == nullptr) {
    std::fprintf(stderr,
                 "ostrel-vidstd: there is no video standard \"%s\"; without arguments, all "
                 "names are listed\n",
                 name);
  }
  if (described == nullptr || !selectsItself(*described)) {
    std::fprintf(stderr, "ostrel-vidstd: as a value, ");
    static_cast<void>(tellSelected(name, stderr));
  }
  return described == nullptr ? 1 : 0;
}

}  // namespace

int main(int argc, char* argv[]) {
  const Arguments arguments = parseArguments(argc, argv);
  initVidStdTables();
  int status = 0;
  if (arguments.names.empty()) listNames();
  bool first = true;
  for (const char* const name : arguments.names) {
    const int result = arguments.select ? tellSelected(name, stdout) : answer(name, first);
    if (result != 0) status = 1;
  }
  if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "ostrel-vidstd: cannot write: %s\n", std::strerror(errno));
    status = 1;
  }
  return status;
}

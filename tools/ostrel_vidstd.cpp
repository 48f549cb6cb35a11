// ostrel-vidstd: lists the names of the video standards, or describes some of them.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <set>
#include <string_view>

#include "vid_std.h"

namespace {

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
  initVidStdTables();
  int status = 0;
  if (argc < 2) listNames();
  bool first = true;
  for (int i = 1; i < argc; i++) {
    if (describe(argv[i], first) != 0) {
      std::fprintf(stderr,
                   "ostrel-vidstd: there is no video standard \"%s\"; without arguments, all "
                   "names are listed\n",
                   argv[i]);
      status = 1;
    }
  }
  if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
    std::fprintf(stderr, "ostrel-vidstd: cannot write: %s\n", std::strerror(errno));
    status = 1;
  }
  return status;
}

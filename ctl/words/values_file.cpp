#include "ctl/words/values_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/text/unquoted.h"

namespace {

[[noreturn]] void refuseReading(const std::string& path) {
  endWith(STATUS_USAGE, "cannot read " + quotedWord(path) + ": " + std::strerror(errno));
}

std::string readAll(const std::string& path) {
  const int descriptor = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) refuseReading(path);
  std::string text;
  std::array<char, 65536> part;
  ssize_t length = 0;
  while ((length = read(descriptor, part.data(), part.size())) != 0) {
    if (length > 0) {
      text.append(part.data(), static_cast<size_t>(length));
    } else if (errno != EINTR) {
      refuseReading(path);  // a directory, for example
    }
  }
  close(descriptor);
  return text;
}

[[noreturn]] void refuseLine(const std::string& path, size_t line, const std::string& why) {
  endWith(STATUS_USAGE, quotedWord(path) + ", line " + std::to_string(line) + ": " + why);
}

[[noreturn]] void refuseFile(const std::string& path) {
  endWith(STATUS_REFUSED, "cannot write " + quotedWord(path) + ": " + std::strerror(errno));
}

bool writeAll(int descriptor, std::string_view text) {
  while (!text.empty()) {
    const ssize_t written = write(descriptor, text.data(), text.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    text.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

// The file behind links, so that these stay.
std::string behindLinks(const std::string& path) {
  char* const real = realpath(path.c_str(), nullptr);
  if (real == nullptr) return path;
  std::string resolved = real;
  std::free(real);
  return resolved;
}

mode_t modeOf(const std::string& path) {
  struct stat status = {};
  if (stat(path.c_str(), &status) == 0) return status.st_mode & 07777;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666 & ~mask;
}

// What is written to a directory lasts once the directory is written, too.
void syncDirectoryOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const int descriptor = open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

void replaceFile(const std::string& path, std::string_view text) {
  std::string temporary = path + ".XXXXXX";
  const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
  if (descriptor < 0) refuseFile(path);
  const bool isWritten =
      writeAll(descriptor, text) && fchmod(descriptor, modeOf(path)) == 0 && fsync(descriptor) == 0;
  const int why = errno;
  const bool isClosed = close(descriptor) == 0;
  if (!isWritten || !isClosed || std::rename(temporary.c_str(), path.c_str()) != 0) {
    if (!isWritten) errno = why;
    const int last = errno;
    unlink(temporary.c_str());
    errno = last;
    refuseFile(path);
  }
  syncDirectoryOf(path);
}

// A device, a pipe or the like cannot be replaced.
bool isSpecial(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

void writeSpecial(const std::string& path, std::string_view text) {
  const int descriptor =
      path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0 || !writeAll(descriptor, text)) refuseFile(path);
  close(descriptor);
}

}  // namespace

std::vector<Assignment> readValuesFile(const std::string& path) {
  const std::string text = readAll(path);
  std::vector<Assignment> assignments;
  std::set<std::string> names;
  size_t number = 0;
  for (std::string_view rest = text; !rest.empty();) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    ++number;
    if (line.empty()) continue;
    std::optional<Assignment> assignment = unquotedAssignment(line);
    if (!assignment) refuseLine(path, number, "this is not NAME=VALUE");
    if (!names.insert(assignment->name).second) {
      refuseLine(path, number, quotedWord(assignment->name) + " is given two values");
    }
    assignments.push_back(*std::move(assignment));
  }
  return assignments;
}

void writeValuesFile(const std::string& path, const std::vector<Assignment>& assignments) {
  std::string text;
  for (const Assignment& assignment : assignments) {
    text += quotedAssignment(assignment.name, assignment.value) + "\n";
  }
  if (path == "-" || isSpecial(path)) return writeSpecial(path, text);
  replaceFile(behindLinks(path), text);
}

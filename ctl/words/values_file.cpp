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

std::string lineError(const std::string& path, size_t line, const std::string& why) {
  return quotedWord(path) + ", line " + std::to_string(line) + ": " + why;
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

// Returns whether it is done; otherwise errno says why not.
bool replaceFile(const std::string& path, std::string_view text) {
  std::string temporary = path + ".XXXXXX";
  const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool isWritten =
      writeAll(descriptor, text) && fchmod(descriptor, modeOf(path)) == 0 && fsync(descriptor) == 0;
  const int why = errno;
  const bool isClosed = close(descriptor) == 0;
  if (!isWritten || !isClosed || std::rename(temporary.c_str(), path.c_str()) != 0) {
    if (!isWritten) errno = why;
    const int last = errno;
    unlink(temporary.c_str());
    errno = last;
    return false;
  }
  syncDirectoryOf(path);
  return true;
}

// In bytes. More than any device has, so that the end of a file that has none is seen.
constexpr size_t MOST_READ = size_t{128} << 20U;

constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";

// A device, a pipe or the like cannot be replaced.
bool isSpecial(const std::string& path) {
  struct stat status = {};
  return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode);
}

bool writeSpecial(const std::string& path, std::string_view text) {
  const int descriptor =
      path == "-" ? dup(STDOUT_FILENO) : open(path.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool isWritten = writeAll(descriptor, text);
  close(descriptor);
  return isWritten;
}

}  // namespace

std::optional<std::string> tryReadFile(const std::string& path, std::string& error) {
  const int descriptor = path == "-" ? dup(STDIN_FILENO) : open(path.c_str(), O_RDONLY | O_CLOEXEC);
  std::string text;
  std::array<char, 65536> part;
  ssize_t length = descriptor < 0 ? -1 : 1;
  while (descriptor >= 0 && length != 0) {
    length = read(descriptor, part.data(), part.size());
    if (length > 0) text.append(part.data(), static_cast<size_t>(length));
    if (text.size() > MOST_READ) errno = EFBIG;
    if (text.size() > MOST_READ || (length < 0 && errno != EINTR)) break;  // a device; a directory
  }
  if (length != 0) error = "cannot read " + quotedWord(path) + ": " + std::strerror(errno);
  if (descriptor >= 0) close(descriptor);
  return length == 0 ? std::optional(std::move(text)) : std::nullopt;
}

std::optional<std::vector<Assignment>> tryReadValuesFile(const std::string& path,
                                                         std::string& error) {
  const std::optional<std::string> text = tryReadFile(path, error);
  if (!text) return std::nullopt;
  std::vector<Assignment> assignments;
  std::set<std::string> names;
  size_t number = 0;
  std::string_view rest = *text;
  // Some editors put a byte order mark before the first name.
  if (rest.starts_with(BYTE_ORDER_MARK)) rest.remove_prefix(BYTE_ORDER_MARK.size());
  while (!rest.empty()) {
    const std::string_view line = rest.substr(0, rest.find('\n'));
    rest.remove_prefix(std::min(rest.size(), line.size() + 1));
    ++number;
    if (line.empty()) continue;
    std::string_view fault;
    std::optional<Assignment> assignment = unquotedAssignment(line, fault);
    if (!assignment) {
      error = lineError(path, number, std::string(fault));
      return std::nullopt;
    }
    if (!names.insert(assignment->name).second) {
      error = lineError(path, number, quotedWord(assignment->name) + " is given two values");
      return std::nullopt;
    }
    assignments.push_back(*std::move(assignment));
  }
  return assignments;
}

std::vector<Assignment> readValuesFile(const std::string& path) {
  std::string error;
  std::optional<std::vector<Assignment>> assignments = tryReadValuesFile(path, error);
  if (!assignments) endWith(STATUS_USAGE, error);
  return *std::move(assignments);
}

std::string valuesText(const std::vector<Assignment>& assignments) {
  std::string text;
  for (const Assignment& assignment : assignments) {
    text += quotedAssignment(assignment.name, assignment.value) + "\n";
  }
  return text;
}

bool tryWriteFile(const std::string& path, std::string_view text) {
  if (path == "-" || isSpecial(path)) return writeSpecial(path, text);
  return replaceFile(behindLinks(path), text);
}

void writeValuesFile(const std::string& path, const std::vector<Assignment>& assignments) {
  if (tryWriteFile(path, valuesText(assignments))) return;
  endWith(STATUS_REFUSED, "cannot write " + quotedWord(path) + ": " + std::strerror(errno));
}

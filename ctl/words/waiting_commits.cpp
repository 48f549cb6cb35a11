#include "ctl/words/waiting_commits.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"

namespace {

constexpr const char* DIRECTORY = "/ostrelctl";
// Behind the lines of a file, once its process has decided.
constexpr std::string_view CONFIRMED = "confirmed\n";

// How long a process may take to notice that it is confirmed.
constexpr int PATIENCE = 5000;  // in ms
constexpr int STEP = 5;

std::string directory() {
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  return runtime == nullptr || *runtime == '\0' ? "" : std::string(runtime) + DIRECTORY;
}

// The name of a service on a bus, in one line.
std::string addressee(Service& service) {
  const gchar* const guid = g_dbus_connection_get_guid(&service.bus().connection());
  return service.bus().name() + " " + (guid == nullptr ? "" : guid);
}

std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> part;
  lseek(descriptor, 0, SEEK_SET);
  for (ssize_t length = 0; (length = read(descriptor, part.data(), part.size())) > 0;) {
    text.append(part.data(), static_cast<size_t>(length));
  }
  return text;
}

// A file of a process, open for as long as it is looked at.
class MarkFile {
 public:
  explicit MarkFile(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW)) {}
  ~MarkFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }
  MarkFile(const MarkFile&) = delete;
  MarkFile& operator=(const MarkFile&) = delete;

  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  /// Whether its process is alive.
  [[nodiscard]] bool isHeld() const {
    return flock(descriptor_, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  }
  [[nodiscard]] std::string text() const { return readAll(descriptor_); }

 private:
  int descriptor_;
};

std::string pathOf(pid_t process) { return directory() + "/" + std::to_string(process); }

std::optional<pid_t> processOf(const std::string& name) {
  pid_t process = 0;
  const char* const end = name.data() + name.size();
  const auto [rest, error] = std::from_chars(name.data(), end, process);
  return error == std::errc() && rest == end && process > 0 ? std::optional(process) : std::nullopt;
}

}  // namespace

std::vector<WaitingCommit> waitingCommits(Service& service) {
  std::vector<WaitingCommit> all;
  const std::string start = addressee(service) + "\n";
  std::error_code error;
  for (const auto& entry : std::filesystem::directory_iterator(directory(), error)) {
    const std::optional<pid_t> process = processOf(entry.path().filename());
    if (!process) continue;
    const MarkFile file(entry.path());
    if (!file.isOpen()) continue;
    if (!file.isHeld()) {
      unlink(entry.path().c_str());  // of a process that was killed
      continue;
    }
    const std::string text = file.text();
    if (!text.starts_with(start)) continue;
    all.push_back(
        {*process, text.substr(start.size(), text.find('\n', start.size()) - start.size())});
  }
  std::ranges::sort(all, {}, &WaitingCommit::process);
  return all;
}

bool confirmWaiting(const WaitingCommit& commit) {
  const MarkFile file(pathOf(commit.process));
  if (!file.isOpen() || !file.isHeld()) return false;
  if (kill(commit.process, SIGUSR1) != 0) return false;
  for (int waited = 0; waited < PATIENCE && file.isHeld(); waited += STEP) usleep(STEP * 1000);
  return file.text().ends_with(CONFIRMED);
}

void requireWaitingDirectory() {
  const std::string path = directory();
  if (path.empty()) {
    endWith(STATUS_REFUSED,
            "there is no place to note that a commit waits: XDG_RUNTIME_DIR is not set");
  }
  if ((mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) || access(path.c_str(), W_OK) != 0) {
    endWith(STATUS_REFUSED, "there is no place to note that a commit waits: " + quotedWord(path) +
                                ": " + std::strerror(errno));
  }
}

WaitingMark::WaitingMark(Service& service, const std::string& what) : path_(pathOf(getpid())) {
  // It has its name once its lock is held, so that nobody takes it for one of a dead process.
  const std::string unfinished = path_ + ".new";
  descriptor_ = open(unfinished.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW, 0600);
  const std::string text = addressee(service) + "\n" + what + "\n";
  const bool isMade =
      descriptor_ >= 0 && flock(descriptor_, LOCK_EX | LOCK_NB) == 0 &&
      write(descriptor_, text.data(), text.size()) == static_cast<ssize_t>(text.size()) &&
      rename(unfinished.c_str(), path_.c_str()) == 0;
  if (!isMade) {
    complain("ostrelctl confirm will not find it: " + quotedWord(path_) + ": " +
             std::strerror(errno));
  }
}

void WaitingMark::decide(bool isConfirmed) {
  if (descriptor_ < 0) return;
  if (isConfirmed) {
    // Who reads it says only more of what is decided already.
    static_cast<void>(!write(descriptor_, CONFIRMED.data(), CONFIRMED.size()));
  }
  unlink(path_.c_str());
  close(descriptor_);
  descriptor_ = -1;
}

WaitingMark::~WaitingMark() { decide(false); }

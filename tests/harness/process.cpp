#include "tests/harness/process.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

int orDie(int result, const char* what) {
  if (result < 0) {
    perror(what);
    abort();
  }
  return result;
}

int newFile(std::string_view contents = {}) {
  const int file = orDie(memfd_create("stream", MFD_CLOEXEC), "memfd_create");
  while (!contents.empty()) {
    contents.remove_prefix(static_cast<size_t>(
        orDie(static_cast<int>(::write(file, contents.data(), contents.size())), "write")));
  }
  orDie(static_cast<int>(lseek(file, 0, SEEK_SET)), "lseek");
  return file;
}

std::string contentsOfFile(int file) {
  std::string contents;
  std::array<char, 65536> buffer{};
  ssize_t count = 0;
  while ((count = pread(file, buffer.data(), buffer.size(), static_cast<off_t>(contents.size()))) >
         0) {
    contents.append(buffer.data(), static_cast<size_t>(count));
  }
  return contents;
}

std::string contentsOfPipe(int pipeEnd) {
  std::string contents;
  std::array<char, 65536> buffer{};
  ssize_t count = 0;
  while (waitUntilReadable(pipeEnd) && (count = read(pipeEnd, buffer.data(), buffer.size())) > 0) {
    contents.append(buffer.data(), static_cast<size_t>(count));
  }
  return contents;
}

std::vector<char*> pointers(const std::vector<std::string>& texts) {
  std::vector<char*> result;
  result.reserve(texts.size() + 1);
  for (const std::string& text : texts) result.push_back(const_cast<char*>(text.c_str()));
  result.push_back(nullptr);
  return result;
}

std::vector<std::string> environmentWith(const std::map<std::string, std::string>& changes) {
  std::vector<std::string> result;
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string_view text = *entry;
    if (!changes.contains(std::string(text.substr(0, text.find('='))))) result.emplace_back(text);
  }
  for (const auto& [name, value] : changes) {
    if (!value.empty()) result.push_back(std::string(name).append("=").append(value));
  }
  return result;
}

}  // namespace

// A daemon that is run by a checking tool may be slower by far.
const int PATIENCE = getenv("DAEMON_WRAPPER") == nullptr ? 60 : 1800;

bool waitUntilReadable(int descriptor) {
  pollfd waiting = {.fd = descriptor, .events = POLLIN, .revents = 0};
  int result = 0;
  do {
    result = poll(&waiting, 1, PATIENCE * 1000);
  } while (result < 0 && errno == EINTR);
  return result > 0;
}

Process::Process(const Options& options) : outputToPipe_(options.outputToPipe) {
  std::array<int, 2> inputPipe = {-1, -1};
  std::array<int, 2> outputPipe = {-1, -1};
  if (options.inputStaysOpen) {
    orDie(pipe2(inputPipe.data(), O_CLOEXEC), "pipe");
    input_ = inputPipe[1];
  } else {
    inputPipe[0] = newFile(options.input);
  }
  if (outputToPipe_) {
    orDie(pipe2(outputPipe.data(), O_CLOEXEC), "pipe");
    out_ = outputPipe[0];
  } else {
    out_ = newFile();
    outputPipe[1] = out_;
  }
  err_ = newFile();

  // Everything that the child needs is made before the fork; after it, only plain system calls.
  const std::vector<std::string> environment = environmentWith(options.environment);
  std::vector<char*> argumentPointers = pointers(options.command);
  std::vector<char*> environmentPointers = pointers(environment);
  const pid_t parent = getpid();
  pid_ = orDie(fork(), "fork");
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent || dup2(inputPipe[0], STDIN_FILENO) < 0 ||
        dup2(outputPipe[1], STDOUT_FILENO) < 0 || dup2(err_, STDERR_FILENO) < 0) {
      _exit(126);
    }
    execve(argumentPointers[0], argumentPointers.data(), environmentPointers.data());
    _exit(127);
  }
  // By its number: the C library's header of this call is not one for C++ in every version.
  end_ = orDie(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)), "pidfd_open");
  close(inputPipe[0]);
  if (outputToPipe_) close(outputPipe[1]);
  if (options.inputStaysOpen) write(options.input);
}

Process::~Process() {
  if (!reaped_) {
    kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
  }
  for (const int descriptor : {end_, input_, out_, err_}) {
    if (descriptor >= 0) close(descriptor);
  }
}

bool Process::running() const {
  pollfd waiting = {.fd = end_, .events = POLLIN, .revents = 0};
  return !reaped_ && poll(&waiting, 1, 0) == 0;
}

void Process::write(std::string_view text) const {
  ASSERT_EQ(::write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

std::string Process::readLine() const {
  std::string line;
  char next = '\0';
  while (waitUntilReadable(out_) && read(out_, &next, 1) == 1 && next != '\n') line += next;
  return line;
}

Ending Process::waitForEnd() {
  Ending ending;
  if (outputToPipe_) ending.out = contentsOfPipe(out_);
  if (!waitUntilReadable(end_)) {
    ADD_FAILURE() << "the process did not end within " << PATIENCE << " seconds";
    kill(pid_, SIGKILL);
  }
  int status = 0;
  waitpid(pid_, &status, 0);
  reaped_ = true;
  ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
  if (!outputToPipe_) ending.out = contentsOfFile(out_);
  ending.err = contentsOfFile(err_);
  return ending;
}

std::string Process::errorsSoFar() const { return contentsOfFile(err_); }

pid_t childBesides(pid_t known) {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    std::ifstream file(entry.path() / "stat");
    pid_t pid = 0;
    std::string program;
    std::string state;
    pid_t parent = 0;
    if (file >> pid >> program >> state >> parent && parent == getpid() && pid != known) return pid;
  }
  return 0;
}

long workedTicks(pid_t pid) {
  std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
  std::string skipped;
  for (int field = 1; field < 14; ++field) file >> skipped;
  long user = 0;
  long system = 0;
  file >> user >> system;
  return user + system;
}

void waitForWork(pid_t pid) {
  const long before = workedTicks(pid);
  for (int milliseconds = 0; workedTicks(pid) < before + 2; ++milliseconds) {
    ASSERT_LT(milliseconds, PATIENCE * 1000);
    usleep(1000);
  }
}

size_t memoryOf(pid_t pid, std::string_view figure) {
  std::ifstream status("/proc/" + std::to_string(pid) + "/status");
  for (std::string line; std::getline(status, line);) {
    std::istringstream words(line);
    std::string key;
    size_t value = 0;
    if (words >> key >> value && key == figure) return value;
  }
  ADD_FAILURE() << "no figure " << figure;
  return 0;
}

size_t openDescriptors(pid_t pid) {
  const std::filesystem::directory_iterator entries("/proc/" + std::to_string(pid) + "/fd");
  return static_cast<size_t>(std::distance(begin(entries), end(entries)));
}

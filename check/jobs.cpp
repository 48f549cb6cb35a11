#include "check/jobs.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <new>

namespace {

constexpr int STATUS_NO_MEMORY = 3;
constexpr int STATUS_NOT_WRITTEN = 4;

// One process that works for this one. Its results come through a pipe, each after its length.
struct Worker {
  pid_t process = -1;
  int input = -1;  // -1 after its end
  std::string received = {};
};

bool writeAll(int output, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(output, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return false;
    bytes.remove_prefix(static_cast<size_t>(count));
  }
  return true;
}

bool writeResult(int output, const std::string& result) {
  const uint64_t size = result.size();
  char length[sizeof size];
  std::memcpy(length, &size, sizeof size);
  return writeAll(output, {length, sizeof size}) && writeAll(output, result);
}

// What a worker does. Nothing of this process is to be written or ended a second time.
[[noreturn]] void serve(size_t first, size_t step, size_t pieces,
                        const std::function<std::string(size_t)>& work, int output) {
  int status = 0;
  try {
    for (size_t piece = first; piece < pieces && status == 0; piece += step) {
      if (!writeResult(output, work(piece))) status = STATUS_NOT_WRITTEN;
    }
  } catch (const std::bad_alloc&) {
    status = STATUS_NO_MEMORY;
  }
  _exit(status);
}

class Workers {
 public:
  Workers(size_t pieces, size_t count) : pieces_(pieces), workers_(count) {}
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  // Ends those that are left, after a failure.
  ~Workers() {
    for (Worker& worker : workers_) {
      if (worker.input >= 0) close(worker.input);
      if (worker.process < 0) continue;
      static_cast<void>(kill(worker.process, SIGKILL));
      static_cast<void>(waitFor(worker));
    }
  }

  // Each function returns why it failed, else nothing.

  std::string start(const std::function<std::string(size_t)>& work) {
    for (size_t i = 0; i < workers_.size(); ++i) {
      int ends[2];
      if (pipe(ends) != 0) return reason("cannot make a pipe");
      const pid_t process = fork();
      if (process == 0) {
        // Whoever does not read is not written for.
        for (const Worker& other : workers_) {
          if (other.input >= 0) close(other.input);
        }
        close(ends[0]);
        serve(i, workers_.size(), pieces_, work, ends[1]);
      }
      const int error = errno;
      close(ends[1]);
      workers_[i].input = ends[0];
      workers_[i].process = process;
      errno = error;
      if (process < 0) return reason("cannot start a job");
    }
    return {};
  }

  std::string receive() {
    for (;;) {
      std::vector<pollfd> inputs;
      std::vector<Worker*> open;
      for (Worker& worker : workers_) {
        if (worker.input < 0) continue;
        inputs.push_back({worker.input, POLLIN, 0});
        open.push_back(&worker);
      }
      if (inputs.empty()) return {};
      const int ready = poll(inputs.data(), inputs.size(), -1);
      if (ready < 0 && errno != EINTR) return reason("cannot wait");
      for (size_t i = 0; i < inputs.size(); ++i) {
        if (inputs[i].revents == 0) continue;
        std::string failure = receiveFrom(*open[i]);
        if (!failure.empty()) return failure;
      }
    }
  }

  std::string take(std::vector<std::string>& results) {
    std::vector<std::string_view> rests;
    for (const Worker& worker : workers_) rests.emplace_back(worker.received);
    for (size_t piece = 0; piece < pieces_; ++piece) {
      std::string_view& rest = rests[piece % rests.size()];
      uint64_t size = 0;
      if (rest.size() < sizeof size) return "a job has left something out";
      std::memcpy(&size, rest.data(), sizeof size);
      rest.remove_prefix(sizeof size);
      if (rest.size() < size) return "a job has left something out";
      results.emplace_back(rest.substr(0, size));
      rest.remove_prefix(size);
    }
    return {};
  }

 private:
  static std::string reason(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
  }

  static std::string receiveFrom(Worker& worker) {
    char bytes[65536];
    const ssize_t count = read(worker.input, bytes, sizeof bytes);
    if (count < 0) return errno == EINTR ? std::string() : reason("cannot read from a job");
    worker.received.append(bytes, static_cast<size_t>(count));
    if (count > 0) return {};
    close(worker.input);
    worker.input = -1;
    const int status = waitFor(worker);
    if (WIFSIGNALED(status)) return "a job was ended by signal " + std::to_string(WTERMSIG(status));
    if (WEXITSTATUS(status) == STATUS_NO_MEMORY) throw std::bad_alloc();
    if (status != 0) return "a job ended with status " + std::to_string(WEXITSTATUS(status));
    return {};
  }

  static int waitFor(Worker& worker) {
    int status = 0;
    pid_t ended = -1;
    do {
      ended = waitpid(worker.process, &status, 0);
    } while (ended < 0 && errno == EINTR);
    worker.process = -1;
    return status;
  }

  size_t pieces_;
  std::vector<Worker> workers_;
};

}  // namespace

JobResults runJobs(size_t pieces, uint32_t jobs,
                   const std::function<std::string(size_t piece)>& work) {
  JobResults done;
  const size_t count = std::min<size_t>(pieces, jobs);
  if (count <= 1) {
    for (size_t piece = 0; piece < pieces; ++piece) done.results.push_back(work(piece));
    return done;
  }
  Workers workers(pieces, count);
  done.failure = workers.start(work);
  if (done.failure.empty()) done.failure = workers.receive();
  if (done.failure.empty()) done.failure = workers.take(done.results);
  if (!done.failure.empty()) done.results.clear();
  return done;
}

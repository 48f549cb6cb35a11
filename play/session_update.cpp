#include "play/session_update.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "play/session_line.h"

namespace {

// A file that is removed unless it gets its final name.
class NewFile {
 public:
  explicit NewFile(const std::string& name) : name_(name + ".XXXXXX") {
    descriptor_ = mkstemp(name_.data());
  }
  ~NewFile() {
    if (descriptor_ < 0) return;
    // What is wrong with a file that is given up is no news.
    static_cast<void>(close(descriptor_));
    if (!isKept_) static_cast<void>(unlink(name_.c_str()));
  }
  NewFile(const NewFile&) = delete;
  NewFile& operator=(const NewFile&) = delete;

  // Each returns whether it is done; errno tells why not.
  [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
  [[nodiscard]] bool write(std::string_view text) const {
    while (!text.empty()) {
      const ssize_t count = ::write(descriptor_, text.data(), text.size());
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) text.remove_prefix(static_cast<size_t>(count));
    }
    return fsync(descriptor_) == 0;
  }
  [[nodiscard]] bool allow(mode_t mode) const { return fchmod(descriptor_, mode) == 0; }
  [[nodiscard]] bool keepAs(const std::string& name) {
    isKept_ = rename(name_.c_str(), name.c_str()) == 0;
    return isKept_;
  }

 private:
  std::string name_;
  int descriptor_ = -1;
  bool isKept_ = false;
};

constexpr size_t ARROW_BYTES = 2;

// The operation to which those behind `next` are aligned, where it was `before`.
const Operation* alignedTo(const Operation* before, const Operation& next) {
  return next.hasExpectation ? &next : before;
}

struct Free {
  void operator()(char* text) const { free(text); }
};

}  // namespace

void SessionUpdate::played(const PlayedOperation& operation) {
  const SessionPlace& place = operation.operation.place;
  Seen& seen = seen_[{place.file->name, place.begin + place.at}];
  const std::string outcome = operation.outcome.shown();
  if (seen.operation == nullptr) {
    seen.operation = &operation.operation;
    seen.outcome = outcome;
  }
  seen.differs = seen.differs || seen.outcome != outcome;
  seen.isMet = seen.isMet && operation.isAsExpected;
}

bool SessionUpdate::isNew(const Seen& seen) {
  if (seen.differs) return false;
  if (seen.operation->hasExpectation) return !seen.isMet;
  const OperationKind kind = seen.operation->word->kind;
  return !seen.outcome.empty() && kind != OPERATION_UP && kind != OPERATION_WHY;
}

std::vector<UpdatedFile> SessionUpdate::files() const {
  std::vector<UpdatedFile> files;
  size_t copied = 0;  // of the present file's old text
  const std::string* text = nullptr;
  const Operation* before = nullptr;  // with an arrow, to which new ones are aligned
  const auto finish = [&] {
    if (text != nullptr) files.back().text.append(*text, copied);
  };
  for (const auto& [where, seen] : seen_) {
    const Operation* const last = std::exchange(before, alignedTo(before, *seen.operation));
    if (!isNew(seen)) continue;
    if (files.empty() || files.back().name != where.first) {
      finish();
      files.push_back({where.first, {}});
      text = &seen.operation->place.file->text;
      copied = 0;
    }
    const size_t begin = seen.operation->place.begin;
    files.back().text.append(*text, copied, begin - copied);
    const bool isAligned = last != nullptr && last->place.file->name == where.first;
    files.back().text +=
        lineWith(*seen.operation, seen.outcome, isAligned ? last->arrow - ARROW_BYTES : 0);
    copied = begin + lineOf(*seen.operation).size();
  }
  finish();
  return files;
}

size_t SessionUpdate::count() const {
  size_t count = 0;
  for (const auto& [where, seen] : seen_) count += isNew(seen) ? 1 : 0;
  return count;
}

std::vector<const Operation*> SessionUpdate::undecided() const {
  std::vector<const Operation*> operations;
  for (const auto& [where, seen] : seen_) {
    if (!seen.isMet && !isNew(seen)) operations.push_back(seen.operation);
  }
  return operations;
}

int replaceFile(const std::string& name, const std::string& text) {
  // A link stays, and what it leads to is replaced.
  const std::unique_ptr<char, Free> path(realpath(name.c_str(), nullptr));
  struct stat before {};
  if (path == nullptr || stat(path.get(), &before) != 0) return errno;
  NewFile file(path.get());
  const bool isDone = file.isOpen() && file.write(text) && file.allow(before.st_mode & 07777U) &&
                      file.keepAs(path.get());
  return isDone ? 0 : errno;
}

#include "sw/dbus/parameters/history.h"

#include <exception>
#include <utility>

namespace {

// `text` and the NUL that is behind it in memory.
void append(std::string& texts, std::string_view text) {
  texts.append(text.data(), text.size() + 1);
}

}  // namespace

void History::add(uint32_t serial, uint64_t time, std::string_view caller,
                  const std::vector<Change>& changes, const CommitRecord& record) noexcept {
  constexpr size_t NULS = 2;
  size_t length = record.beforeBytes();
  for (const Change& change : changes) {
    fetchAhead(changes, change);
    length += change.name.size() + change.held->value.text().size() + NULS;
    if (length > MOST_BYTES) return;
  }
  try {
    PastCommit commit{serial, time, std::string(caller), {}};
    commit.texts.reserve(length);
    for (const Change& change : changes) {
      append(commit.texts, change.name);
      append(commit.texts, record.before(change));
      append(commit.texts, change.held->value.text());
    }
    if (commit.bytes() > MOST_BYTES) return;
    const size_t bytes = commit.bytes();
    commits_.push_back(std::move(commit));
    bytes_ += bytes;
  } catch (const std::exception&) {
    return;
  }
  while (commits_.size() > MOST_COMMITS || bytes_ > MOST_BYTES) {
    bytes_ -= commits_.front().bytes();
    commits_.pop_front();
  }
}

void forEachChange(
    const PastCommit& commit,
    const std::function<void(const std::string&, const std::string&, const std::string&)>& visit) {
  size_t at = 0;
  const auto next = [&] {
    const size_t end = commit.texts.find('\0', at);
    const size_t begin = std::exchange(at, end + 1);
    return commit.texts.substr(begin, end - begin);
  };
  while (at < commit.texts.size()) {
    const std::string name = next();
    const std::string before = next();
    visit(name, before, next());
  }
}

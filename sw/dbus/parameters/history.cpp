#include "sw/dbus/parameters/history.h"

#include <exception>
#include <utility>

void History::add(uint32_t serial, uint64_t time, std::string_view caller,
                  const std::vector<Change>& changes) noexcept {
  constexpr size_t NULS = 3;
  size_t length = 0;
  for (const Change& change : changes) {
    length += change.name.size() + change.before.size() + change.held->value.text().size() + NULS;
    if (length > MOST_BYTES) return;
  }
  try {
    PastCommit commit{serial, time, std::string(caller), {}};
    commit.texts.reserve(length);
    for (const Change& change : changes) {
      for (const std::string* text : {&change.name, &change.before, &change.held->value.text()}) {
        commit.texts.append(text->c_str(), text->size() + 1);
      }
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

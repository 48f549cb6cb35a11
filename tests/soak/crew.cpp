#include "tests/soak/crew.h"

#include <poll.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <utility>

#include "tests/harness/process.h"

namespace {

constexpr size_t CLIENTS = 8;
constexpr size_t IN_FLIGHT = 16;  // of each client
constexpr uint64_t MOST_SHOWN = 20;

std::string written(const std::vector<std::string>& texts) {
  std::vector<std::string> items;
  items.reserve(texts.size());
  for (const std::string& text : texts) items.push_back(quoted(text));
  return listed(items);
}

std::string written(const std::vector<std::vector<std::string>>& signals) {
  std::vector<std::string> items;
  items.reserve(signals.size());
  for (const std::vector<std::string>& texts : signals) items.push_back(written(texts));
  return listed(items);
}

}  // namespace

Crew::Crew(const std::string& busAddress, uint64_t seed) : observer_(busAddress) {
  observer_.observeAnswers();
  for (size_t i = 0; i < CLIENTS; ++i) {
    members_.push_back(std::make_unique<Member>(busAddress, seed * CLIENTS + i));
    byName_[members_.back()->connection.name()] = members_.back().get();
  }
}

bool Crew::make(const Call& call) {
  send(*members_[calls_ % CLIENTS], call);
  return waitForAnswers();
}

bool Crew::makeFromLoad(uint64_t calls) {
  const uint64_t upTo = calls_ + calls;
  while (calls_ < upTo) {
    fill(upTo);
    if (!waitForMessages()) return false;
  }
  return waitForAnswers();
}

void Crew::send(Member& member, const Call& call) {
  const uint32_t serial = member.connection.send(call);
  member.sent.emplace(serial, Sent{call});
  ++calls_;
}

void Crew::fill(uint64_t upTo) {
  for (const std::unique_ptr<Member>& member : members_) {
    while (calls_ < upTo && member->sent.size() < IN_FLIGHT) {
      const std::optional<Call> call = member->load.next();
      if (!call) break;
      send(*member, *call);
    }
  }
}

bool Crew::isQuiet() const {
  return std::all_of(members_.begin(), members_.end(), [](const std::unique_ptr<Member>& member) {
    return member->sent.empty() && member->expected.empty();
  });
}

bool Crew::waitForAnswers() {
  while (!isQuiet()) {
    if (!waitForMessages()) return false;
  }
  return true;
}

bool Crew::waitForMessages() {
  const auto waiting = [](const Connection& connection) {
    const int events = POLLIN | (connection.isSending() ? POLLOUT : 0);
    return pollfd{connection.descriptor(), static_cast<short>(events), 0};
  };
  std::vector<pollfd> all = {waiting(observer_)};
  for (const std::unique_ptr<Member>& member : members_) all.push_back(waiting(member->connection));
  if (poll(all.data(), all.size(), PATIENCE * 1000) <= 0) return false;
  for (const Incoming& incoming : observer_.exchange()) observe(incoming);
  for (const std::unique_ptr<Member>& member : members_) {
    for (const Incoming& incoming : member->connection.exchange()) receive(*member, incoming);
  }
  return observer_.isOpen();
}

// The signal of a call comes before its answer, and nothing between the two.
void Crew::observe(const Incoming& incoming) {
  if (incoming.isSignal) {
    unanswered_.push_back(incoming.texts);
    return;
  }
  Member& member = *byName_.at(incoming.to);
  Sent& sent = member.sent.at(incoming.serial);
  const Effect effect = model_.answer(sent.call);
  const std::vector<Texts> signals =
      effect.signal.empty() ? std::vector<Texts>() : std::vector<Texts>{effect.signal};
  expect(shown(sent.call), effect.answer, incoming.answer);
  expect("the signals of " + shown(sent.call), written(signals), written(unanswered_));
  for (const Texts& texts : std::exchange(unanswered_, {})) {
    ++signals_;
    for (const std::unique_ptr<Member>& each : members_) {
      each->expected.push_back(texts);
      matchSignals(*each);
    }
  }
  if (incoming.answer.starts_with(ERROR_MARK)) ++errors_[incoming.answer];
  sent.observed = incoming.answer;
  settle(member, incoming.serial);
}

void Crew::receive(Member& member, const Incoming& incoming) {
  if (incoming.isSignal) {
    hear(member, incoming.texts);
    return;
  }
  Sent& sent = member.sent.at(incoming.serial);
  if (sent.call.method == "start") {
    // Whatever else it is, the observer has counted it.
    member.load.started(static_cast<uint32_t>(std::strtoul(incoming.answer.c_str(), nullptr, 10)));
  }
  sent.received = incoming.answer;
  settle(member, incoming.serial);
}

void Crew::settle(Member& member, uint32_t serial) {
  const Sent& sent = member.sent.at(serial);
  if (sent.observed && sent.received) {
    expect("what the client got for " + shown(sent.call), *sent.observed, *sent.received);
    member.sent.erase(serial);
  }
}

void Crew::hear(Member& member, const Texts& texts) {
  for (const std::string& text : texts) {
    const size_t end = text.find('=');
    member.told[text.substr(0, end)] = text.substr(end + 1);
  }
  member.heard.push_back(texts);
  matchSignals(member);
}

void Crew::matchSignals(Member& member) {
  while (!member.heard.empty() && !member.expected.empty()) {
    expect("a signal that a client heard", written(member.expected.front()),
           written(member.heard.front()));
    member.heard.pop_front();
    member.expected.pop_front();
  }
}

void Crew::checkAtRest(const std::vector<std::string>& logLines) {
  for (const std::unique_ptr<Member>& member : members_) {
    for (const auto& [name, value] : member->told) {
      expect("what a client was told of " + name, model_.get(name), value);
    }
    expect("signals that nothing brought about", "0", std::to_string(member->heard.size()));
  }
  const std::vector<std::string> expectedLines = model_.takeLog();
  expect("lines in the system log", std::to_string(expectedLines.size()),
         std::to_string(logLines.size()));
  for (size_t i = 0; i < std::min(expectedLines.size(), logLines.size()); ++i) {
    expect("a line in the system log", expectedLines[i], logLines[i]);
  }
}

void Crew::expect(const std::string& what, const std::string& expected, const std::string& got) {
  if (expected == got) return;
  if (++wrong_ <= MOST_SHOWN) {
    printf("WRONG: %s\n  expected %s\n  got      %s\n", what.c_str(), expected.c_str(),
           got.c_str());
  }
}

#include "sw/dbus/call_queue.h"

#include <cassert>
#include <exception>
#include <iterator>
#include <utility>

namespace {

// The name in the queue for all senders that have left; no client has the empty name.
constexpr std::string_view HAVE_LEFT;

}  // namespace

CallQueue::Senders::iterator CallQueue::findOrAdd(std::string_view name, Senders::iterator before) {
  const auto known = byName_.find(name);
  if (known != byName_.end()) return known->second;
  Senders added;
  added.push_back({std::string(name), {}});
  const auto sender = added.begin();
  byName_.emplace(sender->name, sender);
  senders_.splice(before, added);
  return sender;
}

void CallQueue::add(std::string_view sender, WaitingCall call) {
  std::list<WaitingCall> added;
  added.push_back(std::move(call));
  auto& calls = findOrAdd(sender, senders_.end())->calls;
  calls.splice(calls.end(), added);
  ++count_;
}

WaitingCall CallQueue::next() {
  assert(!empty());
  const auto sender = senders_.begin();
  WaitingCall call = std::move(sender->calls.front());
  sender->calls.pop_front();
  --count_;
  if (sender->calls.empty()) {
    erase(sender);
  } else {
    senders_.splice(senders_.end(), senders_, sender);
  }
  return call;
}

void CallQueue::leave(std::string_view sender) noexcept {
  const auto known = byName_.find(sender);
  if (known == byName_.end()) return;
  std::list<WaitingCall> calls = std::move(known->second->calls);
  const auto behind = std::next(known->second);
  erase(known->second);
  count_ -= calls.size();
  calls.remove_if([&first = calls.front()](const WaitingCall& call) {
    return &call != &first && dbus_message_get_no_reply(call.message.get()) == 0;
  });
  for (WaitingCall& call : calls) call.hasLeft = true;
  try {
    auto& all = findOrAdd(HAVE_LEFT, behind)->calls;
    count_ += calls.size();
    all.splice(all.end(), calls);
  } catch (const std::exception&) {
    // There is no memory for the place of these calls, so they are dropped, too.
  }
}

void CallQueue::erase(Senders::iterator sender) {
  byName_.erase(sender->name);
  senders_.erase(sender);
}

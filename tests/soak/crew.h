// The crew: eight clients that keep calls in flight, and an observer that sees all answers and
// signals in the order in which the daemon gave them. In that order the model answers the calls
// too, and every difference is a wrong answer.
#pragma once

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tests/soak/call.h"
#include "tests/soak/connection.h"
#include "tests/soak/load.h"
#include "tests/soak/model.h"

class Crew {
 public:
  Crew(const std::string& busAddress, uint64_t seed);

  /// Makes one call, or that many of the load's, and waits for all answers. False when no message
  /// has come for a minute, or the bus is gone.
  bool make(const Call& call);
  bool makeFromLoad(uint64_t calls);
  /// While no call is in flight: compares what the signals told each client with what the daemon
  /// holds, and the "commit:" lines of the system log, which are given, with those of the model.
  void checkAtRest(const std::vector<std::string>& logLines);

  [[nodiscard]] uint64_t calls() const { return calls_; }
  [[nodiscard]] uint64_t signals() const { return signals_; }
  [[nodiscard]] uint64_t wrong() const { return wrong_; }
  /// How often each error came, by its message.
  [[nodiscard]] const std::map<std::string, uint64_t>& errors() const { return errors_; }

 private:
  using Texts = std::vector<std::string>;

  struct Sent {
    Call call;
    std::optional<std::string> observed = {};  ///< the answer, as the observer saw it
    std::optional<std::string> received = {};  ///< the answer, as the client got it
  };
  struct Member {
    Member(const std::string& busAddress, uint64_t seed) : connection(busAddress), load(seed) {}
    Connection connection;
    Load load;
    std::map<uint32_t, Sent> sent = {};            ///< by serial
    std::deque<Texts> heard = {};                  ///< signals that were not expected yet
    std::deque<Texts> expected = {};               ///< signals that were not heard yet
    std::map<std::string, std::string> told = {};  ///< the values, as the signals told them
  };

  void send(Member& member, const Call& call);
  void fill(uint64_t upTo);
  [[nodiscard]] bool isQuiet() const;
  bool waitForAnswers();
  bool waitForMessages();
  void observe(const Incoming& incoming);
  void receive(Member& member, const Incoming& incoming);
  void settle(Member& member, uint32_t serial);
  void hear(Member& member, const Texts& texts);
  void matchSignals(Member& member);
  void expect(const std::string& what, const std::string& expected, const std::string& got);

  Model model_;
  std::vector<std::unique_ptr<Member>> members_;
  std::map<std::string, Member*> byName_;
  Connection observer_;
  std::vector<Texts> unanswered_;  ///< signals since the last answer
  uint64_t calls_ = 0;
  uint64_t signals_ = 0;
  uint64_t wrong_ = 0;
  std::map<std::string, uint64_t> errors_;
};

// Puts the talk of clients with a device down as a session.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "play/device.h"
#include "play/operation_words.h"

/// Is told of calls, announcements and answers in the order in which they pass, and writes the
/// lines of a session. The service answers calls in the order in which it serves them, and
/// announces before it answers; so operations are written when they are answered.
class Recorder {
 public:
  /// Gets a line without its newline.
  using WriteLine = std::function<void(const std::string& line)>;

  explicit Recorder(WriteLine writeLine) : writeLine_(std::move(writeLine)) {}

  /// A client has made a call; `serial` is its own number for it.
  void called(const std::string& client, uint32_t serial, const Call& call, bool wantsAnswer);
  /// Changes were announced, "name=value" each.
  void announced(const std::vector<std::string>& changes);
  /// The call has been answered. Its changes are those that were announced before.
  void answered(const std::string& client, uint32_t serial, Answer answer);
  /// The call was refused by others than the service, or belongs to nobody whom the session is
  /// about.
  void forget(const std::string& client, uint32_t serial);
  /// Leaves out what has been served up to here: the session begins now.
  void begin();
  /// Writes `text` as a comment.
  void comment(const std::string& text);
  /// Writes the calls that wanted no answer and are still there.
  void finish();

  /// The operations that were written.
  [[nodiscard]] size_t count() const { return count_; }

 private:
  void writeUnanswered();
  void write(const Call& call, const Answer* answer);
  void learnTransaction(const Call& call, const Answer* answer);
  [[nodiscard]] bool isClear(const Call& call);

  WriteLine writeLine_;
  std::map<std::pair<std::string, uint32_t>, Call> calls_;  // by client and serial
  std::vector<Call> unanswered_;                            // want no answer, in order
  std::vector<std::string> changes_;                        // announced since the last answer
  std::set<uint32_t> transactions_;                         // that the session knows
  std::set<uint32_t> unclear_;  // those of them that may hold what nobody has seen
  size_t count_ = 0;
};

// Writes what has happened into the session files, where something else, or nothing, was expected.
#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "play/player.h"

/// What one of the files becomes.
struct UpdatedFile {
  std::string name;
  std::string text;
};

/// Gathers the outcomes of a session. An operation that was played several times, in a loop or in a
/// file that is included twice, is only written where its outcomes are all the same.
class SessionUpdate final : public PlayObserver {
 public:
  void played(const PlayedOperation& operation) override;

  /// The files that change, and their texts. Expectations that are met stay as they are. Where
  /// nothing is expected, an outcome is added, but not behind "up" and not where it is empty.
  [[nodiscard]] std::vector<UpdatedFile> files() const;
  /// How many expectations these have that are new.
  [[nodiscard]] size_t count() const;
  /// The operations whose expectation is not met and cannot be written.
  [[nodiscard]] std::vector<const Operation*> undecided() const;

 private:
  struct Seen {
    const Operation* operation = nullptr;
    std::string outcome = {};
    bool differs = false;  // from one time to another
    bool isMet = true;     // each time
  };
  [[nodiscard]] static bool isNew(const Seen& seen);

  std::map<std::pair<std::string, size_t>, Seen> seen_;  // by file, and place in it
};

/// Puts `text` in the place of the file `name`: at any moment the file has its old text or the new
/// one. Its permissions stay. Returns 0, or the error number of what went wrong.
int replaceFile(const std::string& name, const std::string& text);

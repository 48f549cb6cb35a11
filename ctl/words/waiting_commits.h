// Commits that wait to be confirmed. The process of each holds the lock of a file in the user's
// runtime directory, so that others find it, and know that it is alive.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

#include "ctl/service/service.h"

struct WaitingCommit {
  pid_t process = 0;
  std::string what;  ///< what it has set, in words
};

/// Those of the service on its bus, by process.
std::vector<WaitingCommit> waitingCommits(Service& service);

/// Confirms one, and waits for what its process decides: whether it was in time.
bool confirmWaiting(const WaitingCommit& commit);

/// Makes the directory of the files. Ends the program where that cannot be.
void requireWaitingDirectory();

/// This process as one whose commit waits.
class WaitingMark {
 public:
  /// Complains where the mark cannot be made: then nobody else can confirm the commit.
  WaitingMark(Service& service, const std::string& what);
  /// Tells who confirms it, and takes the mark away.
  void decide(bool isConfirmed);
  ~WaitingMark();
  WaitingMark(const WaitingMark&) = delete;
  WaitingMark& operator=(const WaitingMark&) = delete;

 private:
  std::string path_;
  int descriptor_ = -1;
};

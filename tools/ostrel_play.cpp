// ostrel-play: sessions are tests of a definition text, without a bus.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "play/report.h"
#include "play/session_reader.h"
#include "play/session_update.h"
#include "tools/input_file.h"
#include "tools/interactive.h"
#include "tools/play_arguments.h"
#include "tools/play_coverage.h"
#include "tools/play_diff.h"
#include "tools/play_explore.h"
#include "tools/record.h"
#include "tools/text_device.h"
#include "vid_std.h"

namespace {

constexpr int STATUS_DIFFERENT = 1;
constexpr int STATUS_FAILED = 2;

int readFile(const std::string& name, std::string& text) {
  return readInputFile(name.c_str(), text);
}

// Whether all that was printed is written; says so where it is not.
bool isOutputWritten() {
  if (std::ferror(stdout) == 0 && std::fflush(stdout) == 0) return true;
  std::fprintf(stderr, "ostrel-play: cannot write: %s\n", std::strerror(errno));
  return false;
}

// Plays the sessions, and reports each at once where it is for a person.
class PlayRun {
 public:
  PlayRun(const PlayArguments& arguments, const std::string& definitions)
      : arguments_(arguments),
        coverage_(arguments, definitions),
        start_([this, &definitions](const PlayConstants& constants) {
          return startTextDevice(arguments_.definitions, definitions, constants, coverage_.text());
        }),
        report_(newPlayReport(arguments.format, arguments.isQuiet, stdout)) {}

  void play(const std::string& name) {
    const std::string shownName = name == "-" ? "<stdin>" : name;
    if (!arguments_.updates) report_->begin(shownName);
    std::string text;
    const int error = readFile(name, text);
    if (error != 0) return fail("ostrel-play: cannot read " + name + ": " + std::strerror(error));
    Session session;
    std::vector<SessionError> errors;
    readSession(shownName, std::move(text), readFile, session, errors);
    for (const SessionError& wrong : errors) fail(shownError(wrong));
    if (!errors.empty()) return;
    if (arguments_.updates) {
      update(session);
    } else {
      play(session, *report_);
    }
  }

  // Returns the status of the process.
  int finish() {
    if (!arguments_.updates) report_->finish();
    // A report for programs stays as they know it.
    const int covered = coverage_.report(arguments_.format == PLAY_TEXT ? stdout : stderr);
    hasFailed_ = hasFailed_ || covered == STATUS_FAILED;
    isDifferent_ = isDifferent_ || covered == STATUS_DIFFERENT;
    hasFailed_ = !isOutputWritten() || hasFailed_;
    if (hasFailed_) return STATUS_FAILED;
    return isDifferent_ || !report_->isAsExpected() ? STATUS_DIFFERENT : 0;
  }

 private:
  // Returns whether the session was played to its end.
  bool play(const Session& session, PlayObserver& observer) {
    const std::optional<SessionError> error =
        playSession(session, start_, arguments_.constants, observer);
    if (error) fail(shownError(*error));
    return !error;
  }

  void update(const Session& session) {
    SessionUpdate update;
    if (!play(session, update)) return;
    for (const UpdatedFile& file : update.files()) {
      const int error = replaceFile(file.name, file.text);
      if (error != 0) {
        return fail("ostrel-play: cannot write " + file.name + ": " + std::strerror(error));
      }
      std::printf("%s: updated\n", file.name.c_str());
    }
    for (const Operation* operation : update.undecided()) {
      const SessionPlace& place = operation->place;
      std::printf("%s:%zu: not updated, because its outcomes differ\n", place.file->name.c_str(),
                  place.line);
      isDifferent_ = true;
    }
  }

  void fail(const std::string& error) {
    hasFailed_ = true;
    if (arguments_.updates) {
      std::fprintf(stderr, "%s\n", error.c_str());
    } else {
      report_->failed(error);
    }
  }

  const PlayArguments& arguments_;
  const PlayCoverage coverage_;
  const StartDevice start_;
  const std::unique_ptr<PlayReport> report_;
  bool isDifferent_ = false;
  bool hasFailed_ = false;
};

int talk(const PlayArguments& arguments, const std::string& definitions) {
  const PlayCoverage coverage(arguments, definitions);
  const StartDevice start = [&](const PlayConstants& constants) {
    return startTextDevice(arguments.definitions, definitions, constants, coverage.text());
  };
  if (!playInteractively(start, arguments.constants)) return STATUS_FAILED;
  return coverage.report(stdout);
}

int explore(const PlayArguments& arguments, const std::string& definitions) {
  const int status = explorePlay(arguments, definitions);
  return isOutputWritten() ? status : STATUS_FAILED;
}

int run(int argc, char** argv) {
  const PlayArguments arguments = parsePlayArguments(argc, argv);
  initVidStdTables();
  std::string definitions;
  const int error = readFile(arguments.definitions, definitions);
  if (error != 0) {
    std::fprintf(stderr, "ostrel-play: cannot read %s: %s\n", arguments.definitions.c_str(),
                 std::strerror(error));
    return STATUS_FAILED;
  }
  if (arguments.records) {
    return record(arguments.recording, arguments.definitions, definitions, arguments.constants);
  }
  if (arguments.explores) return explore(arguments, definitions);
  if (arguments.compares) return diffPlay(arguments, definitions);
  if (arguments.sessions.empty()) return talk(arguments, definitions);
  PlayRun playRun(arguments, definitions);
  for (const std::string& session : arguments.sessions) playRun.play(session);
  return playRun.finish();
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "ostrel-play: memory is exhausted\n");
    return STATUS_FAILED;
  }
}

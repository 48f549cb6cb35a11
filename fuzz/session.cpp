// Fuzzes sessions: the input is a session's text, which can include the file "t". Each mistake has
// a place in the text. What can be played is updated, and the new text is a session again whose
// expectations are all met, but for those that could not be written.
#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "play/engine_device.h"
#include "play/player.h"
#include "play/session_reader.h"
#include "play/session_update.h"
#include "vid_std.h"

namespace {

constexpr size_t MOST_PLAYED = 300;
const char* const DEVICE =
    "mode rw { rangeValid { \"1080i/50\", \"720p/50\" } default { \"1080i/50\" } }\n"
    "i index { rangeValid { 1..3 } rangeValid (gain > 4) { 1..2 } rangeValid (gain <= 4) { 1..3 } "
    "}\n"
    "a rw { index { i } rangeValid { 0..(vidStd::mode::spal - 1) } default { 9 } }\n"
    "gain rw { rangeValid { -9..9, \"auto\" } default { 3 } valueChange { \"off\" -> 0 } }\n"
    "lock ro { rangeValid { (gain == 5) } }\n"
    "title rw { ctrlRO (lock == 1) }\n"
    "go wo { rangeValid { \"no\", \"yes\" } }\n";

struct Played {
  bool isRead = false;
  bool isWhole = false;  // it was played to its end
  bool isUpdated = false;
  std::string text;  // as it is updated
  size_t undecided = 0;
};

void expectPlace(const SessionError& error, const std::string& text) {
  size_t line = 1;
  size_t begin = 0;
  for (; line < error.line; ++line) {
    begin = text.find('\n', begin) + 1;
    demand(begin != 0, "no such line: ", shownError(error));
  }
  const size_t end = std::min(text.find('\n', begin), text.size());
  demand(error.line == line && 0 < error.column && error.column <= end - begin + 1,
         "no such column: ", shownError(error));
  demand(!error.text.empty(), "no sentence");
}

Played play(const std::string& text) {
  Played played;
  Session session;
  std::vector<SessionError> errors;
  const auto readFile = [&](const std::string& name, std::string& included) {
    if (name != "t") return ENOENT;
    included = "get title\n";
    return 0;
  };
  readSession("s", text, readFile, session, errors);
  for (const SessionError& error : errors) expectPlace(error, text);
  played.isRead = errors.empty();
  if (!played.isRead) return played;
  const StartDevice start = [](const PlayConstants& constants) {
    return startEngineDevice(DEVICE, constants);
  };
  SessionUpdate update;
  const auto error = playSession(session, start, {}, update, MOST_PLAYED);
  if (error) expectPlace(*error, text);
  played.isWhole = !error;
  played.undecided = update.undecided().size();
  for (const UpdatedFile& file : update.files()) {
    if (file.name != "s") continue;
    played.isUpdated = true;
    played.text = file.text;
  }
  return played;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  initVidStdTables();
  const std::string text(textOf(data, size));
  const Played first = play(text);
  if (!first.isWhole || !first.isUpdated) return 0;
  const Played second = play(first.text);
  demand(second.isRead, "what an update has written is no session: ", first.text);
  demand(second.isWhole, "an update has changed what is played: ", first.text);
  demand(second.undecided == first.undecided,
         "more is not met than could not be written: ", first.text);
  demand(!second.isUpdated || second.text == first.text, "an update is not the last: ", first.text);
  return 0;
}

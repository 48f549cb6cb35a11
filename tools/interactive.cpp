#include "tools/interactive.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
// It needs the names of the C library's streams.
#include <readline/history.h>
#include <readline/readline.h>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "play/completion.h"
#include "play/player.h"
#include "play/session_reader.h"
#include "tools/input_file.h"

namespace {

struct Free {
  void operator()(char* text) const { free(text); }
};
using Line = std::unique_ptr<char, Free>;

// What the functions that the library calls look at.
SessionPlayer* currentPlayer = nullptr;
std::vector<std::string> proposals;

// Prints what happens.
class Talk final : public PlayObserver {
 public:
  void played(const PlayedOperation& played) override {
    const std::string outcome = played.outcome.shown();
    if (!played.variables.empty()) std::printf("%s: ", played.variables.c_str());
    if (!outcome.empty() || !played.variables.empty()) std::printf("%s\n", outcome.c_str());
    if (!played.isAsExpected) std::puts("(not as expected)");
    for (const std::string& note : played.outcome.notes) std::printf("  %s\n", note.c_str());
  }
};

// The proposal `state`, which counts from 0, for the library, which frees it.
char* nextProposal(const char* /*start*/, int state) {
  const auto number = static_cast<size_t>(state);
  return number < proposals.size() ? strdup(proposals[number].c_str()) : nullptr;
}

char** proposeWords(const char* start, int begin, int /*end*/) {
  rl_attempted_completion_over = 1;  // no file names
  try {
    Device* const device = currentPlayer->device();
    if (device == nullptr) return nullptr;
    const std::string_view before(rl_line_buffer, static_cast<size_t>(begin));
    proposals = completions(*device, before, start);
    return rl_completion_matches(start, nextProposal);
  } catch (const std::bad_alloc&) {
    return nullptr;  // the library is not made for exceptions
  }
}

int readFile(const std::string& name, std::string& text) {
  return readInputFile(name.c_str(), text);
}

void printError(const SessionError& error) {
  std::printf("column %zu: %s\n", error.column, error.text.c_str());
}

void playLine(const std::string& line, std::set<std::string>& transactions, SessionPlayer& player) {
  Session session;
  session.transactions = std::move(transactions);
  std::vector<SessionError> errors;
  readSession("<terminal>", line, readFile, session, errors);
  transactions = session.transactions;
  for (const SessionError& error : errors) printError(error);
  if (!errors.empty()) return;
  const std::optional<SessionError> error = player.play(session);
  if (error) printError(*error);
}

}  // namespace

bool playInteractively(const StartDevice& start, const PlayConstants& constants) {
  Talk talk;
  SessionPlayer player(start, constants, talk);
  if (player.device() == nullptr) return false;
  currentPlayer = &player;
  rl_readline_name = "ostrel-play";
  rl_attempted_completion_function = proposeWords;
  rl_basic_word_break_characters = " \t";
  rl_completer_quote_characters = "";
  std::set<std::string> transactions;
  for (Line line(readline("> ")); line != nullptr; line.reset(readline("> "))) {
    if (*line != '\0') add_history(line.get());
    playLine(line.get(), transactions, player);
  }
  std::putchar('\n');
  currentPlayer = nullptr;
  return true;
}

#include "ctl/complete.h"

#include <fcntl.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include "ctl/command_line.h"
#include "ctl/completion/offers.h"
#include "ctl/completion/shell_line.h"
#include "ctl/completion/typed_line.h"
#include "ctl/service/exit_status.h"

namespace {

constexpr const char* FILE_KINDS[] = {"FILE", "OTHER"};

constexpr int PATIENCE = 3;  // in seconds

[[noreturn]] void giveUp(int /*signal*/) { _exit(STATUS_NO_SERVICE); }

void becomeSilent() {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) dup2(nowhere, STDERR_FILENO);
  std::signal(SIGALRM, giveUp);
  const itimerval limit = {.it_interval = {}, .it_value = {.tv_sec = PATIENCE, .tv_usec = 0}};
  setitimer(ITIMER_REAL, &limit, nullptr);
}

// Without an address, the library would start a bus where there is a display.
bool hasBus(const BusOptions& options) {
  if (!options.address.empty() || std::getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr) return true;
  const char* const directory = std::getenv("XDG_RUNTIME_DIR");
  return directory != nullptr && access((std::string(directory) + "/bus").c_str(), F_OK) == 0;
}

bool isSpeakable(const std::string& word) {
  return g_utf8_validate(word.data(), static_cast<gssize>(word.size()), nullptr) != FALSE &&
         std::ranges::none_of(word, [](char c) { return g_ascii_iscntrl(c) != FALSE; });
}

// What completes the last word; of the words and options of the program with what they do.
struct Completion {
  Candidates candidates;
  std::vector<std::string> notes = {};  // one for each word, or none at all
};

void add(Completion& completion, const TypedLine& typed, const std::string& word,
         const std::string& note) {
  if (!word.starts_with(typed.text)) return;
  completion.candidates.words.push_back(word);
  completion.notes.push_back(note);
}

Completion wordsFor(const CLI::App& app, const TypedLine& typed) {
  Completion completion;
  for (const CLI::App* const word : app.get_subcommands({})) {
    add(completion, typed, word->get_name(), word->get_description());
  }
  return completion;
}

Completion optionsFor(const CLI::App& app, const TypedLine& typed) {
  Completion completion;
  for (const CLI::App* const owner : {typed.word, &app}) {
    if (owner == nullptr) continue;
    for (const CLI::Option* const option : owner->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        const std::string word = "--" + name;
        const auto& known = completion.candidates.words;
        if (std::ranges::find(known, word) != known.end()) continue;  // the help of the word
        add(completion, typed, word, option->get_description());
      }
    }
  }
  return completion;
}

Completion offersFor(const TypedLine& typed) {
  std::string error;
  const bool isUsable = isBusSuffix(typed.bus.busSuffix) && isPathSuffix(typed.bus.pathSuffix);
  if (!isUsable || !hasBus(typed.bus)) return {};
  const std::unique_ptr<Bus> bus = Bus::connect(typed.bus, error);
  if (bus == nullptr) return {};
  bus->doNotWait();  // a call that waits would start the service, too
  Service service(*bus);
  return {.candidates = offersOf(service, typed)};
}

Completion completionFor(const CLI::App& app, const TypedLine& typed) {
  if (typed.kind == KIND_WORD) return wordsFor(app, typed);
  if (typed.kind == KIND_OPTION) return optionsFor(app, typed);
  return isOfService(typed.kind) ? offersFor(typed) : Completion();
}

void print(const Completion& completion, const TypedLine& typed, const ShellLine& line,
           const std::vector<std::string>& given) {
  std::puts(completion.candidates.isWhole ? "whole" : "open");
  for (size_t i = 0; i < completion.candidates.words.size(); ++i) {
    const std::string word = typed.start + completion.candidates.words[i];
    if (!isSpeakable(word)) continue;
    if (given[0] == "line") {
      const std::string typedWord = given[1].substr(line.begin);
      std::puts(shellReply(word, typedWord, given[2]).c_str());
    } else if (completion.notes.empty()) {
      std::puts(word.c_str());
    } else {
      std::printf("%s\t%s\n", word.c_str(), completion.notes[i].c_str());
    }
  }
}

}  // namespace

int complete(int argc, char** argv) {
  becomeSilent();
  const std::vector<std::string> given(argv, argv + argc);
  ShellLine line;
  if (given.size() == 3 && given[0] == "line") {
    line = shellLine(given[1]);
    line.words.erase(line.words.begin());
  } else if (given.size() > 1 && given[0] == "words") {
    line.words.assign(given.begin() + 1, given.end());
  }
  if (line.words.empty() || !std::ranges::all_of(line.words, isSpeakable)) return STATUS_USAGE;
  TakenLine taken;
  CLI::App app;
  defineCommandLine(app, taken);
  const TypedLine typed = readTypedLine(app, line.words);
  if (std::ranges::find(FILE_KINDS, typed.kind) != std::end(FILE_KINDS)) {
    std::puts("files");
  } else {
    print(completionFor(app, typed), typed, line, given);
  }
  return std::fflush(stdout) == 0 ? STATUS_DONE : STATUS_REFUSED;
}

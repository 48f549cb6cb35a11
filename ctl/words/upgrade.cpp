// upgrade: another definition text for a device that is running, or the old one again.
#include <fcntl.h>
#include <glib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <memory>

#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "ctl/words/stored_values.h"
#include "ctl/words/values_file.h"
#include "ctl/words/word.h"

namespace {

struct UpgradeArguments {
  std::string file;
  std::string instance = "device";
  std::string text;       // that is replaced
  std::string constants;  // of both
  std::string restart;    // a command line of a shell
  bool isYes = false;
};

// Runs a program, whose output is this one's. Its exit status; 127 where it cannot be run, and 128
// and more where a signal has ended it.
int run(const Texts& command) {
  std::fflush(stdout);
  std::vector<char*> words;
  for (const std::string& word : command) words.push_back(const_cast<char*>(word.c_str()));
  words.push_back(nullptr);
  int status = 0;
  GError* error = nullptr;
  const auto flags = static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_CHILD_INHERITS_STDIN);
  if (g_spawn_sync(nullptr, words.data(), nullptr, flags, nullptr, nullptr, nullptr, nullptr,
                   &status, &error) == FALSE) {
    complain(error->message);
    g_error_free(error);
    return 127;
  }
  return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string readText(const std::string& path) {
  std::string error;
  std::optional<std::string> text = tryReadFile(path, error);
  if (!text) endWith(STATUS_USAGE, error);
  return *std::move(text);
}

// A file that goes with its holder.
class Temporary {
 public:
  explicit Temporary(const std::string& text) {
    const int descriptor = mkostemp(path_.data(), O_CLOEXEC);
    if (descriptor >= 0) close(descriptor);
    if (descriptor >= 0 && write(text)) return;
    endWith(STATUS_REFUSED, "cannot write " + path_ + ": " + std::strerror(errno));
  }
  ~Temporary() { unlink(path_.c_str()); }
  Temporary(const Temporary&) = delete;
  Temporary& operator=(const Temporary&) = delete;
  [[nodiscard]] const std::string& path() const { return path_; }
  /// Returns whether it is done; otherwise errno says why not.
  [[nodiscard]] bool write(const std::string& text) const { return tryWriteFile(path_, text); }

 private:
  std::string path_ = std::string(g_get_tmp_dir()) + "/ostrel-values.XXXXXX";
};

// Whether a restoration ends like that where it is complete. What the new text does not take was
// shown before, and is no failure.
bool isJudgement(int status) {
  return status == STATUS_DONE || status == STATUS_REFUSED || status == STATUS_UNKNOWN;
}

volatile std::sig_atomic_t isInterrupted = 0;

// A signal ends what is run for the upgrade, and what waits for an answer, but not this program.
void catchSignals() {
  struct sigaction action = {};
  action.sa_handler = [](int) { isInterrupted = 1; };
  for (const int number : {SIGINT, SIGHUP, SIGQUIT, SIGTERM}) sigaction(number, &action, nullptr);
}

class Upgrade {
 public:
  Upgrade(Client& client, const UpgradeArguments& arguments)
      : client_(client),
        arguments_(arguments),
        new_(readText(arguments.file)),
        old_(readText(arguments.text)),
        oldPath_(arguments.text + ".old"),
        first_(client.service.bus().owner()),
        values_(valuesText(valuesWorthKeeping(
            storedValues(client.service, Levels(client.service), false).value()))) {}

  int run() {
    if (new_ == old_) {
      client_.out.line("nothing to do: the text is the same");
      return STATUS_DONE;
    }
    catchSignals();
    if (const std::optional<int> status = refusal()) {
      complain("nothing was changed");
      return *status;
    }
    const int status = replace();
    removeOldText();
    return status;
  }

 private:
  int replace() {
    if (const std::string failure = serve(new_); !failure.empty()) return goBack(failure);
    const int status = restore();
    if (!isJudgement(status)) return goBack("the values cannot be restored");
    isUpgraded_ = true;
    client_.out.line("upgraded: " + quotedWord(arguments_.text) + " serves");
    return status;
  }

  [[nodiscard]] Texts constantOptions() const {
    if (access(arguments_.constants.c_str(), R_OK) != 0) return {};
    return {"-D", "@" + arguments_.constants};
  }

  [[nodiscard]] int runTool(Texts command, const Texts& arguments) const {
    const Texts constants = constantOptions();
    command.insert(command.end(), constants.begin(), constants.end());
    command.insert(command.end(), arguments.begin(), arguments.end());
    return ::run(command);
  }

  // Why the text is not replaced, as an exit status, after a complaint. Nothing ends the program
  // here, as the values would be left in their file.
  [[nodiscard]] std::optional<int> refusal() const {
    if (hasOldText() || !isAcceptable()) return STATUS_REFUSED;
    if (!arguments_.isYes && isatty(STDIN_FILENO) == 0) {
      complain("--yes is needed where nobody can be asked");
      return STATUS_USAGE;
    }
    const bool goesOn = (arguments_.isYes || isWanted()) && takeValues() && isInterrupted == 0;
    return goesOn && keepOldText() ? std::nullopt : std::optional<int>(STATUS_REFUSED);
  }

  // An upgrade that was killed may have left the only copy of a text that serves.
  [[nodiscard]] bool hasOldText() const {
    if (access(oldPath_.c_str(), F_OK) != 0) return false;
    complain(quotedWord(oldPath_) +
             " is there, as an upgrade that was killed leaves the old text: " +
             "put it back or remove it");
    return true;
  }

  [[nodiscard]] bool keepOldText() const {
    if (tryWriteFile(oldPath_, old_)) return true;
    complain("cannot write " + quotedWord(oldPath_) + ": " + std::strerror(errno));
    return false;
  }

  void removeOldText() const {
    std::string error;
    if (isUpgraded_ || tryReadFile(arguments_.text, error) == old_) {
      unlink(oldPath_.c_str());
    } else {
      complain("the old text is in " + quotedWord(oldPath_));
    }
  }

  [[nodiscard]] bool isAcceptable() const {
    constexpr int FAULT = 2;
    const int checked = runTool({"ostrel-check", "--quiet"}, {"--", arguments_.file});
    if (isInterrupted != 0) return false;
    if (checked != 0) {
      complain(checked == 127 ? "ostrel-check is needed to check the text" : "the text is refused");
      return false;
    }
    // That clients have to change is for the operator to judge.
    const int compared = runTool({"ostrel-play", "--diff", "--values=" + values_.path()},
                                 {"--", arguments_.text, arguments_.file});
    if (compared >= FAULT && isInterrupted == 0) complain("the texts cannot be compared");
    return compared < FAULT;
  }

  [[nodiscard]] bool isWanted() const {
    std::cout << "Replace " << quotedWord(arguments_.text) << " and restart? [y/N] " << std::flush;
    std::string answer;
    std::getline(std::cin, answer);
    return answer == "y" || answer == "yes";
  }

  // The values as they are now: the answer may have taken its time.
  [[nodiscard]] bool takeValues() const {
    std::optional<std::vector<ListedParameter>> listed = client_.service.tryList();
    const auto stored = listed
                            ? storedValues(client_.service, Levels(*std::move(listed)), false, true)
                            : std::nullopt;
    if (!stored) {
      complain("the service has gone");
    } else if (!values_.write(valuesText(valuesWorthKeeping(*stored)))) {
      complain("cannot write " + values_.path() + ": " + std::strerror(errno));
    } else {
      return true;
    }
    return false;
  }

  // This program, for the same service. What ends that does not end the upgrade.
  [[nodiscard]] int runWord(const Texts& word) const {
    const BusOptions& bus = client_.service.bus().options();
    Texts command = {"/proc/self/exe", "--timeout", std::to_string(bus.timeout)};
    for (const Texts& part : {serviceArguments(bus), word}) {
      command.insert(command.end(), part.begin(), part.end());
    }
    return ::run(command);
  }

  // Has `text` served; returns what has failed.
  [[nodiscard]] std::string serve(const std::string& text) const {
    if (!tryWriteFile(arguments_.text, text)) {
      return "cannot write " + quotedWord(arguments_.text) + ": " + std::strerror(errno);
    }
    const std::string before = client_.service.bus().owner();
    const int status = ::run({"/bin/sh", "-c", arguments_.restart});
    if (status != 0) return "the restart has failed with status " + std::to_string(status);
    if (!isThereAnotherThan(before)) return "the restart has not brought up another daemon";
    return runWord({"--quiet", "ls"}) == STATUS_DONE ? "" : "the new daemon does not become ready";
  }

  // Whether the bus name has an owner other than `before`, in time.
  [[nodiscard]] bool isThereAnotherThan(const std::string& before) const {
    constexpr gulong STEP = 20000;  // in microseconds
    Bus& bus = client_.service.bus();
    const gint64 end = g_get_monotonic_time() + bus.options().timeout * G_TIME_SPAN_SECOND;
    do {
      const std::string owner = bus.owner();
      if (!owner.empty() && owner != before) return true;
      g_usleep(STEP);
    } while (g_get_monotonic_time() < end);
    return false;
  }

  [[nodiscard]] int restore() const { return runWord({"restore", "--status", values_.path()}); }

  int goBack(const std::string& failure) const {
    complain(failure + "; going back to the old text");
    if (client_.service.bus().owner() == first_ && tryWriteFile(arguments_.text, old_)) {
      complain("the old daemon serves still, with its values");
      return STATUS_REFUSED;
    }
    if (const std::string again = serve(old_); !again.empty()) {
      complain("the old text does not serve either: " + again);
      return STATUS_NO_SERVICE;
    }
    if (const int status = restore(); status != STATUS_DONE) {
      complain("the old text serves again, but not all values are back");
      return STATUS_REFUSED;
    }
    complain("the old text serves again, with its values");
    return STATUS_REFUSED;
  }

  Client& client_;
  const UpgradeArguments& arguments_;
  const std::string new_;
  const std::string old_;
  const std::string oldPath_;  // where it is until the upgrade is over
  const std::string first_;    // owner of the bus name
  const Temporary values_;
  bool isUpgraded_ = false;
};

int upgrade(Client& client, UpgradeArguments arguments) {
  const std::string start = TEXTS_DIRECTORY + arguments.instance;
  if (arguments.text.empty()) arguments.text = start + ".ostrel";
  if (arguments.constants.empty()) arguments.constants = start + ".conf";
  if (arguments.restart.empty()) {
    arguments.restart = "systemctl --user restart ostrel@" + scriptWord(arguments.instance);
  }
  return Upgrade(client, arguments).run();
}

}  // namespace

RunWord defineUpgrade(CLI::App& word) {
  const auto arguments = std::make_shared<UpgradeArguments>();
  addText(word, "NEW", arguments->file, "The new definition text")->required();
  addText(word, "--instance", arguments->instance, "Of the service ostrel@NAME (device)")
      ->type_name("NAME");
  addText(word, "--text", arguments->text,
          "The text to be replaced (" TEXTS_DIRECTORY "NAME.ostrel)")
      ->type_name("FILE");
  addText(word, "--constants", arguments->constants, "Of both texts (" TEXTS_DIRECTORY "NAME.conf)")
      ->type_name("FILE");
  addText(word, "--restart", arguments->restart,
          "What restarts the service (systemctl --user restart ostrel@NAME)")
      ->type_name("COMMAND");
  word.add_flag("--yes", arguments->isYes, "Do not ask");
  return [arguments](Client& client) { return upgrade(client, *arguments); };
}

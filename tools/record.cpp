#include "tools/record.h"

#include <gio/gio.h>
#include <glib-unix.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "play/bus_call.h"
#include "play/bus_monitor.h"
#include "play/bus_recording.h"
#include "play/engine_device.h"
#include "play/recipe_client.h"
#include "play/recorder.h"
#include "play/served_device.h"
#include "play/session_words.h"
#include "tools/child_program.h"
#include "tools/text_device.h"

namespace {

constexpr int STATUS_COMMAND_FAILED = 1;
constexpr int STATUS_FAILED = 2;
// How long a daemon may take to come on its bus, in milliseconds.
constexpr unsigned START_PATIENCE = 60000;
constexpr unsigned START_STEP = 10;
// Of values that the player does not bring back.
constexpr size_t MOST_TOLD = 20;
// Calls of a client that has left the bus may still be waiting in the daemon.
constexpr int MOST_ROUNDS_AT_END = 100;

int complain(const std::string& text) {
  std::fprintf(stderr, "ostrel-play: %s\n", text.c_str());
  return STATUS_FAILED;
}

std::string setting(const std::string& name, const std::string& value) {
  return std::string(name).append("=").append(value);
}

std::string withSuffix(const char* name, char sign, const std::string& suffix) {
  return suffix.empty() ? name : std::string(name) + sign + suffix;
}

// A recording, from the daemon's presence on the bus to the end of the talk.
class Recording {
 public:
  Recording(const RecordArguments& arguments, std::FILE* out)
      : name_(withSuffix(SERVICE_NAME, '.', arguments.busSuffix)),
        path_(withSuffix(SERVICE_PATH, '/', arguments.pathSuffix)),
        out_(out) {}

  // Returns what has kept it from seeing the bus; or nothing.
  std::string connect(const std::string& address) {
    std::string error;
    connection_ = connectToBus(address, error);
    if (connection_ != nullptr) monitor_ = BusMonitor::start(address, error);
    return error;
  }

  // Waits until the daemon that was just started serves, and returns whether it does.
  bool waitForService(const ChildProgram& daemon) {
    for (unsigned waited = 0; waited < START_PATIENCE && !daemon.hasEnded(); waited += START_STEP) {
      if (!ownerOf(*connection_, name_).empty()) return true;
      g_usleep(gulong{START_STEP} * 1000);
      while (g_main_context_iteration(nullptr, FALSE) != FALSE) continue;
    }
    return false;
  }

  // Writes where the device stands, and records from there on. Returns whether a daemon serves.
  bool begin(const std::string& text, const PlayConstants& constants, KnownDevice known) {
    const std::string owner = ownerOf(*connection_, name_);
    if (owner.empty()) return false;
    recording_ = std::make_unique<BusRecording>(
        recorder_, name_, owner, g_dbus_connection_get_unique_name(connection_.get()));
    device_ = std::make_unique<ServedDevice>(*connection_, name_, path_, known);
    writeConstants(constants);
    writeState(text, constants, std::move(known));
    recording_->beginAt(device_->lastSerial());
    return true;
  }

  // Records until `isOver` says so, or the daemon or the bus has gone.
  template <typename IsOver>
  void run(const IsOver& isOver) {
    seeAll();
    while (!isOver() && !hasNobody()) {
      g_main_context_iteration(nullptr, TRUE);
      seeAll();
    }
  }

  // Records what is still on its way.
  void finish() {
    for (int round = 0; round < MOST_ROUNDS_AT_END && !hasNobody(); ++round) {
      const size_t before = recorder_.count();
      static_cast<void>(device_->call({"single_get", 0, {"x"}}));
      run([this] { return recording_->lastOwnAnswer() == device_->lastSerial(); });
      if (recorder_.count() == before) break;
    }
    recorder_.finish();
  }

 private:
  [[nodiscard]] bool hasNobody() const { return recording_->isOver() || monitor_->isClosed(); }

  void seeAll() {
    while (const BusMessage message = monitor_->next()) recording_->see(*message);
  }

  void writeConstants(const PlayConstants& constants) {
    std::string line;
    for (const auto& [name, value] : constants) line += " " + spelledChange(setting(name, value));
    if (!line.empty()) writeLine("constants" + line);
  }

  void writeState(const std::string& text, const PlayConstants& constants, KnownDevice known) {
    const std::vector<std::string> names = presentInstances(*device_, known);
    // All values in one call, so that none changes between them.
    const Answer answer = device_->call({"single_get_bulk", 0, names});
    std::string line;
    for (size_t i = 0; i < answer.texts.size(); ++i) {
      if (answer.texts[i].empty()) continue;
      line += " " + spelledChange(setting(names[i], answer.texts[i]));
      known.lastValues[names[i]] = answer.texts[i];
    }
    if (line.empty()) return;
    writeLine("up" + line);
    writeWhatDiffers(text, constants, std::move(known), names, answer.texts);
  }

  // A value that was set while its parameter was available, say, stays where it is not any more.
  void writeWhatDiffers(const std::string& text, const PlayConstants& constants, KnownDevice known,
                        const std::vector<std::string>& names,
                        const std::vector<std::string>& values) {
    const std::unique_ptr<Device> player = startBuiltDevice(text, constants);
    if (player == nullptr) return;
    static_cast<void>(bringUpDevice(*player, std::move(known)));
    const std::vector<std::string> played = player->call({"single_get_bulk", 0, names}).texts;
    size_t told = 0;
    for (size_t i = 0; i < names.size() && i < values.size() && i < played.size(); ++i) {
      if (values[i] == played[i]) continue;
      if (++told > MOST_TOLD) return recorder_.comment("up does not bring back more");
      recorder_.comment("up does not bring back " + spelledChange(setting(names[i], values[i])) +
                        ", but " + spelledWord(played[i]));
    }
  }

  // At once, so that a recording that is ended by force has all that has happened.
  void writeLine(const std::string& line) {
    std::fprintf(out_, "%s\n", line.c_str());
    std::fflush(out_);
  }

  const std::string name_;
  const std::string path_;
  std::FILE* const out_;
  Recorder recorder_{[this](const std::string& line) { writeLine(line); }};
  BusConnection connection_;
  std::unique_ptr<BusMonitor> monitor_;
  std::unique_ptr<BusRecording> recording_;
  std::unique_ptr<ServedDevice> device_;
};

// The bus of a recording, and the daemon on it where they are its own.
struct RecordedBus {
  std::unique_ptr<ChildProgram> bus = {};
  std::unique_ptr<ChildProgram> daemon = {};
  std::string address = {};
};

// Returns what has gone wrong; or nothing.
std::string startOwn(const RecordArguments& arguments, const std::string& text,
                     const PlayConstants& constants, RecordedBus& own) {
  std::string error;
  own.bus = ChildProgram::start(
      {.command = {"dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog",
                   "--address=unix:tmpdir=/tmp", "--print-address=1"},
       .output = CHILD_OUTPUT_PIPE},
      error);
  if (own.bus == nullptr) return "cannot start dbus-daemon: " + error;
  own.address = own.bus->firstLine();
  if (own.address.empty()) return "dbus-daemon does not start";
  ChildOptions options = {{arguments.daemon, "--debug"}, own.address, true, CHILD_OUTPUT_DROPPED};
  for (const auto& [name, value] : constants) options.command.push_back(setting(name, value));
  own.daemon = ChildProgram::start(options, error);
  if (own.daemon == nullptr) return "cannot start " + arguments.daemon + ": " + error;
  own.daemon->giveInput(text);
  return {};
}

std::string findGiven(const std::string& bus, RecordedBus& given) {
  given.address = bus;
  if (bus != "session") return {};
  gchar* const own = g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
  if (own == nullptr) return "there is no session bus";
  given.address = own;
  g_free(own);
  return {};
}

// Records until the command has ended.
int recordCommand(const RecordArguments& arguments, const std::string& address,
                  Recording& recording) {
  // What the client says does not mix with the session.
  const ChildOutput output = arguments.output == "-" ? CHILD_OUTPUT_TO_ERRORS : CHILD_OUTPUT_SHARED;
  std::string error;
  const std::unique_ptr<ChildProgram> client =
      ChildProgram::start({arguments.command, address, false, output}, error);
  if (client == nullptr) {
    return complain("cannot start " + arguments.command.front() + ": " + error);
  }
  recording.run([&client] { return client->hasEnded(); });
  if (!client->hasEnded()) return complain("the daemon has ended before the command");
  recording.finish();
  return client->hasSucceeded() ? 0 : STATUS_COMMAND_FAILED;
}

gboolean setTrue(gpointer flag) {
  *static_cast<bool*>(flag) = true;
  return G_SOURCE_CONTINUE;
}

// Records until somebody ends it.
int recordClients(Recording& recording) {
  static bool isOver = false;
  for (const int number : {SIGINT, SIGTERM}) g_unix_signal_add(number, setTrue, &isOver);
  recording.run([] { return isOver; });
  recording.finish();
  return 0;
}

int recordTo(std::FILE* out, const RecordArguments& arguments, const std::string& text,
             const PlayConstants& constants, KnownDevice known) {
  RecordedBus bus;
  const bool isOwn = arguments.bus.empty();
  std::string error =
      isOwn ? startOwn(arguments, text, constants, bus) : findGiven(arguments.bus, bus);
  if (!error.empty()) return complain(error);
  Recording recording(arguments, out);
  error = recording.connect(bus.address);
  if (!error.empty()) return complain("cannot see the bus: " + error);
  if (isOwn && !recording.waitForService(*bus.daemon)) return complain("the daemon does not start");
  if (!recording.begin(text, constants, std::move(known))) {
    return complain("no daemon is on the bus");
  }
  if (!arguments.command.empty()) return recordCommand(arguments, bus.address, recording);
  std::fprintf(stderr, "ostrel-play: recording on %s until SIGINT\n", bus.address.c_str());
  return recordClients(recording);
}

}  // namespace

int record(const RecordArguments& arguments, const std::string& name, const std::string& text,
           const PlayConstants& constants) {
  // A daemon that ends before it has read all says why itself.
  static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
  std::unique_ptr<Device> device = startTextDevice(name, text, constants);
  if (device == nullptr) return complain("there is no device of " + name + " to record");
  std::optional<KnownDevice> known = device->known();
  if (!known) return complain("the device has more than 1000000 instances");
  device.reset();  // one lives at a time
  std::FILE* const out =
      arguments.output == "-" ? stdout : std::fopen(arguments.output.c_str(), "we");
  if (out == nullptr) {
    return complain("cannot write " + arguments.output + ": " + std::strerror(errno));
  }
  int status = recordTo(out, arguments, text, constants, *std::move(known));
  const bool hasFailed = std::ferror(out) != 0;
  if ((out == stdout ? std::fflush(out) : std::fclose(out)) != 0 || hasFailed) {
    status = complain("cannot write " + arguments.output + ": " + std::strerror(errno));
  }
  return status;
}

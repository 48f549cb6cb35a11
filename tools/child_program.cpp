#include "tools/child_program.h"

#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

namespace {

void noteEnd(GObject* /*process*/, GAsyncResult* /*result*/, gpointer data) {
  const std::unique_ptr<std::shared_ptr<bool>> hasEnded(static_cast<std::shared_ptr<bool>*>(data));
  **hasEnded = true;
}

// In the child: whatever ends this process, it does not stay behind.
void endWithParent(gpointer /*data*/) { prctl(PR_SET_PDEATHSIG, SIGTERM); }

GSubprocessFlags flagsOf(const ChildOptions& options) {
  unsigned flags =
      options.takesInput ? G_SUBPROCESS_FLAGS_STDIN_PIPE : G_SUBPROCESS_FLAGS_STDIN_INHERIT;
  if (options.output == CHILD_OUTPUT_DROPPED) flags |= G_SUBPROCESS_FLAGS_STDOUT_SILENCE;
  if (options.output == CHILD_OUTPUT_PIPE) {
    flags |= G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_SILENCE;
  }
  return static_cast<GSubprocessFlags>(flags);
}

}  // namespace

std::unique_ptr<ChildProgram> ChildProgram::start(const ChildOptions& options, std::string& error) {
  GSubprocessLauncher* const launcher = g_subprocess_launcher_new(flagsOf(options));
  g_subprocess_launcher_setenv(launcher, "DBUS_SESSION_BUS_ADDRESS", options.busAddress.c_str(),
                               TRUE);
  g_subprocess_launcher_set_child_setup(launcher, endWithParent, nullptr, nullptr);
  if (options.output == CHILD_OUTPUT_TO_ERRORS) {
    g_subprocess_launcher_take_stdout_fd(launcher, dup(STDERR_FILENO));
  }
  std::vector<const gchar*> words;
  for (const std::string& word : options.command) words.push_back(word.c_str());
  words.push_back(nullptr);
  GError* failure = nullptr;
  GSubprocess* const process = g_subprocess_launcher_spawnv(launcher, words.data(), &failure);
  g_object_unref(launcher);
  if (process != nullptr) return std::unique_ptr<ChildProgram>(new ChildProgram(process));
  error = failure->message;
  g_error_free(failure);
  return nullptr;
}

ChildProgram::ChildProgram(GSubprocess* process) : process_(process) {
  g_subprocess_wait_async(process_, nullptr, noteEnd, new std::shared_ptr<bool>(hasEnded_));
}

ChildProgram::~ChildProgram() {
  g_subprocess_send_signal(process_, SIGTERM);
  g_subprocess_wait(process_, nullptr, nullptr);
  g_object_unref(process_);
}

void ChildProgram::giveInput(const std::string& text) {
  // A program that does not read to the end says why itself.
  GOutputStream* const input = g_subprocess_get_stdin_pipe(process_);
  g_output_stream_write_all(input, text.data(), text.size(), nullptr, nullptr, nullptr);
  g_output_stream_close(input, nullptr, nullptr);
}

bool ChildProgram::hasSucceeded() const { return g_subprocess_get_successful(process_) != FALSE; }

std::string ChildProgram::firstLine() {
  GDataInputStream* const lines = g_data_input_stream_new(g_subprocess_get_stdout_pipe(process_));
  gchar* const line = g_data_input_stream_read_line(lines, nullptr, nullptr, nullptr);
  std::string text = line == nullptr ? "" : line;
  g_free(line);
  // The pipe stays open for what is written later.
  g_filter_input_stream_set_close_base_stream(G_FILTER_INPUT_STREAM(lines), FALSE);
  g_object_unref(lines);
  return text;
}

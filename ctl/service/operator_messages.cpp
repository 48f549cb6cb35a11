#include "ctl/service/operator_messages.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

// Before the header that uses it.
#define G_LOG_DOMAIN "ostrelctl"
#include <glib.h>

#include "ctl/service/exit_status.h"

namespace {

constexpr int ERROR = 3;
constexpr int WARNING = 4;
constexpr int INFORMATION = 6;

// Whether standard error goes to the journal: JOURNAL_STREAM names its device and inode. Somebody
// may have led standard error elsewhere since.
bool isJournalThere() {
  const char* const stream = std::getenv("JOURNAL_STREAM");
  struct stat status = {};
  if (stream == nullptr || fstat(STDERR_FILENO, &status) != 0) return false;
  return stream == std::to_string(status.st_dev) + ":" + std::to_string(status.st_ino);
}

// Returns whether the journal has taken it.
bool tellJournal(const MessageKind& kind, const std::string& text, const MessageFields& fields) {
  const std::string priority = std::to_string(kind.priority);
  const std::string transaction = fields.transaction ? std::to_string(*fields.transaction) : "";
  std::vector<GLogField> all = {{"MESSAGE", text.c_str(), -1},
                                {"MESSAGE_ID", kind.id, -1},
                                {"PRIORITY", priority.c_str(), -1},
                                {"SYSLOG_IDENTIFIER", "ostrelctl", -1}};
  if (!fields.parameter.empty()) all.push_back({"PARAMETER", fields.parameter.c_str(), -1});
  if (fields.transaction) all.push_back({"TRANSACTION", transaction.c_str(), -1});
  const GLogLevelFlags level = kind.priority == ERROR     ? G_LOG_LEVEL_CRITICAL
                               : kind.priority == WARNING ? G_LOG_LEVEL_WARNING
                                                          : G_LOG_LEVEL_INFO;
  return g_log_writer_journald(level, all.data(), all.size(), nullptr) == G_LOG_WRITER_HANDLED;
}

}  // namespace

const std::vector<MessageKind>& messageKinds() {
  static const std::vector<MessageKind> kinds = {
      {"85f03044bd3b4fb797297e766d68df9f", WARNING, "refused: the default of "},
      {"547694832f524f1a9cedc21136840dab", WARNING, "refused: "},
      {"7bf346d0df1b4870bcb82b8881a386fc", WARNING, "absent: "},
      {"5a3d277fe8ed4b59b621a142feb2e05c", WARNING, "unknown: "},
      {"40cea93ef4f140f2b14a8923a247b54b", WARNING, "never at rest: "},
      {"687486af5aaf42c3abbe8e39692272a5", ERROR, "cannot say that the device is ready: "},
      {"f235121f03d242488b3b2231c1e950ab", WARNING, "nothing is restored: "},
      {"c40768e81fa84657b9e6e037deb0197d", INFORMATION, "kept "},
      {"c81d26c9adbd41fd99230919d5fb6599", ERROR, "cannot write "},
      {"b7acd8c31ad347a681f0a27bfb09c8a9", WARNING, "nothing is kept: "},
      {"402a0cf80acc4f9c8b898ee0066e2703", INFORMATION, "the service has gone"},
      {"799d725f6cd84c8ca3b3a2d02b129837", INFORMATION, "the service is there"},
  };
  return kinds;
}

void tellOperator(OperatorMessage message, const std::string& rest, const MessageFields& fields) {
  const MessageKind& kind = messageKinds()[message];
  const std::string text = kind.start + rest;
  std::fflush(stdout);
  if (!isJournalThere() || !tellJournal(kind, text, fields)) complain(text);
}

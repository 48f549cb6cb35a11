// ostrel-check: what is wrong with definition texts, before a device has them.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "base/terminal.h"
#include "check/report_json.h"
#include "check/report_sarif.h"
#include "check/report_text.h"
#include "tools/check_arguments.h"
#include "tools/input_file.h"
#include "vid_std.h"

namespace {

constexpr int STATUS_ERRORS = 1;
constexpr int STATUS_FAILED = 2;

// Checks the texts, and reports each at once where it is for a person.
class CheckRun {
 public:
  explicit CheckRun(const CheckArguments& arguments)
      : arguments_(arguments),
        style_{isColoured(STDOUT_FILENO), arguments.showsAllowed, arguments.showsUndecided} {}

  void check(const std::string& name) {
    std::string text;
    const int error = readInputFile(name.c_str(), text);
    if (error != 0) {
      std::fprintf(stderr, "ostrel-check: cannot read %s: %s\n", name.c_str(),
                   std::strerror(error));
      hasFailed_ = true;
      return;
    }
    const std::string shownName = name == "-" ? "<stdin>" : name;
    FileReport file = {std::make_unique<SourceText>(shownName, std::move(text)), {}};
    file.report = checkText(*file.source, arguments_.options);
    if (!file.report.failure.empty()) {
      std::fprintf(stderr, "ostrel-check: cannot check %s: %s\n", name.c_str(),
                   file.report.failure.c_str());
      hasFailed_ = true;
      return;
    }
    arguments_.levels.apply(file.report);
    if (arguments_.isQuiet) keepErrors(file.report);
    hasFoundErrors_ = hasFoundErrors_ || hasErrors(file.report);
    if (arguments_.format == FORMAT_TEXT) {
      writeText(file, style_, stdout);
    } else {
      files_.push_back(std::move(file));
    }
  }

  // Writes what is left to write. Returns the status of the process.
  int finish() {
    if (arguments_.format == FORMAT_JSON) write(jsonReport(files_));
    if (arguments_.format == FORMAT_SARIF) write(sarifReport(files_));
    if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
      std::fprintf(stderr, "ostrel-check: cannot write: %s\n", std::strerror(errno));
      hasFailed_ = true;
    }
    if (hasFailed_) return STATUS_FAILED;
    return hasFoundErrors_ ? STATUS_ERRORS : 0;
  }

 private:
  static void write(const std::string& text) { std::fwrite(text.data(), 1, text.size(), stdout); }

  const CheckArguments& arguments_;
  const TextStyle style_;
  std::vector<FileReport> files_;  // for the formats that are one document
  bool hasFoundErrors_ = false;
  bool hasFailed_ = false;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    const CheckArguments arguments = parseCheckArguments(argc, argv);
    initVidStdTables();
    CheckRun run(arguments);
    for (const std::string& name : arguments.files) run.check(name);
    return run.finish();
  } catch (const std::bad_alloc&) {
    std::fprintf(stderr, "ostrel-check: memory is exhausted\n");
    return STATUS_FAILED;
  }
}

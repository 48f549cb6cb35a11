#include "tools/play_coverage.h"

#include <cstring>

#include "check/printable.h"
#include "coverage/tracefile.h"
#include "tools/output_file.h"

namespace {

// Names of a text may hold what a terminal acts on.
void printLine(std::FILE* out, const std::string& line) {
  std::fprintf(out, "%s\n", printable(line).c_str());
}

}  // namespace

PlayCoverage::PlayCoverage(const PlayArguments& arguments, const std::string& definitions)
    : arguments_(arguments),
      source_(arguments.definitions == "-" ? "<stdin>" : arguments.definitions) {
  if (arguments.asksCoverage()) text_ = std::make_unique<TextCoverage>(definitions);
}

int PlayCoverage::report(std::FILE* out) const {
  if (text_ == nullptr) return 0;
  if (arguments_.summarizesCoverage || arguments_.explores) {
    printLine(out, coverageSummary(*text_, source_));
  }
  const bool isFailed = isTooLittle();
  if (isFailed || arguments_.explores) {
    for (const std::string& line : missingCoverage(*text_, source_)) printLine(out, line);
  }
  const std::string& file = arguments_.coverageFile;
  const int error = file.empty() ? 0 : writeOutputFile(file, tracefile(*text_, source_));
  if (error == 0) return isFailed ? 1 : 0;
  std::fprintf(stderr, "ostrel-play: cannot write %s: %s\n", file.c_str(), std::strerror(error));
  return 2;
}

// All is 100 percent, whatever a division makes of it.
bool PlayCoverage::isTooLittle() const {
  if (!arguments_.leastPercent) return false;
  const CoverageTotals totals = text_->totals();
  return !totals.isFull() && totals.percent() < *arguments_.leastPercent;
}

// Fuzzes the checker: any bytes are checked with all proofs, and reported in every format. A first
// line "#NAME=VALUE[,VALUE...]" gives a constant, so that there are variants.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "base/system_log.h"
#include "check/constant_choices.h"
#include "check/report_json.h"
#include "check/report_sarif.h"
#include "check/report_text.h"
#include "check/text/finding_codes.h"
#include "deflang/text/definition_grammar.h"
#include "fuzz/demand.h"
#include "fuzz/fuzz_input.h"
#include "fuzz/fuzz_target.h"
#include "fuzz/pieces.h"
#include "sw/parm/build/builder.h"
#include "tests/support/end_observer.h"
#include "tests/support/lines.h"
#include "vid_std.h"

namespace {

// Each variant is a proof of its own.
constexpr size_t MOST_VARIANTS = 4;

ConstantChoices choicesOf(std::string_view text) {
  ConstantChoices choices;
  const std::string_view first = text.substr(0, text.find('\n'));
  const bool isChoice =
      first.starts_with('#') && addConstantChoice(first.substr(1), choices).empty();
  return isChoice && variantsOf(choices).size() <= MOST_VARIANTS ? choices : ConstantChoices();
}

void expectPlace(const SourceText& source, const TextPlace& at, const std::string& what) {
  if (at.line == 0) return;
  demand(at.line <= std::max(source.lineCount(), 1U), "on no line: ", what);
  demand(size_t{at.column} + at.length <= source.line(at.line).size(), "not on line ",
         std::to_string(at.line), ": ", what);
}

void expectFinding(const SourceText& source, const Finding& finding) {
  demand(findFindingCode(finding.code) != nullptr, "no code ", finding.code);
  demand(!finding.text.empty(), "nothing is said of ", finding.code);
  expectPlace(source, finding.at, finding.text);
  for (const RelatedPlace& related : finding.related) expectPlace(source, related.at, related.text);
  if (finding.proposal) expectPlace(source, finding.proposal->at, finding.proposal->text);
}

void expectFindings(const FileReport& file) {
  for (const auto* findings :
       {&file.report.findings, &file.report.allowed, &file.report.undecided}) {
    for (const Finding& finding : *findings) expectFinding(*file.source, finding);
  }
}

std::string writtenText(const FileReport& file, const TextStyle& style) {
  char* text = nullptr;
  size_t size = 0;
  FILE* const out = open_memstream(&text, &size);
  demand(out != nullptr, "no stream");
  writeText(file, style, out);
  fclose(out);
  std::string result(text, size);
  free(text);
  return result;
}

void expectReports(FileReport file) {
  const bool isSilent = file.report.findings.empty() && file.report.undecided.empty();
  demand(writtenText(file, {}).empty() == isSilent, "findings without a report, or the reverse");
  demand(isSilent || !writtenText(file, {true, true, true}).empty(), "less is shown of all");
  std::vector<FileReport> files;
  files.push_back(std::move(file));
  for (const std::string& json : {jsonReport(files), sarifReport(files)}) {
    demand(nlohmann::json::accept(json), "this is no JSON: ", json);
  }
}

// A text as the daemon reads it.
struct DaemonsReading {
  explicit DaemonsReading(std::string_view text) {
    const std::vector<std::string> pieces = piecesOf(text);
    TextCursor cursor(pulledFrom(pieces), records.arena());
    EndObserver observer;
    isRead = readDefinitions(cursor, records, &observer) == PARSE_DONE;
    isUnfinished = observer.isUnfinished;
  }
  ParameterRecords records;
  bool isRead = false;
  bool isUnfinished = false;
};

// Whether the daemon starts with `reading`, in the variant of `constants`.
bool isTaken(const DaemonsReading& reading, const NamedValues& constants) {
  if (!reading.isRead) return false;
  DiagnosticCollector diagnostics;
  Database database;
  for (const auto& [name, value] : constants) {
    static_cast<void>(database.defineConstant(name, value));
  }
  return buildDefinitions(diagnostics, reading.records, LineTexts(), false, database) == 0;
}

// The daemon and the checker refuse the same texts; that one ends within a definition is an error
// to the checker alone.
void expectAgreement(const FileReport& file, const ConstantChoices& choices) {
  const std::vector<NamedValues> variants = variantsOf(choices);
  const DaemonsReading reading(file.source->text());
  const bool isRefused = !std::ranges::all_of(
      variants, [&](const NamedValues& constants) { return isTaken(reading, constants); });
  const std::vector<Finding>& findings = file.report.findings;
  const bool saysSo = std::ranges::any_of(findings, [](const Finding& finding) {
    return findFindingCode(finding.code)->isRefusal(levelOf(finding));
  });
  demand(!isRefused || saysSo, "the daemon refuses what has no error");
  demand(isRefused || reading.isUnfinished || !saysSo, "the daemon takes what has an error");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const bool haveStandards = (initVidStdTables(), true);
  demand(haveStandards, "no video standards");
  const LogRedirection silence([](const std::string&) {});
  const std::string text(textOf(data, size));
  CheckOptions options;
  options.constants = choicesOf(text);
  FileReport file = {std::make_unique<SourceText>("text", text), {}};
  file.report = checkText(*file.source, options);
  expectFindings(file);
  expectAgreement(file, options.constants);
  expectReports(std::move(file));
  return 0;
}

#include "explore/proved.h"

#include <map>
#include <string_view>
#include <tuple>
#include <utility>

#include "check/checker.h"
#include "check/text/read_text.h"

namespace {

// The statements of a text by their places.
class PlacedStatements {
 public:
  PlacedStatements(const TextLayout& layout, TextCoverage& coverage) {
    std::map<Key, StatementCoverage*> statements;
    for (StatementCoverage& statement : coverage.statements()) {
      const std::string& name = coverage.definitions()[statement.definition].name;
      statements[{name, statement.keyword, statement.place}] = &statement;
    }
    std::map<std::pair<std::string_view, std::string_view>, size_t> counts;
    for (const DefinitionLayout& definition : layout.definitions) {
      for (const StatementLayout& statement : definition.statements) {
        const std::string_view name = definition.record->name;
        const size_t place = counts[{name, statement.keyword}]++;
        const auto found = statements.find({name, statement.keyword, place});
        if (found != statements.end()) placed_.emplace(begin(statement), found->second);
      }
    }
  }

  // The statement that the place is in, or null.
  [[nodiscard]] StatementCoverage* at(const TextPlace& place) const {
    const auto next = placed_.upper_bound({place.line, place.column});
    return next == placed_.begin() ? nullptr : std::prev(next)->second;
  }

 private:
  using Key = std::tuple<std::string_view, std::string_view, size_t>;

  static std::pair<uint32_t, uint32_t> begin(const StatementLayout& statement) {
    return {statement.extent.from.line, statement.extent.from.column};
  }

  std::map<std::pair<uint32_t, uint32_t>, StatementCoverage*> placed_;
};

// Returns how many things are left out.
size_t leaveOut(std::string_view code, StatementCoverage& statement) {
  if (code == "always-true") return std::exchange(statement.isNeverFalse, true) ? 0 : 1;
  if (code == "unreachable") return std::exchange(statement.isNeverChosen, true) ? 0 : 1;
  if (code != "never-true") return 0;
  const size_t outcomes = std::exchange(statement.isNeverTrue, true) ? 0 : 1;
  // A control is asked whatever its condition is.
  if (statement.keyword.starts_with("ctrl")) return outcomes;
  return outcomes + (std::exchange(statement.isNeverChosen, true) ? 0 : 1);
}

}  // namespace

size_t leaveOutProved(const std::string& text, const ConstantChoices& choices, uint32_t seconds,
                      TextCoverage& coverage) {
  const SourceText source("text", text);
  const CheckReport report = checkText(source, {.constants = choices, .maxSeconds = seconds});
  Findings untold;
  ReadText read;
  readText(source, read, untold);
  const PlacedStatements statements(read.layout, coverage);
  size_t count = 0;
  for (const auto* findings : {&report.findings, &report.allowed}) {
    for (const Finding& finding : *findings) {
      StatementCoverage* const statement =
          finding.variant.empty() ? statements.at(finding.at) : nullptr;
      if (statement != nullptr) count += leaveOut(finding.code, *statement);
    }
  }
  return count;
}

#include "coverage/tracefile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace {

// Puts a list of lcov with its two totals behind it.
class Section {
 public:
  Section(std::string& out, const char* found, const char* hit)
      : out_(out), found_(found), hit_(hit) {}
  Section(const Section&) = delete;
  Section& operator=(const Section&) = delete;
  ~Section() = default;

  void add(const std::string& line, bool isHit) {
    out_ += line + "\n";
    share_.count(isHit);
  }
  void finish() {
    out_ += found_ + (":" + std::to_string(share_.all)) + "\n";
    out_ += hit_ + (":" + std::to_string(share_.reached)) + "\n";
  }

 private:
  std::string& out_;
  const char* found_;
  const char* hit_;
  CoverageShare share_;
};

using ByLine = std::map<uint32_t, std::vector<const StatementCoverage*>>;

ByLine statementsByLine(const TextCoverage& coverage) {
  ByLine lines;
  for (const StatementCoverage& statement : coverage.statements()) {
    lines[statement.line].push_back(&statement);
  }
  return lines;
}

void addFunctions(const TextCoverage& coverage, std::string& out) {
  for (const DefinitionCoverage& definition : coverage.definitions()) {
    out += "FN:" + std::to_string(definition.line) + "," + definition.name + "\n";
  }
  Section section(out, "FNF", "FNH");
  for (const DefinitionCoverage& definition : coverage.definitions()) {
    section.add("FNDA:" + std::to_string(definition.judged) + "," + definition.name,
                definition.judged > 0);
  }
  section.finish();
}

void addBranches(const ByLine& lines, std::string& out) {
  Section section(out, "BRF", "BRH");
  for (const auto& of : lines) {
    const uint32_t line = of.first;
    const std::vector<const StatementCoverage*>& statements = of.second;
    for (size_t block = 0; block < statements.size(); ++block) {
      const StatementCoverage& statement = *statements[block];
      if (!statement.hasCondition) continue;
      const bool isAsked = statement.whenTrue + statement.whenFalse > 0;
      const auto add = [&](int branch, uint64_t taken) {
        section.add("BRDA:" + std::to_string(line) + "," + std::to_string(block) + "," +
                        std::to_string(branch) + "," + (isAsked ? std::to_string(taken) : "-"),
                    taken > 0);
      };
      if (!statement.isNeverTrue) add(0, statement.whenTrue);
      if (!statement.isNeverFalse) add(1, statement.whenFalse);
    }
  }
  section.finish();
}

void addLines(const TextCoverage& coverage, std::string& out) {
  std::map<uint32_t, uint64_t> counts;
  const auto take = [&](uint32_t line, uint64_t count) {
    const auto [place, isNew] = counts.emplace(line, count);
    if (!isNew) place->second = std::min(place->second, count);
  };
  for (const DefinitionCoverage& definition : coverage.definitions()) {
    take(definition.line, definition.judged);
  }
  for (const StatementCoverage& statement : coverage.statements()) {
    if (!statement.isNeverChosen) take(statement.line, statement.chosen);
  }
  Section section(out, "LF", "LH");
  for (const auto& [line, count] : counts) {
    section.add("DA:" + std::to_string(line) + "," + std::to_string(count), count > 0);
  }
  section.finish();
}

std::string shown(const CoverageShare& share, const char* of) {
  return std::to_string(share.reached) + " of " + std::to_string(share.all) + " " + of;
}

// Rounded down, so that nothing but all is 100.
std::string percentText(const CoverageTotals& totals) {
  char text[16];
  const int length =
      std::snprintf(text, sizeof text, "%.1f %%", std::floor(totals.percent() * 10) / 10);
  return {text, static_cast<size_t>(length)};
}

const char* neverChosenText(std::string_view keyword) {
  if (keyword == "default") return "never gave the value of a reset";
  if (keyword == "valueChange") return "never replaced a value";
  if (keyword == "rangeDoc") return "never answered a query";
  if (keyword == "rangeValid") return "never had a say";
  return "was never judged";
}

}  // namespace

std::string tracefile(const TextCoverage& coverage, std::string_view source) {
  std::string out = "TN:\nSF:" + std::string(source) + "\n";
  addFunctions(coverage, out);
  addBranches(statementsByLine(coverage), out);
  addLines(coverage, out);
  return out + "end_of_record\n";
}

std::string coverageSummary(const TextCoverage& coverage, std::string_view source) {
  const CoverageTotals totals = coverage.totals();
  return percentText(totals) + " of " + std::string(source) + ": " +
         shown(totals.statements, "statements") + ", " +
         shown(totals.outcomes, "outcomes of conditions") + ", " +
         shown(totals.definitions, "definitions");
}

std::vector<std::string> missingCoverage(const TextCoverage& coverage, std::string_view source) {
  std::multimap<uint32_t, std::string> missing;
  const auto add = [&](uint32_t line, const std::string& name, const std::string& what) {
    missing.emplace(line, std::string(source) + ":" + std::to_string(line) + ": " + name + what);
  };
  for (const DefinitionCoverage& definition : coverage.definitions()) {
    if (definition.judged == 0) add(definition.line, definition.name, " was never judged");
  }
  for (const StatementCoverage& statement : coverage.statements()) {
    const DefinitionCoverage& definition = coverage.definitions()[statement.definition];
    if (definition.judged == 0) continue;  // which says enough
    const std::string name = definition.name + ": ";
    const std::string keyword(statement.keyword);
    const bool isNeverAsked =
        statement.hasCondition && statement.whenTrue + statement.whenFalse == 0;
    if (statement.chosen == 0 && !statement.isNeverChosen &&
        (!statement.hasCondition || statement.whenTrue > 0 || statement.isNeverTrue)) {
      add(statement.line, name, keyword + " " + neverChosenText(keyword));
    }
    if (!statement.hasCondition) continue;
    if (isNeverAsked && !statement.isNeverTrue && !statement.isNeverFalse) {
      add(statement.line, name, "the condition of " + keyword + " was never asked");
      continue;
    }
    if (statement.whenTrue == 0 && !statement.isNeverTrue) {
      add(statement.line, name, "the condition of " + keyword + " was never true");
    }
    if (statement.whenFalse == 0 && !statement.isNeverFalse) {
      add(statement.line, name, "the condition of " + keyword + " was never false");
    }
  }
  std::vector<std::string> lines;
  for (auto& [line, text] : missing) lines.push_back(std::move(text));
  return lines;
}

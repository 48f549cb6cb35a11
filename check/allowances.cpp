#include "check/allowances.h"

#include <limits>
#include <tuple>
#include <utility>

#include "deflang/text/text_cursor.h"

namespace {

constexpr const char* CODE = "unused-allowance";
constexpr std::string_view WHITE_SPACE = " \t\r\v\f";

bool isBefore(Position a, Position b) {
  return std::tie(a.line, a.column) < std::tie(b.line, b.column);
}

bool holds(const TextExtent& extent, Position at) {
  return !isBefore(at, extent.from) && isBefore(at, extent.to);
}

// Takes white space off the start of `rest`.
void skipSpace(std::string_view& rest) {
  const size_t word = rest.find_first_not_of(WHITE_SPACE);
  rest.remove_prefix(word == std::string_view::npos ? rest.size() : word);
}

bool skip(std::string_view& rest, std::string_view word) {
  if (!rest.starts_with(word)) return false;
  rest.remove_prefix(word.size());
  return true;
}

std::string_view withoutSpaceBehind(std::string_view text) {
  return text.substr(0, text.find_last_not_of(WHITE_SPACE) + 1);
}

// Where a definition ends. One that the text leaves open goes on to the next one.
Position endOf(const std::vector<DefinitionLayout>& definitions, size_t place) {
  const TextExtent& extent = definitions[place].extent;
  if (isBefore(extent.from, extent.to)) return extent.to;
  if (place + 1 < definitions.size()) return definitions[place + 1].extent.from;
  return {std::numeric_limits<uint32_t>::max(), 0};
}

// The statement that goes on behind `at`, or an empty extent.
TextExtent statementBehind(const DefinitionLayout& definition, Position at) {
  for (const StatementLayout& statement : definition.statements) {
    if (isBefore(at, statement.extent.to)) return statement.extent;
  }
  return {};
}

}  // namespace

Allowances::Allowances(const SourceText& source, const TextLayout& layout) : layout_(layout) {
  for (uint32_t number = 1; number <= source.lineCount(); ++number) {
    readLine(number, source.line(number));
  }
}

// Reads "# check: allow CODE, CODE"; every other line is none of ours.
void Allowances::readLine(uint32_t number, std::string_view line) {
  const auto columnOf = [&](std::string_view rest) {
    return static_cast<uint32_t>(line.size() - rest.size());
  };
  std::string_view rest = line;
  rest.remove_prefix(firstWord(line));
  const uint32_t start = columnOf(rest);
  if (!skip(rest, "#")) return;
  skipSpace(rest);
  if (!skip(rest, "check:")) return;
  line = withoutSpaceBehind(line);
  rest = withoutSpaceBehind(rest);
  skipSpace(rest);

  const bool isAllowance = skip(rest, "allow") && rest.find_first_of(WHITE_SPACE) == 0;
  if (!isAllowance) {
    wrong_.add({CODE,
                {number, start, static_cast<uint32_t>(line.size()) - start},
                "a \"# check:\" comment has the form \"# check: allow CODE, CODE\""});
    return;
  }
  const TextExtent extent = extentBehind({number, start});
  for (bool hasNext = true; hasNext;) {
    skipSpace(rest);
    const size_t comma = rest.find(',');
    hasNext = comma != std::string_view::npos;
    const std::string_view name = withoutSpaceBehind(rest.substr(0, comma));
    readCode({number, columnOf(rest), static_cast<uint32_t>(name.size())}, name, extent);
    if (hasNext) rest.remove_prefix(comma + 1);
  }
}

void Allowances::readCode(TextPlace at, std::string_view name, const TextExtent& extent) {
  const FindingCode* const code = findFindingCode(name);
  if (code != nullptr) {
    allowances_.push_back({code, at, extent});
    return;
  }
  Finding finding = {CODE, at, {}};
  const size_t space = name.find_first_of(WHITE_SPACE);
  if (name.empty()) {
    finding.text = "a code is missing here";
  } else if (space != std::string_view::npos && findFindingCode(name.substr(0, space)) != nullptr) {
    finding.text =
        "only a comma and a further code can follow a code; a reason has a line of its own";
    const auto length = static_cast<uint32_t>(name.find_first_not_of(WHITE_SPACE, space));
    finding.at.column += length;
    finding.at.length -= length;
  } else {
    finding.text = "there is no code \"" + std::string(name) + "\"";
    const FindingCode* const nearest = nearestFindingCode(name);
    if (nearest != nullptr) finding.proposal = Proposal{at, std::string(nearest->name)};
  }
  wrong_.add(std::move(finding));
}

TextExtent Allowances::extentBehind(Position comment) const {
  const std::vector<DefinitionLayout>& definitions = layout_.definitions;
  for (size_t place = 0; place < definitions.size(); ++place) {
    const TextExtent extent = {definitions[place].extent.from, endOf(definitions, place)};
    if (holds(extent, comment)) return statementBehind(definitions[place], comment);
    if (isBefore(comment, extent.from)) return extent;
  }
  return {};
}

bool Allowances::allow(const Finding& finding) {
  const FindingCode* const code = findFindingCode(finding.code);
  const bool isRefusal = code->isRefusal(levelOf(finding));
  bool isAllowed = false;
  for (Allowance& allowance : allowances_) {
    if (allowance.code != code) continue;
    if (!holds(allowance.extent, {finding.at.line, finding.at.column})) continue;
    (isRefusal ? allowance.hasMetRefusal : allowance.hasSilenced) = true;
    isAllowed = !isRefusal;
  }
  return isAllowed;
}

void Allowances::report(const std::function<bool(const FindingCode&)>& isAsked,
                        Findings& findings) const {
  for (const Finding& finding : wrong_.all()) findings.add(finding);
  for (const Allowance& allowance : allowances_) {
    if (allowance.hasSilenced) continue;
    const std::string code = "\"" + std::string(allowance.code->name) + "\"";
    if (allowance.hasMetRefusal) {
      findings.add({CODE, allowance.at,
                    "the daemon refuses a text with " + code + ", so it cannot be allowed"});
    } else if (!isBefore(allowance.extent.from, allowance.extent.to)) {
      findings.add(
          {CODE, allowance.at, "no statement or definition follows that could have " + code});
    } else if (isAsked(*allowance.code)) {
      findings.add({CODE, allowance.at, "there is no " + code + " to allow in what follows"});
    }
  }
}

#include "check/text/name_causes.h"

#include <algorithm>
#include <vector>

#include "base/nearest_word.h"
#include "check/text/foreign_quotes.h"
#include "check/text/name_words.h"
#include "check/text/record_expressions.h"
#include "check/text/wording.h"
#include "deflang/expression/vid_std_name.h"
#include "srcs/vid_std_figures.h"
#include "sw/parm/parm_name.h"

namespace {

constexpr size_t MOST_COMPARISONS = 2'000'000;
constexpr std::string_view PREFIX = "vidStd::";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isSameButCase(std::string_view a, std::string_view b) {
  const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; };
  return std::ranges::equal(a, b, {}, lower, lower);
}

Position movedBy(Position at, size_t columns) {
  return {at.line, at.column + static_cast<uint32_t>(columns)};
}

void addTexts(const ParameterRecord& record, std::set<std::string_view>& texts) {
  for (const StatementList<RangeStatement>* ranges : {&record.rangeValid, &record.rangeDoc}) {
    for (const RangeStatement& range : *ranges) {
      for (const RangeItem& item : range.items) {
        if (item.text) texts.insert(*item.text);
      }
    }
  }
  for (const DefaultStatement& value : record.defaults) {
    if (value.text) texts.insert(*value.text);
  }
  for (const Translation& translation : record.valueChange) {
    texts.insert({translation.source, translation.target});
  }
  forEachExpression(record, [&texts](const Expression& expression) {
    for (const Token& token : expression.tokens) {
      if (token.kind == TOKEN_STRING) texts.insert(token.text);
    }
  });
}

Finding proposing(std::string_view code, TextPlace at, const std::string& text,
                  const std::string& right) {
  return {code, at, text, {}, Proposal{at, right}};
}

// The parts of a name between "::" or ":" or dots.
std::vector<std::string_view> partsOf(std::string_view name) {
  std::vector<std::string_view> parts;
  while (!name.empty()) {
    const size_t end = std::min(name.find_first_of(":."), name.size());
    if (end > 0) parts.push_back(name.substr(0, end));
    name.remove_prefix(std::min(end + 1, name.size()));
  }
  return parts;
}

bool isFigure(std::string_view word) {
  return std::ranges::any_of(vidFigures(),
                             [word](const vidFigure_t& figure) { return word == figure.name; });
}

std::string allFigures() {
  std::vector<std::string_view> names;
  for (const vidFigure_t& figure : vidFigures()) names.emplace_back(figure.name);
  return listOf(names);
}

}  // namespace

NameCauses::NameCauses(const TextFacts& facts, const NamedValues& constants)
    : facts_(facts), constants_(constants), oddNames_(facts) {
  for (const ParameterRecord* record : facts.records().inNameOrder()) {
    if (record->access == ACCESS_NONE) continue;
    (record->access == ACCESS_INDEX ? indices_ : parameters_).push_back(record->name);
    addTexts(*record, texts_);
  }
}

std::optional<std::string> NameCauses::nearest(std::string_view name, NameKind kind) {
  const std::string key = std::to_string(kind) + std::string(name);
  if (const auto known = known_.find(key); known != known_.end()) return known->second;
  comparisons_ += parameters_.size() + indices_.size();
  NearestWord nearest(name);
  if (comparisons_ <= MOST_COMPARISONS) {
    if (kind != NAME_PARAMETER) nearest.offer(indices_);
    if (kind != NAME_INDEX) nearest.offer(parameters_);
  }
  if (kind == NAME_ANY) {
    for (const auto& [constant, value] : constants_) nearest.offer(constant);
  }
  const std::optional<std::string_view> found = nearest.found();
  return known_[key] = found ? std::optional(std::string(*found)) : std::nullopt;
}

// A figure that the catalogue lacks, or a name that is written like one.
Finding NameCauses::unknownFigure(Position at, std::string_view name) const {
  const size_t separator = name.find("::", PREFIX.size());
  const bool isMisspelt = !name.starts_with(PREFIX);
  if (isMisspelt &&
      splitVidStdName(std::string(PREFIX) + std::string(name.substr(PREFIX.size())))) {
    const TextPlace word = placeAt(at, PREFIX.size() - 2);
    return proposing("unknown-figure", word, "there is no " + quoted(name), "vidStd");
  }
  if (separator == std::string_view::npos || isMisspelt) {
    return {"unknown-figure", facts_.tokenAt(at),
            quoted(name) + " is no figure: its form is vidStd::P::F, where P is a parameter"};
  }
  const std::string_view figure = name.substr(separator + 2);
  NearestWord nearest(figure);
  for (const vidFigure_t& known : vidFigures()) nearest.offer(known.name);
  // Blanks in brackets, which the name has no more, would shift the place.
  const TextPlace whole = facts_.tokenAt(at);
  const bool isAsWritten = whole.length == name.size() && !figure.empty();
  const TextPlace place = isAsWritten ? placeAt(movedBy(at, separator + 2), figure.size()) : whole;
  Finding finding = {"unknown-figure", place, "a video standard has no figure " + quoted(figure)};
  if (nearest.found() && isAsWritten) {
    finding.proposal = {place, std::string(*nearest.found())};
  } else if (!nearest.found()) {
    finding.text += ": it has " + allFigures();
  }
  return finding;
}

// A name that has a figure among its parts, and is not written as one: P::F, vidStd.P.F, or
// vidStd::F::P. Where P is clear, it is proposed.
std::optional<Finding> NameCauses::misspeltFigure(Position at, std::string_view name) {
  std::vector<std::string_view> parts = partsOf(name);
  std::string_view figure;
  std::erase_if(parts, [&](std::string_view part) {
    if (isSameButCase(part, "vidStd")) return true;
    const bool isName = facts_.defined(baseName(part)) != nullptr;
    if (!figure.empty() || isName || !isFigure(part)) return false;
    figure = part;
    return true;
  });
  if (figure.empty() || parts.size() != 1) return {};
  const std::string_view parameter = parts.front();
  const std::string base(baseName(parameter));
  const bool isKnown = facts_.defined(base) != nullptr || facts_.isConstant(base);
  const std::optional<std::string> near = isKnown ? std::nullopt : nearest(base, NAME_ANY);
  Finding finding = {"unknown-figure", facts_.tokenAt(at),
                     quoted(name) +
                         " is no figure: its form is vidStd::P::F, where P is a "
                         "parameter and F is " +
                         std::string(figure)};
  const std::string values(parameter.substr(base.size()));
  if (isKnown || near) {
    finding.proposal = {finding.at, std::string(PREFIX) + near.value_or(base) + values +
                                        "::" + std::string(figure)};
  }
  return finding;
}

// What cannot be a name, however the text goes on.
std::optional<Finding> NameCauses::noName(Position at, std::string_view name) const {
  const TextPlace place = facts_.tokenAt(at);
  const char first = name.front();
  if (std::optional<Finding> finding = foreignQuotationAt(facts_, at)) return finding;
  if (first == '#') {
    return Finding{"comment-after-code", facts_.restOfLine(at),
                   "a comment has to be on a line of its own"};
  }
  if (isSameButCase(name, "true") || isSameButCase(name, "false")) {
    return proposing("undefined-name", place, "there is no " + quoted(name) + ": a truth is 1 or 0",
                     isSameButCase(name, "true") ? "1" : "0");
  }
  const Expression* const whole = facts_.expressionAt(at);
  const bool isCompared = whole != nullptr && whole->tokens.size() > 1;
  if (isCompared && name.find("..") != std::string_view::npos) {
    return Finding{"undefined-name", place,
                   quoted(name) +
                       " is no value: compare with both ends of the span, as in "
                       "(a >= 1 && a <= 9)"};
  }
  if (name.find("..") != std::string_view::npos) {
    return Finding{"undefined-name", place,
                   quoted(name) +
                       " is no name: the dots of a span are outside of the parentheses, "
                       "as in (a)..(b)"};
  }
  if (name.size() > 1 && (name.back() == ',' || name.back() == ';')) {
    return Finding{
        "undefined-name", place,
        quoted(name) + " is no name: an expression has no " + quoted(name.substr(name.size() - 1))};
  }
  if (const std::string_view number = numberBeforeUnit(name); !number.empty()) {
    return proposing("undefined-name", place, quoted(name) + " has a unit, and a number has none",
                     std::string(number));
  }
  if (isDigit(first)) {
    const bool isOctal = first == '0' && std::ranges::all_of(name, isDigit);
    const bool isDecimal = name.find('.') != std::string_view::npos;
    return Finding{
        "undefined-name", place,
        quoted(name) + (isOctal     ? " is no number: with a leading 0 it is octal"
                        : isDecimal ? " is no number: numbers are whole"
                                    : " is neither a number nor a name: a text has to be "
                                      "in quotes")};
  }
  return {};
}

// A defined name that no expression can name, because of a sign in it: "a-b" is read as a
// difference. Or one that is defined with underscores. `at` is that of a part of it.
std::optional<Finding> NameCauses::unusableName(Position at) const {
  constexpr std::string_view ENDS = "()[]{},\" \t\r";
  const std::string_view line = facts_.source().line(at.line);
  if (at.column >= line.size()) return {};
  const size_t before = line.find_last_of(ENDS, at.column);
  const size_t from = before == std::string_view::npos ? 0 : before + 1;
  const std::string_view name = line.substr(from, line.find_first_of(ENDS, at.column) - from);
  if (isNameOfExpressions(name)) return {};
  const TextPlace place = placeAt({at.line, static_cast<uint32_t>(from)}, name.size());
  if (const ParameterRecord* const record = facts_.defined(name)) {
    return Finding{"undefined-name",
                   place,
                   unusableNameText(name),
                   {{facts_.nameOf(*record), "defined here"}}};
  }
  const std::string right = withUnderscores(name);
  if (!isNameOfExpressions(right) || facts_.defined(right) == nullptr) return {};
  return proposing("undefined-name", place, "there is no " + quoted(name), right);
}

Finding NameCauses::undefined(Position at, std::string_view name) {
  if (std::optional<Finding> finding = unusableName(at)) return *std::move(finding);
  if (std::optional<Finding> finding = noName(at, name)) return *std::move(finding);
  const std::string_view referenced = referencedName(name);
  const bool hasFigure = referenced.size() != name.size();
  const std::string_view marker = name.substr(0, PREFIX.size() - 1);
  if (!hasFigure && name.find_first_of(":.") != std::string_view::npos) {
    if (std::optional<Finding> finding = misspeltFigure(at, name)) return *std::move(finding);
  }
  if (!hasFigure && isSameButCase(marker, "vidStd:")) return unknownFigure(at, name);
  const std::string base(baseName(referenced));
  const TextPlace place = placeAt(hasFigure ? movedBy(at, PREFIX.size()) : at, base.size());
  const std::string missing = "there is no " + quoted(base);
  if (texts_.contains(base) && !hasFigure) {
    const std::string right = "\"" + base + "\"";
    return proposing("unquoted-text", place, missing + ": a text has to be in quotes", right);
  }
  if (std::optional<Finding> finding = oddNames_.usedPlainly(base, place)) return *finding;
  const std::optional<std::string> near = nearest(base, NAME_ANY);
  if (near) {
    // A name in capitals may be meant to be a constant, even where a parameter is called alike.
    if (isConstantName(base) && !isConstantName(*near)) {
      return proposing("undefined-name", place,
                       missing + ", nor is it given as a constant by -D " + base + "=...", *near);
    }
    return proposing("undefined-name", place, missing, *near);
  }
  if (isConstantName(base)) {
    return {"missing-constant", place,
            missing + ": as a constant of the command line it is given by -D " + base + "=..."};
  }
  return {"undefined-name", place,
          missing + " in the text: a constant is given by -D " + base +
              "=..., and a text has to be in quotes"};
}

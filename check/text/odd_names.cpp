#include "check/text/odd_names.h"

#include "check/text/foreign_quotes.h"
#include "check/text/wording.h"
#include "deflang/text/text_pieces.h"

std::string_view plainName(std::string_view name) {
  constexpr std::string_view SIGNS = ":;,=";
  if (name.starts_with(BYTE_ORDER_MARK)) name.remove_prefix(BYTE_ORDER_MARK.size());
  while (!name.empty() && SIGNS.find(name.back()) != std::string_view::npos) name.remove_suffix(1);
  const bool isQuoted = name.size() > 2 && name.front() == '"' && name.back() == '"';
  if (isQuoted) return name.substr(1, name.size() - 2);
  const std::optional<ForeignQuotation> foreign = foreignQuotation(name);
  const bool isForeign = foreign && foreign->isClosed && foreign->whole.size() == name.size();
  return isForeign ? foreign->inner : name;
}

OddNames::OddNames(const TextFacts& facts) : facts_(facts) {
  for (const ParameterRecord* record : facts.records().inNameOrder()) {
    if (record->access == ACCESS_NONE) continue;
    const std::string_view plain = plainName(record->name);
    const bool isOdd = !plain.empty() && plain.size() < record->name.size();
    if (isOdd && facts.defined(plain) == nullptr) records_.emplace(plain, record);
  }
}

Finding OddNames::findingOf(std::string_view plain, const ParameterRecord& record) const {
  const TextPlace at = facts_.nameOf(record);
  const bool hasMark = record.name.starts_with(BYTE_ORDER_MARK);
  const bool hasQuotes = record.name.front() != plain.front();
  return {"odd-name",
          at,
          hasMark ? "the name of this definition has a byte order mark in front"
                  : "the name of this definition is " + std::string(record.name) +
                        (hasQuotes ? " with its quotes" : " with the sign at its end"),
          {},
          Proposal{at, std::string(plain)}};
}

std::optional<Finding> OddNames::usedPlainly(std::string_view name, const TextPlace& use) const {
  const auto found = records_.find(name);
  if (found == records_.end()) return {};
  Finding finding = findingOf(name, *found->second);
  finding.level = LEVEL_ERROR;
  finding.related.push_back({use, "there is no " + quoted(name)});
  return finding;
}

std::vector<Finding> OddNames::findings() const {
  std::vector<Finding> all;
  for (const auto& [plain, record] : records_) all.push_back(findingOf(plain, *record));
  return all;
}

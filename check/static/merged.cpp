#include <algorithm>

#include "check/static/static_checks.h"
#include "check/static/token_place.h"

namespace {

// Whether the definition whose name is at `name` is written as that of an index.
bool isWrittenAsIndex(const SourceText& source, TextPlace name) {
  constexpr std::string_view WORD = "index";
  std::string_view rest = source.line(name.line).substr(name.column + name.length);
  const size_t first = rest.find_first_not_of(" \t");
  if (first == std::string_view::npos) return false;
  rest.remove_prefix(first);
  return rest.starts_with(WORD) && rest.find_first_of(" \t{", WORD.size()) == WORD.size();
}

// Whether the builder has found fault with a statement of a later part because of an earlier one.
bool isBetweenParts(const Finding& finding, const NamedDefinition& definition, size_t part) {
  constexpr std::string_view CODES[] = {"ambiguous-translation", "conflicting-conditions",
                                        "repeated-condition", "same-condition",
                                        "second-index-list"};
  if (std::ranges::find(CODES, finding.code) == std::end(CODES)) return false;
  if (finding.related.empty()) return false;
  const auto isStatement = [&](const StatementLayout* statement) {
    const TextPlace at = {statement->extent.from.line, statement->extent.from.column, 0};
    const TextPlace end = {statement->extent.to.line, statement->extent.to.column, 0};
    return at <= finding.at && finding.at < end;
  };
  return std::ranges::any_of(definition.statements, isStatement) &&
         definition.partOf(finding.at) == part &&
         definition.partOf(finding.related.front().at) != part;
}

class MergedCheck {
 public:
  MergedCheck(StaticContext& context, const NamedDefinition& definition)
      : context_(context), definition_(definition) {}

  void check(size_t part) {
    const TextPlace name = definition_.laterNames[part - 1];
    if (isToldOfStatement(part, name) || isToldOfIndex(name)) return;
    context_.add({"merged",
                  name,
                  inQuotes(definition_.record->name) +
                      " is defined already, and the statements of both definitions count, and the "
                      "last access word; write them as one, or choose another name",
                  {{definition_.name, "defined here"}}});
  }

 private:
  // What the daemon refuses, or warns of, is told with this as its reason.
  bool isToldOfStatement(size_t part, TextPlace name) {
    bool isTold = false;
    context_.findings().forEach([&](Finding& finding) {
      if (!isBetweenParts(finding, definition_, part)) return;
      isTold = true;
      finding.related.push_back(
          {name, inQuotes(definition_.record->name) +
                     " is defined here again, and the statements of both definitions count"});
    });
    return isTold;
  }

  // An index that a later definition makes a parameter is no index where it is named.
  bool isToldOfIndex(TextPlace name) {
    if (definition_.isIndex() || !isWrittenAsIndex(context_.source(), definition_.name)) {
      return false;
    }
    bool isTold = false;
    context_.findings().forEach([&](Finding& finding) {
      if (finding.code != "not-an-index" || finding.related.front().at != definition_.name) return;
      isTold = true;
      finding.related.push_back({name, "defined here again, and the last access word counts"});
    });
    return isTold;
  }

  StaticContext& context_;
  const NamedDefinition& definition_;
};

}  // namespace

void checkMerged(StaticContext& context) {
  for (const NamedDefinition& definition : context.definitions()) {
    MergedCheck check(context, definition);
    for (size_t part = 1; part <= definition.laterNames.size(); ++part) check.check(part);
  }
}

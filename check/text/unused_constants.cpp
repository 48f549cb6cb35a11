#include "check/text/unused_constants.h"

#include "check/text/record_expressions.h"
#include "check/text/wording.h"
#include "deflang/expression/vid_std_name.h"

std::set<std::string_view> namesInExpressions(const TextFacts& facts) {
  std::set<std::string_view> used;
  for (const ParameterRecord* record : facts.records().inNameOrder()) {
    forEachExpression(*record, [&used](const Expression& expression) {
      for (const Token& token : expression.tokens) {
        if (token.kind == TOKEN_VARIABLE) used.insert(referencedName(token.text));
      }
    });
  }
  return used;
}

void addUnusedConstants(const TextFacts& facts, const NamedValues& constants,
                        const std::set<std::string>& told, Findings& findings) {
  if (constants.empty() || facts.text().isBroken) return;
  const std::set<std::string_view> used = namesInExpressions(facts);
  for (const auto& [name, value] : constants) {
    if (const ParameterRecord* const record = facts.defined(name)) {
      findings.add({"unused-constant",
                    {},
                    "the constant " + quoted(name) + " counts nowhere: the text defines the name",
                    {{facts.nameOf(*record), "defined here"}}});
    } else if (!used.contains(name) && !told.contains(name)) {
      findings.add({"unused-constant", {}, "nothing uses the constant " + quoted(name)});
    }
  }
}

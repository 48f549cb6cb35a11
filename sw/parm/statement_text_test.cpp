#include "sw/parm/statement_text.h"

#include <gtest/gtest.h>

#include "tests/support/build.h"

namespace {

// All statements of the parameter p of a text, without those of its access word.
std::string statementsOf(const std::string& statements) {
  const BuiltText built("a rw { }\nb rw { }\np rw { " + statements + " }");
  EXPECT_EQ(built.errors, "") << statements;
  const ParmDef& p = built.parm("p");
  const Variables& names = p.variables();
  std::string text;
  const auto add = [&](const std::string& statement) {
    text += (text.empty() ? "" : " ") + statement;
  };
  if (p.baseBounds().count() > 0) add(baseText(p.baseBounds()));
  for (const auto& bounds : p.conditionalBounds()) add(rangeText("rangeValid", bounds, names));
  for (const auto& bounds : p.documentedRanges()) add(rangeText("rangeDoc", bounds, names));
  for (const auto& condition : p.readOnlyConditions()) add(controlText("ctrlRO", condition, names));
  for (const auto& condition : p.validityConditions()) {
    add(controlText("ctrlValid", condition, names));
  }
  for (const auto& [condition, value] : p.defaults()) add(defaultText(condition, value, names));
  if (!p.fallbackDefault().empty()) add(fallbackText(p.fallbackDefault()));
  for (const auto& [source, target] : p.translations()) add(translationText(source, target));
  return text;
}

TEST(StatementText, IsCanonicalAndMeansTheSame) {
  const struct {
    const char* statements;
    const char* text;
  } cases[] = {
      {"rangeValid{0..9}", "rangeValid { 0..9 }"},
      {"rangeValid{7,1..3,\"b\",\"a\"}", "rangeValid { 1..3, 7, \"b\", \"a\" }"},
      {"rangeValid { -5..-1 }", "rangeValid { -5..-1 }"},
      {"rangeValid{1} rangeValid{5}", "rangeValid { 1, 5 }"},
      {"rangeValid(a==1){1..2}", "rangeValid (a == 1) { 1..2 }"},
      {"rangeValid(1){1..2}", "rangeValid { 1..2 }"},
      {"rangeValid { (a+1)..(b),\"off\", 7 }", "rangeValid { (a + 1)..(b), \"off\", 7 }"},
      {"rangeValid { (2+3)..(a) }", "rangeValid { 5..(a) }"},
      {"rangeDoc(a){(b)}", "rangeDoc (a) { (b) }"},
      {"ctrlRO((a+1)*2>b)", "ctrlRO ((a + 1) * 2 > b)"},
      {"ctrlValid( a $ \"x\" )", "ctrlValid (a $ \"x\")"},
      {"default(a>1){(b*2)} default{3}", "default (a > 1) { (b * 2) } default { 3 }"},
      {"default(a){\"auto\"} default{\"off\"}", "default (a) { \"auto\" } default { \"off\" }"},
      {"default { -3 }", "default { -3 }"},
      {"default { (a) }", "default { (a) }"},
      {"valueChange{\"auto\"->7}", "valueChange { \"auto\" -> 7 }"},
      {"valueChange{\"-7\"->\"x\"}", "valueChange { \"-7\" -> \"x\" }"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(statementsOf(c.statements), c.text);
    EXPECT_EQ(statementsOf(c.text), c.text);
  }
}

}  // namespace

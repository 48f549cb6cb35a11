#include "check/proof/proof_memory.h"

#include <gtest/gtest.h>

namespace {

// Those that a definition depends on, and those that a definition depends on which names it.
TEST(ProofMemories, KnowWhichConstantsMatter) {
  const SourceText source("text",
                          "i index { rangeValid { 1..(A) } }\n"
                          "p rw { index { i } rangeValid { 0..9 } }\n"
                          "q rw { rangeValid { 0..(B) } }\n"
                          "r rw { ctrlRO (q == 1) }\n"
                          "s rw { rangeValid { 0..9 } }\n"
                          "t rw { ctrlRO (s == vidStd::C::spal) }\n"
                          "u rw { ctrlValid (p[1] == r) }\n");
  ReadText text;
  Findings findings;
  readText(source, text, findings);
  const ConstantChoices choices = {
      {"A", {"1", "2"}}, {"B", {"1", "2"}}, {"C", {"1", "2"}}, {"D", {"1"}}};
  const std::pair<const char*, const char*> cases[] = {
      {"i", "A"}, {"p", "AB"}, {"q", "B"}, {"r", "AB"}, {"s", "C"}, {"t", "C"}, {"u", "AB"}};
  for (const auto& [name, constants] : cases) {
    ProofMemory memory(text, choices);
    NamedValues variant = {{"A", "1"}, {"B", "1"}, {"C", "1"}, {"D", "1"}};
    EXPECT_EQ(memory.find(name, variant), nullptr);
    memory.keep(name, variant, {{{"octal", {1, 2, 3}, "text"}}, {}});
    ASSERT_NE(memory.find(name, variant), nullptr);
    EXPECT_EQ(memory.find(name, variant)->findings.size(), 1U);
    std::string matter;
    for (auto& [constant, value] : variant) {
      value = "2";
      if (memory.find(name, variant) == nullptr) matter += constant;
      value = "1";
    }
    EXPECT_EQ(matter, constants) << name;
  }
}

}  // namespace

#include "check/partial_variant.h"

#include <gtest/gtest.h>

namespace {

// What is built of a text, in the order of its definitions.
std::string builtOf(const std::string& bytes) {
  const SourceText source("text", bytes);
  ReadText text;
  Findings findings;
  readText(source, text, findings);
  const std::optional<Variant> variant = buildPartly(source, text, {{"MODEL", "pro"}});
  if (!variant) return "nothing";
  EXPECT_TRUE(variant->isBuilt);
  std::string names;
  for (const DefinitionLayout& definition : text.layout.definitions) {
    const std::string name(definition.record->name);
    const bool isBuilt = variant->database->findParm(name) != nullptr ||
                         variant->database->findIndexEntry(name) != nullptr;
    if (isBuilt) names += (names.empty() ? "" : " ") + name;
  }
  return names;
}

TEST(PartialVariants, LeaveOutWhatIsWrongAndWhatNamesIt) {
  const struct {
    const char* text;
    const char* built;
  } cases[] = {
      {"a rw { }\nb rw { rangeValid { 0..(nosuch) } }\nc rw { rangeValid { 0..(b) } }\n"
       "d rw { ctrlRO (c == 1 && a) }\ne rw { ctrlRO (a == MODEL) }\n",
       "a e"},
      {"i index { rangeValid { 1..(nosuch) } }\na rw { index { i } }\nb rw { }\n", "b"},
      {"i index { rangeValid { 1..2 } }\na rw { index { i } }\nb rw { ctrlRO (a[3]) }\nc rw { "
       "ctrlRO (a[1]) }\n",
       "i a c"},
      {"a rw { rangeValid (1 > 2) { 0 } }\nb rw { }\n", "b"},
      {"a rw { ctrlRO () }\nb rw { }\n", "b"},
      {"a rw { rangeValid { 0..(b) } }\nb rw { rangeValid { 0..(c) } }\n"
       "c rw { rangeValid { 0..(a) } }\nd rw { }\n",
       "d"},
      {"a rw { default (b = 2) { 1 } }\nb rw { }\nc rw { ctrlRO (a) }\n", "b"},
      {"a rw { rangeValid { 0..9 }\nb rw { }\nc rw { }\n", "b c"},
      {"a rw { default { \"x } }\nb rw { rangeValid { \"y\" } }\nc rw { }\nb rw { }\n", "b c b"},
      {"mode rw { rangeValid { \"film\" } }\nleft rw { rangeValid { 0..(vidStd::mod::spal) } }\n"
       "right rw { rangeValid { 0..(vidStd::mode::spal) } }\n",
       "mode right"},
      {"a rw { default { nosuch } }\n", "nothing"},
      {"", "nothing"},
  };
  for (const auto& [text, built] : cases) EXPECT_EQ(builtOf(text), built) << text;
  EXPECT_EQ(builtOf(std::string("a rw { default { \"\0\" } }\nb rw { }\n", 35)), "nothing");
}

}  // namespace

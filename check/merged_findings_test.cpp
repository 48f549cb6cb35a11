#include "check/merged_findings.h"

#include <gtest/gtest.h>

#include <set>

namespace {

const ConstantChoices CHOICES = {{"MODEL", {"basic", "pro"}}, {"CHANNELS", {"1", "2", "4"}}};

// The variant that is named where `variants`, from 0, have a finding of `code` and the others do
// not; those of `broken` were not built.
std::string variantNamed(std::string_view code, const std::set<size_t>& variants,
                         const std::set<size_t>& broken = {}) {
  MergedFindings merged(CHOICES);
  for (size_t i = 0; i < 6; ++i) {
    Findings findings;
    if (variants.contains(i)) findings.add({code, {1, 2, 3}, "text"});
    merged.addVariant(!broken.contains(i), findings);
  }
  const std::vector<Finding> all = merged.merged().all();
  EXPECT_EQ(all.size(), 1U);
  return all.at(0).variant;
}

TEST(MergedFindings, NameTheConstantsThatDecide) {
  const struct {
    std::set<size_t> variants;
    const char* named;
  } cases[] = {
      {{0, 1, 2, 3, 4, 5}, ""},      {{0, 1, 2}, "MODEL=basic"},
      {{3, 4, 5}, "MODEL=pro"},      {{2, 5}, "CHANNELS=4"},
      {{1, 2, 4, 5}, "CHANNELS=2"},  // and 4: the first is named
      {{5}, "MODEL=pro CHANNELS=4"}, {{0, 1, 2, 3}, "MODEL=basic CHANNELS=1"},
  };
  for (const auto& c : cases) EXPECT_EQ(variantNamed("merged", c.variants), c.named);
}

TEST(MergedFindings, ATextThatIsNotBuiltTellsNothingOfItsDefinitions) {
  EXPECT_EQ(variantNamed("merged", {0, 1, 2}, {3, 4, 5}), "");
  EXPECT_EQ(variantNamed("uncovered", {0, 3}, {4}), "CHANNELS=1");
  // What the builder says is known of all variants.
  EXPECT_EQ(variantNamed("undefined-name", {0, 1, 2}, {0, 1, 2}), "MODEL=basic");
  // Nothing is known of the variants that differ in one constant alone.
  EXPECT_EQ(variantNamed("merged", {0}, {1, 2, 3}), "MODEL=basic CHANNELS=1");
}

TEST(MergedFindings, NeverIsNeverInAllVariants) {
  // Of the six variants the first ones are built and have the finding; of the others nobody knows.
  const struct {
    int built;
    size_t found;
  } cases[] = {{6, 1}, {5, 0}, {1, 0}};
  for (const auto& [built, found] : cases) {
    MergedFindings merged(CHOICES);
    Findings findings;
    findings.add({"never-true", {1, 2, 3}, "text"});
    for (int i = 0; i < 6; ++i) merged.addVariant(i < built, i < built ? findings : Findings());
    EXPECT_EQ(merged.merged().all().size(), found) << built;
  }
}

TEST(MergedFindings, TellApartByCodePlaceAndText) {
  MergedFindings merged(CHOICES);
  Findings findings;
  findings.add({"merged", {1, 2, 3}, "one"});
  findings.add({"merged", {1, 2, 3}, "one"});
  findings.add({"merged", {1, 2, 3}, "two"});
  findings.add({"octal", {1, 2, 3}, "one"});
  findings.add({"merged", {1, 4, 3}, "one"});
  for (int i = 0; i < 6; ++i) merged.addVariant(true, findings);
  EXPECT_EQ(merged.merged().all().size(), 4U);
}

TEST(MergedFindings, KeepTheWitnessOfTheVariantNamed) {
  MergedFindings merged(CHOICES);
  for (int i = 0; i < 6; ++i) {
    Findings findings;
    Finding finding = {"uncovered", {1, 0, 0}, "text"};
    finding.witness = {{"a", std::to_string(i)}};
    if (i >= 3) findings.add(finding);
    merged.addVariant(true, findings);
  }
  const std::vector<Finding> all = merged.merged().all();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].variant, "MODEL=pro");
  EXPECT_EQ(all[0].witness, (NamedValues{{"a", "3"}}));
}

// What becomes of a finding that the first variants have, the next ones left undecided, and the
// others do not have: of six.
TEST(MergedFindings, TellWhatIsUndecided) {
  const struct {
    std::string_view code;
    size_t has;
    size_t open;
    size_t found;
    size_t undecided;
  } cases[] = {
      {"uncovered", 0, 6, 0, 1},
      {"uncovered", 0, 1, 0, 1},
      {"uncovered", 1, 5, 1, 0},
      {"uncovered", 1, 1, 1, 0},
      {"uncovered", 0, 0, 0, 0},
      {"never-true", 0, 6, 0, 1},
      // It is not never true where one variant shows so, and not known while one is open.
      {"never-true", 0, 5, 0, 0},
      {"never-true", 2, 3, 0, 0},
      {"never-true", 2, 4, 0, 1},
      {"never-true", 6, 0, 1, 0},
  };
  for (const auto& c : cases) {
    MergedFindings merged(CHOICES);
    for (size_t i = 0; i < 6; ++i) {
      Findings findings;
      Findings undecided;
      if (i < c.has) findings.add({c.code, {1, 2, 3}, "text"});
      if (i >= c.has && i < c.has + c.open) undecided.add({c.code, {1, 2, 3}, "text"});
      merged.addVariant(true, findings, undecided);
    }
    EXPECT_EQ(merged.merged().all().size(), c.found) << c.code << c.has << c.open;
    EXPECT_EQ(merged.undecided().all().size(), c.undecided) << c.code << c.has << c.open;
  }
}

TEST(MergedFindings, WithoutConstantsNameNoVariant) {
  const ConstantChoices none;
  MergedFindings merged(none);
  Findings findings;
  findings.add({"merged", {1, 2, 3}, "text"});
  merged.addVariant(true, findings);
  ASSERT_EQ(merged.merged().all().size(), 1U);
  EXPECT_EQ(merged.merged().all()[0].variant, "");
}

// Parts of the questions of one variant come one after the other.
TEST(MergedFindings, KeepWhatSaysMost) {
  const ConstantChoices none;
  const Finding plain = {"overlap", {1, 2, 3}, "text"};
  Finding grave = plain;
  grave.level = LEVEL_ERROR;
  Finding earlier = plain;
  earlier.related = {{{1, 0, 0}, "here"}};
  Finding later = plain;
  later.related = {{{2, 0, 0}, "here"}};
  const std::pair<std::vector<Finding>, Finding> cases[] = {
      {{plain, grave, later}, grave}, {{grave, plain}, grave},     {{plain, later}, later},
      {{later, earlier}, earlier},    {{earlier, later}, earlier},
  };
  for (const auto& [all, kept] : cases) {
    Findings findings;
    for (const Finding& finding : all) findings.add(finding);
    MergedFindings merged(none);
    merged.addVariant(true, findings);
    ASSERT_EQ(merged.merged().all().size(), 1U);
    const Finding found = merged.merged().all()[0];
    EXPECT_EQ(found.level, kept.level);
    ASSERT_EQ(found.related.size(), kept.related.size());
    for (size_t i = 0; i < kept.related.size(); ++i) {
      EXPECT_EQ(found.related[i].at, kept.related[i].at);
    }
  }
}

TEST(MergedFindings, TellOfADefaultAndItsCauseOnce) {
  const ConstantChoices none;
  for (const char* const cause : {"unknown-standard", "translation"}) {
    Findings findings;
    findings.add({cause, {1, 2, 3}, "selects nothing"});
    findings.add({cause, {2, 2, 3}, "selects nothing"});
    findings.add({"default-outside", {4, 2, 3}, "is not kept", {{{1, 2, 3}, "selects nothing"}}});
    MergedFindings merged(none);
    merged.addVariant(true, findings);
    const std::vector<Finding> all = merged.merged().inTextOrder();
    ASSERT_EQ(all.size(), 2U);
    EXPECT_EQ(all[0].at.line, 2U);
    EXPECT_EQ(all[1].code, "default-outside");
  }
}

}  // namespace

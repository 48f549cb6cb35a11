#include "check/packed_findings.h"

#include <gtest/gtest.h>

namespace {

// Each member has something; texts have bytes that are no UTF-8, and none.
VariantFindings example() {
  Finding full{"never-true", {1, 2, 3}, std::string("a\0\xff", 3)};
  full.related = {{{4, 5, 6}, "here"}, {{0, 0, 0}, ""}};
  full.proposal = Proposal{{7, 8, 9}, "instead"};
  full.witness = {{"gain", "3"}, {"title", ""}};
  full.variant = "MODEL=pro";
  full.level = LEVEL_NOTE;
  Finding error{"octal", {UINT32_MAX, 0, 1}, ""};
  error.level = LEVEL_ERROR;
  VariantFindings variant;
  variant.isBuilt = true;
  variant.findings.add(full);
  variant.findings.add(error);
  variant.undecided.add({"overflow", {2, 0, 0}, "c"});
  return variant;
}

void expectSame(const Findings& left, const Findings& right) {
  ASSERT_EQ(left.all().size(), right.all().size());
  for (size_t i = 0; i < left.all().size(); ++i) {
    const Finding& a = left.all()[i];
    const Finding& b = right.all()[i];
    EXPECT_EQ(a.code, b.code);
    EXPECT_EQ(a.at, b.at);
    EXPECT_EQ(a.text, b.text);
    ASSERT_EQ(a.related.size(), b.related.size());
    for (size_t k = 0; k < a.related.size(); ++k) {
      EXPECT_EQ(a.related[k].at, b.related[k].at);
      EXPECT_EQ(a.related[k].text, b.related[k].text);
    }
    ASSERT_EQ(a.proposal.has_value(), b.proposal.has_value());
    if (a.proposal) {
      EXPECT_EQ(a.proposal->at, b.proposal->at);
      EXPECT_EQ(a.proposal->text, b.proposal->text);
    }
    EXPECT_EQ(a.witness, b.witness);
    EXPECT_EQ(a.variant, b.variant);
    EXPECT_EQ(a.level, b.level);
  }
}

TEST(PackedFindings, AreUnpackedAsTheyWere) {
  const VariantFindings variants[] = {example(), {}};
  const std::string packed = packFindings(variants[0]) + packFindings(variants[1]);
  std::string_view rest = packed;
  for (const VariantFindings& variant : variants) {
    const std::optional<VariantFindings> unpacked = unpackFindings(rest);
    ASSERT_TRUE(unpacked);
    EXPECT_EQ(unpacked->isBuilt, variant.isBuilt);
    expectSame(unpacked->findings, variant.findings);
    expectSame(unpacked->undecided, variant.undecided);
  }
  EXPECT_EQ(rest, "");
}

TEST(PackedFindings, OutliveTheBytes) {
  std::string packed = packFindings(example());
  std::string_view rest = packed;
  const std::optional<VariantFindings> unpacked = unpackFindings(rest);
  packed.assign(packed.size(), 'x');
  ASSERT_TRUE(unpacked);
  expectSame(unpacked->findings, example().findings);
}

TEST(PackedFindings, ThatEndTooEarlyAreNone) {
  const std::string packed = packFindings(example());
  for (size_t size = 0; size < packed.size(); ++size) {
    std::string_view part = std::string_view(packed).substr(0, size);
    EXPECT_FALSE(unpackFindings(part)) << size;
  }
  std::string other = packed;
  other.replace(other.find("never-true"), 10, "never-told");
  std::string_view rest = other;
  EXPECT_FALSE(unpackFindings(rest));
}

}  // namespace

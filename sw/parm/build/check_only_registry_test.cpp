#include "sw/parm/build/check_only_registry.h"

#include <gtest/gtest.h>

#include "tests/support/registry.h"

namespace {

std::unique_ptr<IndexDef> makeIndex(const std::string& name) {
  DefinitionParts parts;
  parts.name = name;
  return std::make_unique<IndexDef>(std::move(parts));
}

std::unique_ptr<ParmDef> makeParm(const std::string& name) {
  DefinitionParts parts;
  parts.name = name;
  return std::make_unique<ParmDef>(std::move(parts), ParmParts());
}

TEST(CheckOnlyRegistry, KnowsTheConstantsOfTheOther) {
  const TestRegistry other(TestRegistry::Constants{{"X", "1"}});
  const CheckOnlyRegistry registry(other);
  ASSERT_NE(registry.findConstant("X"), nullptr);
  EXPECT_EQ(*registry.findConstant("X"), "1");
  EXPECT_EQ(registry.findConstant("Y"), nullptr);
}

TEST(CheckOnlyRegistry, KeepsIndicesToItself) {
  TestRegistry other;
  ASSERT_EQ(other.registerIndex(makeIndex("theirs")), 0);
  other.registered.clear();
  CheckOnlyRegistry registry(other);
  EXPECT_EQ(registry.findIndex("theirs"), nullptr);
  EXPECT_EQ(registry.registerIndex(makeIndex("i")), 0);
  const IndexDef* const first = registry.findIndex("i");
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->name(), "i");
  EXPECT_EQ(registry.registerIndex(makeIndex("i")), 1);  // the first one stays
  EXPECT_EQ(registry.findIndex("i"), first);
  EXPECT_TRUE(other.registered.empty());
}

TEST(CheckOnlyRegistry, DropsParametersAndFinishesNothing) {
  TestRegistry other;
  other.finishResult = 3;
  CheckOnlyRegistry registry(other);
  EXPECT_EQ(registry.registerParm(makeParm("p")), 0);
  EXPECT_EQ(registry.registerParm(makeParm("p")), 0);
  std::string name = "kept";
  EXPECT_EQ(registry.finish(name), 0);
  EXPECT_EQ(name, "kept");
  EXPECT_TRUE(other.registered.empty());
}

}  // namespace

#include "explore/device_names.h"

#include <gtest/gtest.h>

namespace {

using Texts = std::vector<std::string>;

KnownDevice knownDevice() {
  KnownDevice known;
  known.parms = {{"a", {}}, {"a=b", {}}, {"p", {"i", "j"}}, {"\xff", {}}, {"q", {"none"}}};
  known.indices = {{"i", {"1", "x=y", "\xff"}}, {"j", {"]"}}, {"none", {}}};
  return known;
}

TEST(DeviceNames, ListsWhatCanBeSaid) {
  const DeviceNames names(knownDevice());
  EXPECT_EQ(names.parms(), (Texts{"a", "a=b", "p"}));
  EXPECT_EQ(names.all(), (Texts{"a", "a=b", "p[1][]]", "p[x=y][]]"}));
  ExploreRandom random(1);
  EXPECT_EQ(names.anyOf("a", random), "a");
  const std::string any = names.anyOf("p", random);
  EXPECT_TRUE(any == "p[1][]]" || any == "p[x=y][]]") << any;
}

TEST(DeviceNames, FindsTheNameInAChange) {
  KnownDevice known = knownDevice();
  known.indices["j"] = {"2"};
  const DeviceNames names(known);
  const struct {
    const char* change;
    const char* name;
  } cases[] = {
      {"a=1", "a"},
      {"a=", "a"},
      {"a=b=1", "a"},
      {"p[x=y][2]=3=4", "p[x=y][2]"},
      {"p[1][2]=", "p[1][2]"},
      {"p[1]=2", ""},
      {"gone=1", ""},
      {"a[1]=1", ""},
      {"p", ""},
  };
  for (const auto& c : cases) EXPECT_EQ(names.nameIn(c.change), c.name) << c.change;
}

TEST(DeviceNames, ListsNoneWhereTheyAreMany) {
  KnownDevice known;
  known.parms = {{"p", {"i", "i"}}};
  for (int i = 0; i < 100; ++i) known.indices["i"].push_back(std::to_string(i));
  const DeviceNames names(known);
  EXPECT_EQ(names.all().size(), 0U);
  EXPECT_EQ(names.parms(), Texts{"p"});
}

}  // namespace

#include "check/nearest.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(NearestName, IsTheOneWithTheFewestSlips) {
  const std::vector<std::string_view> names = {"rw",         "ro",      "rangeValid", "rangeDoc",
                                               "ctrlRO",     "default", "syntax",     "octal",
                                               "never-true", "vertical"};
  const struct {
    const char* word;
    std::optional<std::string_view> nearest;
  } cases[] = {
      {"rangeVaild", "rangeValid"},  // two bytes exchanged: one slip
      {"rangevalid", "rangeValid"},
      {"range", std::nullopt},  // of five bytes, three slips are too many
      {"defualt", "default"},
      {"defaults", "default"},
      {"neve-tru", "never-true"},
      {"ocal", "octal"},
      {"verticla", "vertical"},
      {"r", std::nullopt},       // one byte tells nothing
      {"rx", "rw"},              // the first of two that are as near
      {"syntax", std::nullopt},  // known, and nothing else is near
      {"", std::nullopt},
      {"video", std::nullopt},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.word);
    EXPECT_EQ(nearestName(c.word, names), c.nearest);
  }
}

TEST(NearestName, LooksForNoSlipInLongWords) {
  const std::string name(250, 'x');
  const std::vector<std::string_view> names = {name};
  EXPECT_EQ(nearestName(std::string(249, 'x'), names), std::nullopt);
  const std::string shorter(150, 'x');
  const std::vector<std::string_view> shorterNames = {shorter};
  EXPECT_EQ(nearestName(std::string(149, 'x'), shorterNames), shorter);
}

}  // namespace

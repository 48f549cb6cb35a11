#include "startup/version.h"

#include <gtest/gtest.h>

#include <regex>

namespace {

TEST(Version, NamesDateTimeVersionRepositoryAndCommit) {
  const std::regex form(
      "ostrel Built on (Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] [0-9]{4} "
      "[0-9]{2}:[0-9]{2}:[0-9]{2} \\[2\\.05 ostrel [0-9a-f]{7}\\]");
  EXPECT_TRUE(std::regex_match(VERSION_TEXT, form)) << VERSION_TEXT;
}

}  // namespace

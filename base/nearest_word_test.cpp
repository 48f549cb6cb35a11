#include "base/nearest_word.h"

#include <gtest/gtest.h>

#include <array>
#include <string>

namespace {

TEST(WordDistance, CountsHalvesForAnotherCase) {
  struct Case {
    std::string from;
    std::string to;
    size_t distance;
  };
  const Case cases[] = {
      {"gain", "gain", 0}, {"gain", "Gain", 1},  {"gain", "gian", 2},
      {"gain", "gin", 2},  {"gain", "gains", 2}, {"gain", "gaim", 2},
      {"gain", "GAIN", 4}, {"", "ab", 4},        {"gain", "delay", 7},  // more than the limit
  };
  for (const Case& c : cases) {
    EXPECT_EQ(wordDistance(c.from, c.to, 6), c.distance) << c.from << " " << c.to;
    EXPECT_EQ(wordDistance(c.to, c.from, 6), c.distance) << c.from << " " << c.to;
  }
}

TEST(NearestWord, IsOneThatMayHaveBeenMeant) {
  constexpr std::array<std::string_view, 8> words = {
      "rangeValid", "rangeDoc", "ctrlRO", "follow_video", "rw", "on", "aes", "AES"};
  struct Case {
    std::string word;
    std::string nearest;  // empty: none
  };
  const Case cases[] = {
      {"rangevalid", "rangeValid"},
      {"RANGEVALID", "rangeValid"},
      {"rangeVald", "rangeValid"},
      {"rnageDoc", "rangeDoc"},
      {"follow_vido", "follow_video"},
      {"RW", "rw"},
      {"AEs", "AES"},
      {"Aes", "aes"},
      {"off", ""},
      {"x", ""},
      {"rx", ""},
      {"follow", ""},
      {"", ""},
  };
  for (const Case& c : cases) {
    NearestWord nearest(c.word);
    nearest.offer(words);
    EXPECT_EQ(nearest.found().value_or(""), c.nearest) << c.word;
  }
}

}  // namespace

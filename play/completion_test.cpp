#include "play/completion.h"

#include <gtest/gtest.h>

#include "play/engine_device.h"

namespace {

using Texts = std::vector<std::string>;

TEST(Completion, ProposesWhatMayComeNext) {
  const auto device = startEngineDevice(
      "mode rw { rangeValid { \"slow\", \"fast\", \"very fast\" } default { \"fast\" } }\n"
      "place index { rangeValid { 1..3 } }\n"
      "rate rw { index { place } rangeValid { 0..9 } rangeValid (mode == \"slow\") { 3..4 }\n"
      "  rangeValid (mode != \"slow\") { 0..9 } }\n"
      "many rw { rangeValid { 0..1000000 } }\n",
      {});
  ASSERT_NE(device, nullptr);
  static_cast<void>(device->call({"single_set", 0, {"mode"}, {"slow"}}));
  const struct {
    const char* before;
    const char* start;
    Texts words;
  } cases[] = {
      {"", "se", {"set", "set_status"}},
      {"", "ind", {"index range", "indices"}},
      {"t: ", "com", {"commit"}},
      {"", "fo", {"for"}},
      {"set ", "", {"many", "mode", "rate[1]", "rate[2]", "rate[3]"}},
      {"set ", "ra", {"rate[1]", "rate[2]", "rate[3]"}},
      {"set ", "rate[2", {"rate[2]"}},
      {"set mode ", "", {"\"very fast\"", "fast", "slow"}},
      {"set mode ", "\"v", {"\"very fast\""}},
      {"set rate[1] ", "", {"3", "4"}},
      {"set rate[1] 3 mode ", "f", {"fast"}},
      {"set many ", "", {}},
      {"set nobody ", "", {}},
      {"get mode ", "m", {"many", "mode"}},
      {"validate mode ", "s", {"slow"}},
      {"validate mode slow ", "", {}},
      {"why mode ", "s", {"slow"}},
      {"deps ", "r", {"rate", "rate[1]", "rate[2]", "rate[3]"}},
      {"index ", "", {"range"}},
      {"index range ", "", {"place"}},
      {"commit ", "", {}},
      {"comit ", "", {}},
      {"set \"", "", {}},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(completions(*device, c.before, c.start), c.words) << c.before << "|" << c.start;
  }
}

}  // namespace

#include "base/packed_number.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <string>

namespace {

TEST(PackedNumber, TakesAByteForSevenBits) {
  const struct {
    uint32_t number;
    ptrdiff_t bytes;
  } cases[] = {
      {0, 1},         {1, 1},
      {0x7F, 1},      {0x80, 2},
      {0x3FFF, 2},    {0x4000, 3},
      {0x1FFFFF, 3},  {0x200000, 4},
      {1U << 28U, 5}, {std::numeric_limits<uint32_t>::max(), 5},
  };
  std::string all = "before";
  for (const auto& [number, bytes] : cases) {
    char packed[MOST_PACKED_BYTES];
    char* const end = packNumber(number, packed);
    EXPECT_EQ(end - packed, bytes) << number;
    EXPECT_EQ(packed[0] == '\0', number == 0) << number;
    all.append(packed, end);
  }
  size_t at = 6;
  for (const auto& [number, bytes] : cases) EXPECT_EQ(unpackNumber(all, at), number);
  EXPECT_EQ(at, all.size());
}

}  // namespace

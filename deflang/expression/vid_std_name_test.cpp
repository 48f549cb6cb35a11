#include "deflang/expression/vid_std_name.h"

#include <gtest/gtest.h>

#include "srcs/vid_std_figures.h"

namespace {

TEST(VidStdName, IsTakenApartWhenItsFigureIsKnown) {
  struct Case {
    std::string_view name;
    std::string_view parameter;
    std::string_view figure;
  };
  const Case cases[] = {
      {"vidStd::mode::spal", "mode", "spal"},   {"vidStd::mode::alpf", "mode", "alpf"},
      {"vidStd::mode::sptl", "mode", "sptl"},   {"vidStd::mode::tlpf", "mode", "tlpf"},
      {"vidStd::mode::fr", "mode", "fr"},       {"vidStd::mode::clkDiv", "mode", "clkDiv"},
      {"vidStd::mode::f0", "mode", "f0"},       {"vidStd::mode::f1", "mode", "f1"},
      {"vidStd::mode::f0v0", "mode", "f0v0"},   {"vidStd::mode::f0v1", "mode", "f0v1"},
      {"vidStd::mode::f1v0", "mode", "f1v0"},   {"vidStd::mode::f1v1", "mode", "f1v1"},
      {"vidStd::mode::f0sw", "mode", "f0sw"},   {"vidStd::mode::f1sw", "mode", "f1sw"},
      {"vidStd::in[1]::spal", "in[1]", "spal"}, {"vidStd::::spal", "", "spal"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const std::optional<VidStdName> parts = splitVidStdName(c.name);
    ASSERT_TRUE(parts.has_value());
    EXPECT_EQ(parts->parameter, c.parameter);
    EXPECT_EQ(parts->figure->name, c.figure);
    EXPECT_EQ(referencedName(c.name), c.parameter);
  }
}

TEST(VidStdName, IsAnOrdinaryNameOtherwise) {
  const std::string_view cases[] = {
      "mode",                   // no prefix
      "avidStd::mode::spal",    // the prefix is elsewhere
      "vidStd::mode",           // no second "::"
      "vidStd::xspal",          // nor here, although a figure ends it
      "vidStd::mode::xyz",      // no such figure
      "vidStd::mode::SPAL",     // case matters
      "vidStd::mode::spal ",    // exact
      "vidStd::a::b::spal",     // the figure is all that follows the first "::"
      "vidStd::mode::spal[1]",  // no index on a figure
      "",
  };
  for (const std::string_view name : cases) {
    SCOPED_TRACE(name);
    EXPECT_FALSE(splitVidStdName(name).has_value());
    EXPECT_EQ(referencedName(name), name);
  }
}

}  // namespace

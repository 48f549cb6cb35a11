#include "ctl/text/suggestion.h"

#include <gtest/gtest.h>

namespace {

TEST(UnknownName, IsSaidWithWhatMayHaveBeenMeant) {
  const std::vector<ListedParameter> parameters = {{"channel", "index", {}, 1, 0},
                                                   {"delay", "rw", {"channel", "side"}, 2, 1},
                                                   {"gain", "rw", {"channel"}, 3, 1},
                                                   {"mode", "rw", {}, 4, 0}};
  struct Case {
    std::string name;
    std::string text;
  };
  const Case cases[] = {
      {"moed", R"(no parameter "moed": did you mean mode?)"},
      {"gian[1]", R"(no parameter "gian[1]": did you mean gain[1]?)"},
      {"gian", R"(no parameter "gian": did you mean gain[channel]?)"},
      {"gian[1][2]", R"(no parameter "gian[1][2]": did you mean gain[channel]?)"},
      {"gain", R"(no parameter "gain": it is gain[channel])"},
      {"delay[1]", R"(no parameter "delay[1]": it is delay[channel][side])"},
      {"mode[1]", R"(no parameter "mode[1]": mode has no index)"},
      {"channel", "channel is an index, not a parameter"},
      {"chanel", R"(no parameter "chanel")"},  // an index is no suggestion
      {"zebra", R"(no parameter "zebra")"},
      {"", R"(no parameter "")"},
  };
  for (const Case& c : cases) EXPECT_EQ(unknownNameText(c.name, parameters), c.text);
  EXPECT_EQ(unknownNameText("mode", {}), R"(no parameter "mode")");
}

}  // namespace

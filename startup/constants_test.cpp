#include "startup/constants.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Definitions = std::vector<std::string>;

// What is defined of a command line, in the order of the calls; `result` is of each call.
Definitions definitionsOf(std::vector<std::string> arguments, int result) {
  arguments.insert(arguments.begin(), "ostrel");
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  Definitions definitions;
  defineConstants(parseCommandLine(static_cast<int>(arguments.size()), argv.data()),
                  [&](const std::string& name, const std::string& value) {
                    definitions.push_back(std::string(name).append("=").append(value));
                    return result;
                  });
  return definitions;
}

TEST(DefineConstants, DefinesInTheOrderOfTheNames) {
  struct OrderCase {
    Definitions arguments;
    Definitions definitions;
  };
  const OrderCase cases[] = {
      {{}, {}},
      {{"c=1", "a=2", "b=3"}, {"a=2", "b=3", "c=1"}},
      {{"b=1", "a=2", "b=3", "a=4"}, {"a=2", "b=1"}},  // of two with one name the first
      {{"b10=1", "b9=2", "B=3", "=4"}, {"=4", "B=3", "b10=1", "b9=2"}},  // by bytes
  };
  for (const OrderCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    EXPECT_EQ(definitionsOf(c.arguments, 0), c.definitions);
  }
}

TEST(DefineConstants, GoesOnAfterARefusedOne) {
  EXPECT_EQ(definitionsOf({"b=1", "a=2"}, 1), (Definitions{"a=2", "b=1"}));
}

}  // namespace

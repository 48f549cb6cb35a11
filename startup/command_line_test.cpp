#include "startup/command_line.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <vector>

namespace {

CommandLine parse(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "ostrel");
  std::vector<char*> argv;
  for (std::string& argument : arguments) argv.push_back(argument.data());
  argv.push_back(nullptr);
  return parseCommandLine(static_cast<int>(arguments.size()), argv.data());
}

TEST(CommandLine, WithoutArgumentsHasTheDefaults) {
  const CommandLine commandLine = parse({});
  EXPECT_TRUE(commandLine.daemonize);
  EXPECT_EQ(commandLine.busSuffix, "");
  EXPECT_EQ(commandLine.pathSuffix, "");
  EXPECT_TRUE(commandLine.constants.empty());
}

TEST(CommandLine, TakesOptionsInEveryForm) {
  struct OptionCase {
    std::vector<std::string> arguments;
    bool daemonize;
    const char* busSuffix;
    const char* pathSuffix;
  };
  const OptionCase cases[] = {
      {{"-d"}, false, "", ""},
      {{"--debug"}, false, "", ""},
      {{"-b", "a.b"}, true, "a.b", ""},
      {{"--bus=a.b"}, true, "a.b", ""},
      {{"--bus", "first", "-b", "last"}, true, "last", ""},
      {{"-o", "x"}, true, "", "x"},
      {{"--obj_path=x/y"}, true, "", "x/y"},
      {{"-o", "first", "--obj_path", "last"}, true, "", "last"},
      {{"a=1", "-dbx", "b=2"}, false, "x", ""},
  };
  for (const OptionCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    const CommandLine commandLine = parse(c.arguments);
    EXPECT_EQ(commandLine.daemonize, c.daemonize);
    EXPECT_EQ(commandLine.busSuffix, c.busSuffix);
    EXPECT_EQ(commandLine.pathSuffix, c.pathSuffix);
  }
}

TEST(CommandLine, SplitsConstantsAtTheFirstEqualsSign) {
  struct ConstantCase {
    std::vector<std::string> arguments;
    std::map<std::string, std::string> constants;
  };
  const ConstantCase cases[] = {
      {{"a=b=c"}, {{"a", "b=c"}}},     {{"=x"}, {{"", "x"}}},
      {{"a="}, {{"a", ""}}},           {{"="}, {{"", ""}}},
      {{"x=1", "x=2"}, {{"x", "1"}}},  {{"b=2", "a=1"}, {{"a", "1"}, {"b", "2"}}},
      {{"--", "-a=1"}, {{"-a", "1"}}},
  };
  for (const ConstantCase& c : cases) {
    SCOPED_TRACE(testing::PrintToString(c.arguments));
    EXPECT_EQ(parse(c.arguments).constants, c.constants);
  }
}

TEST(CommandLineDeathTest, EndsTheProcessForWhatItDoesNotKnow) {
  const auto usage = testing::ExitedWithCode(64);  // EX_USAGE, argp's status for a usage error
  EXPECT_EXIT(parse({"a=1", "noConstant"}), usage, "Usage: ostrel \\[OPTION...\\]");
  EXPECT_EXIT(parse({""}), usage, "Usage: ostrel");
  EXPECT_EXIT(parse({"--what"}), usage, "unrecognized option '--what'");
  EXPECT_EXIT(parse({"--bus"}), usage, "option '--bus' requires an argument");
}

TEST(CommandLineDeathTest, DescribesOptionsAndConstantsInTheHelp) {
  const auto helpToStandardError = [] {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    parse({"--help"});
  };
  EXPECT_EXIT(helpToStandardError(), testing::ExitedWithCode(0),
              "Usage: ostrel \\[OPTION...\\] List of constant definitions. Format is "
              "\"name=value\"\n"
              "ostrel -- Product parameter handler\n"
              "\n"
              " *-b, --bus=STRING *D-Bus \\(well-known\\) bus name\n"
              " *-d, --debug *Allow debugging - do not daemonize\n"
              " *-o, --obj_path=STRING *D-Bus object path\n"
              "(.*\n)*"
              "Report bugs to \\.\n");
}

TEST(CommandLineDeathTest, PrintsTheVersionText) {
  const auto versionToStandardError = [] {
    dup2(STDERR_FILENO, STDOUT_FILENO);
    parse({"--version"});
  };
  EXPECT_EXIT(versionToStandardError(), testing::ExitedWithCode(0), "^ostrel Built on .*\\]\n$");
}

}  // namespace

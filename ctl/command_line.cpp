#include "ctl/command_line.h"

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "base/nearest_word.h"
#include "ctl/service/exit_status.h"
#include "ctl/text/quoted.h"
#include "ctl/words/arguments.h"
#include "startup/version.h"

namespace {

constexpr const char* DESCRIPTION =
    "Examples:\n"
    "  ostrelctl ls --long\n"
    "  ostrelctl get 'position[1]' mode\n"
    "  ostrelctl set mode=720p/50\n"
    "  ostrelctl why 'position[1]=1500'\n"
    "  ostrelctl try mode=625i/50\n"
    "\n"
    "Look at the parameters that ostrel serves, and set them.";

constexpr const char* FOOTER =
    "ostrelctl WORD --help tells more of a word; ostrelctl(1) tells all.\n"
    "\n"
    "The status is 0 where all is done, 1 where the service refuses, 2 for a fault of the command\n"
    "line, 3 where there is no service, 4 where a value was cut (with --strict), and 5 for a name\n"
    "that does not exist.";

constexpr const char* WORD_FOOTER = "The options that ostrelctl --help lists are for all words.";

// An address that is empty in a script is none, and not that of the session.
std::string notEmpty(const std::string& text) { return text.empty() ? "it is empty" : ""; }

void addCommonOptions(CLI::App& app, TakenLine& taken) {
  BusOptions& bus = taken.line.bus;
  app.add_option("-b,--bus", bus.busSuffix, "The suffix of the bus name, as of ostrel -b")
      ->type_name("STRING");
  app.add_option("-o,--obj_path", bus.pathSuffix, "The suffix of the object path, as of ostrel -o")
      ->type_name("STRING");
  app.add_option("--address", bus.address, "Another bus than that of the session")
      ->check(notEmpty)
      ->type_name("ADDRESS");
  app.add_option("--timeout", bus.timeout, "Wait so long for each reply (30)")
      ->check(wholeNumber(1, 86400))
      ->type_name("SECONDS");
  app.add_flag("!--no-wait", bus.waits, "Do not wait until the device has been brought up");
  app.add_flag("--json", taken.isJson, "Print one JSON value");
  app.add_flag("-z,--null", taken.isNull, "Print texts as they are, a NUL behind each");
  app.add_flag("-q,--quiet", taken.line.isQuiet, "Print no results; the status tells");
}

void addWords(CLI::App& app, TakenLine& taken) {
  for (const Word& word : words()) {
    CLI::App* const own = app.add_subcommand(word.name, word.summary);
    own->fallthrough();
    own->footer(WORD_FOOTER);
    const RunWord run = word.define(*own);
    own->callback([&taken, &word, run] {
      if (taken.isNull && !word.hasNullForm) {
        endWith(STATUS_USAGE, std::string("--null is not for ") + word.name);
      }
      if (taken.isJson && !word.hasJsonForm) {
        endWith(STATUS_USAGE, std::string("--json is not for ") + word.name);
      }
      taken.line.run = run;
    });
  }
}

// Shows the examples first, also of a word; in the list of words it has its summary alone.
std::string helpOf(CLI::App& app) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  for (const Word& word : words()) {
    if (chosen.empty() || chosen.front()->get_name() != word.name) continue;
    chosen.front()->description(std::string("Examples:\n") + word.examples + "\n" + word.summary +
                                ".");
  }
  return app.help();
}

[[noreturn]] void answer(const std::string& text) {
  std::fputs(text.c_str(), stdout);
  if (!text.ends_with('\n')) std::fputc('\n', stdout);
  if (std::fflush(stdout) != 0) {
    endWith(STATUS_REFUSED, std::string("cannot write: ") + std::strerror(errno));
  }
  std::exit(STATUS_DONE);
}

// What a word or an option that does not exist may have been meant to be.
std::string meant(const NearestWord& nearest, const std::string& signs) {
  if (!nearest.found()) return "; ostrelctl --help lists them";
  return ": did you mean " + signs + std::string(*nearest.found()) + "?";
}

std::string unknownWordText(const std::string& given) {
  NearestWord nearest(given);
  for (const Word& word : words()) nearest.offer(word.name);
  return "no word \"" + given + "\"" + meant(nearest, "");
}

std::string unknownOptionText(const CLI::App& app, const CLI::App& word, const std::string& given) {
  const std::string name = given.substr(0, given.find('='));
  NearestWord nearest(std::string_view(name).substr(std::min<size_t>(2, name.size())));
  for (const CLI::App* const owner : {&word, &app}) {
    for (const CLI::Option* const option : owner->get_options()) {
      for (const std::string& each : option->get_lnames()) nearest.offer(each);
    }
  }
  return "no option \"" + name + "\"" + meant(nearest, "--");
}

// CLI11 says what is wrong in its own words where there are no better ones.
std::string faultText(const CLI::App& app, const CLI::ParseError& fault) {
  const std::vector<CLI::App*> chosen = app.get_subcommands();
  const std::vector<std::string> left = app.remaining(true);
  if (!left.empty() && left.front().starts_with("-")) {
    return unknownOptionText(app, chosen.empty() ? app : *chosen.front(), left.front());
  }
  if (chosen.empty()) {
    if (!left.empty()) return unknownWordText(left.front());
    // An option without its argument is found before the word is missed.
    return fault.get_name() == "ArgumentMismatch" ? fault.what()
                                                  : "no word is given; ostrelctl --help lists them";
  }
  if (!left.empty()) return chosen.front()->get_name() + " does not take \"" + left.front() + "\"";
  return chosen.front()->get_name() + ": " + fault.what();
}

// What is not the default of the service that is meant.
std::string programFor(const BusOptions& bus) {
  std::string program = "ostrelctl";
  for (const std::string& argument : serviceArguments(bus)) program += " " + shellWord(argument);
  return program;
}

void finish(TakenLine& taken, int argc, char** argv) {
  if (taken.isJson && taken.isNull) endWith(STATUS_USAGE, "--json and --null exclude each other");
  for (int i = 1; i < argc; ++i) {
    if (g_utf8_validate(argv[i], -1, nullptr) == FALSE) {
      endWith(STATUS_USAGE, "argument " + std::to_string(i) + " is not valid UTF-8");
    }
  }
  const BusOptions& bus = taken.line.bus;
  if (!isBusSuffix(bus.busSuffix)) {
    endWith(STATUS_USAGE, "\"" + bus.busSuffix + "\" cannot end a bus name");
  }
  if (!isPathSuffix(bus.pathSuffix)) {
    endWith(STATUS_USAGE, "\"" + bus.pathSuffix + "\" cannot end an object path");
  }
  taken.line.program = programFor(bus);
  taken.line.form = taken.isJson ? FORM_JSON : taken.isNull ? FORM_NULL : FORM_TEXT;
}

}  // namespace

void defineCommandLine(CLI::App& app, TakenLine& taken) {
  app.description(DESCRIPTION);
  app.name("ostrelctl");
  app.set_help_flag("-h,-?,--help", "Print examples and the options");
  app.set_version_flag("-V,--version", VERSION_TEXT, "Print the version");
  app.footer(FOOTER);
  app.get_formatter()->label("SUBCOMMAND", "WORD");
  app.get_formatter()->label("Subcommands", "Words");
  app.get_formatter()->label("Positionals", "Arguments");
  app.get_formatter()->label("REQUIRED", "");
  app.require_subcommand(1, 1);
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  addCommonOptions(app, taken);
  addWords(app, taken);
}

CommandLine parseCommandLine(int argc, char** argv) {
  TakenLine taken;
  CLI::App app;
  defineCommandLine(app, taken);
  Texts arguments = markedArguments(argc, argv);
  std::ranges::reverse(arguments);  // as CLI11 wants them
  try {
    app.parse(std::move(arguments));
  } catch (const CLI::CallForHelp&) {
    answer(helpOf(app));
  } catch (const CLI::CallForVersion&) {
    answer(VERSION_TEXT);
  } catch (const CLI::ParseError& fault) {
    endWith(STATUS_USAGE, faultText(app, fault));
  }
  finish(taken, argc, argv);
  return taken.line;
}

// The command line of ostrelctl: options that all words have, and the word with its own.
#pragma once

#include <CLI/CLI.hpp>

#include "ctl/service/bus.h"
#include "ctl/text/output.h"
#include "ctl/words/word.h"

struct CommandLine {
  BusOptions bus;
  std::string program;  ///< as of Client
  OutputForm form = FORM_TEXT;
  bool isQuiet = false;
  RunWord run;
};

/// What the command line has said so far.
struct TakenLine {
  CommandLine line;
  bool isJson = false;
  bool isNull = false;
};

/// Adds the options and the words. `taken` outlives `app`.
void defineCommandLine(CLI::App& app, TakenLine& taken);

/// Reads the arguments. Ends the process where that is all there is to do: with status 0 after
/// --help and --version, with STATUS_USAGE after a complaint for a fault of the command line.
CommandLine parseCommandLine(int argc, char** argv);

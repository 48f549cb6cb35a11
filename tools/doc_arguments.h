// The command line of ostrel-doc.
#pragma once

#include <string>

#include "check/text/finding.h"

/// In which form the documentation is written.
enum DocFormat { DOC_HTML, DOC_MARKDOWN, DOC_JSON };

/// What the command line asks for.
struct DocArguments {
  NamedValues constants;
  DocFormat format = DOC_HTML;
  bool onlyChecks = false;  ///< only say which parameters have no description
  bool hasPicture = true;
  std::string title;        ///< empty: the name of the file
  std::string directory;    ///< empty: standard output
  std::string definitions;  ///< a file; "-" is standard input
};

/// Reads the arguments. Ends the process where that is all there is to do: with status 0 after
/// --help, --usage and --version, with status 2 after a message for a fault of the command line.
/// Raises std::bad_alloc where memory is exhausted.
DocArguments parseDocArguments(int argc, char** argv);

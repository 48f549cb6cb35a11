// The typed words of a command line, as far as they say what is being typed.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "ctl/service/bus.h"

struct TypedLine {
  const CLI::App* word = nullptr;  ///< null where none has been typed
  BusOptions bus = {};
  bool isStatus = false;                 ///< whether --status has been typed
  std::vector<std::string> others = {};  ///< arguments of the word, and texts of its --with
  /// What the last word is, as the help calls it: "NAME=VALUE", "FILE"; OPTION, WORD, or empty for
  /// what nobody knows anything about.
  std::string kind = {};
  std::string start = {};  ///< of the last word, when an option and its text are one: "--with="
  std::string text = {};   ///< of the last word, without that start
};

constexpr const char* KIND_OPTION = "OPTION";
constexpr const char* KIND_WORD = "WORD";

/// Reads the words behind the program's name. The last is being typed. `app` has the options and
/// the words.
TypedLine readTypedLine(const CLI::App& app, const std::vector<std::string>& words);

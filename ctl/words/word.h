// Words: what the first argument of the program may be. A word is a file and a row in words.cpp.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

#include "ctl/words/client.h"

/// Does what the word says; returns the exit status.
using RunWord = std::function<int(Client&)>;

struct Word {
  const char* name;
  const char* summary;
  const char* examples;  ///< lines
  bool hasNullForm;      ///< whether --null is for it
  bool hasJsonForm;      ///< whether --json is
  /// Adds the arguments of the word, which the result holds.
  RunWord (*define)(CLI::App& word);
};

/// All of them, in the order of the help.
const std::vector<Word>& words();

RunWord defineConfirm(CLI::App& word);
RunWord defineDeps(CLI::App& word);
RunWord defineDiff(CLI::App& word);
RunWord defineGet(CLI::App& word);
RunWord defineHealth(CLI::App& word);
RunWord defineKeep(CLI::App& word);
RunWord defineLog(CLI::App& word);
RunWord defineLs(CLI::App& word);
RunWord defineMetrics(CLI::App& word);
RunWord defineRange(CLI::App& word);
RunWord defineReset(CLI::App& word);
RunWord defineRestore(CLI::App& word);
RunWord defineSave(CLI::App& word);
RunWord defineSet(CLI::App& word);
RunWord defineTransactions(CLI::App& word);
RunWord defineTry(CLI::App& word);
RunWord defineUndo(CLI::App& word);
RunWord defineUp(CLI::App& word);
RunWord defineUpgrade(CLI::App& word);
RunWord defineWatch(CLI::App& word);
RunWord defineWhy(CLI::App& word);

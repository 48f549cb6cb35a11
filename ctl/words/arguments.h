// Arguments of the words, on top of CLI11.
//
// CLI11 takes an argument in square brackets for a list, and reads on after "--" where a word has
// taken its first argument. So both kinds are marked before it sees them, and unmarked behind it.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <string>
#include <vector>

#include "ctl/service/answers.h"

using Texts = std::vector<std::string>;

/// The arguments as CLI11 may see them, the program's name left out.
Texts markedArguments(int argc, char** argv);

/// Adds the names that are the arguments of a word: one or more, or any number where they are
/// `optional`. Where `name` has a "=", they are assignments. Wrong brackets are a fault of the
/// line.
void addTexts(CLI::App& word, const std::string& name, Texts& texts, const std::string& help,
              bool isOptional = false);
/// Adds an argument of a word.
CLI::Option* addText(CLI::App& word, const std::string& name, std::string& text,
                     const std::string& help);
/// Adds an option that may be given several times.
void addRepeated(CLI::App& word, const std::string& name, Texts& texts, const std::string& help);
/// Adds --with NAME=VALUE; as addTexts().
void addWith(CLI::App& word, Texts& texts);

/// Accepts names with correct brackets, and patterns of names, or assignments to them.
CLI::Validator correctBrackets(bool isAssignment);

/// Accepts the decimal numbers from `least` to `most`, and says so of others: the conversion of
/// CLI11 takes other notations too, and names no range.
CLI::Validator wholeNumber(uint32_t least, uint32_t most);
/// Accepts the finite decimal numbers from 0 on, also with a fraction, and says so of others.
CLI::Validator numberFromZero();

/// Each of the texts as NAME=VALUE; ends the program where one is none, or a name is
/// given twice.
std::vector<Assignment> assignmentsOf(const Texts& texts);

// Programs as a shell runs them: what they print, and their status.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

/// How a command ended.
struct Outcome {
  std::string out;
  int status = -1;  ///< the exit status, or -1 where a signal has ended it
};

/// Runs a command of a shell, with its redirections.
inline Outcome runCommand(const std::string& command) {
  Outcome outcome;
  std::FILE* const pipe = popen(command.c_str(), "r");
  EXPECT_NE(pipe, nullptr);
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  for (size_t n = 0; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
    outcome.out.append(buffer, n);
  }
  const int ended = pclose(pipe);
  outcome.status = WIFEXITED(ended) ? WEXITSTATUS(ended) : -1;
  return outcome;
}

/// Runs a program with these arguments and redirections.
inline Outcome runProgram(const char* program, const std::string& arguments) {
  return runCommand(std::string("'") + program + "' " + arguments);
}

/// How often `part` is in `text`.
inline size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) count++;
  return count;
}

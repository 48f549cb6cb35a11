// The fixture of tests of ostrelctl: command lines, and what is printed and returned.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/harness/service_test.h"

/// A line of a shell, in which the program is the word "ctl", and all that can be seen of it.
struct CtlLine {
  std::string line;
  std::string out = {};
  std::string err = {};  ///< without the program's name before each line
  int status = 0;
};

class CtlServiceTest : public ServiceTest {
 protected:
  using ServiceTest::ServiceTest;
  /// Runs the line in a directory of the test's own.
  std::unique_ptr<Process> start(const std::string& line);
  /// Runs the lines one after the other and compares what is seen of each.
  void expectLines(const std::vector<CtlLine>& lines);
  [[nodiscard]] const std::string& directory() const { return directory_.path(); }

 private:
  TempDir directory_;
};

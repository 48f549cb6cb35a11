// For tests: the listings of the catalogue in testdata/.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

/// The lines of a listing without its column titles. An unreadable or empty one fails the test.
inline std::vector<std::string> readListing(const std::string& name) {
  std::ifstream file(std::string(TESTDATA_DIR) + "/" + name);
  std::vector<std::string> lines;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) lines.push_back(line);
  EXPECT_FALSE(lines.empty()) << name;
  return lines;
}

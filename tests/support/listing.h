// Listings, for tests: the tables of the catalogue in testdata/, one row a line, with tabs between
// the cells.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// The cells of a line: what is between its tabs. An empty cell behind the last tab is left out.
inline std::vector<std::string> cellsOf(const std::string& line) {
  std::istringstream rest(line);
  std::vector<std::string> cells;
  for (std::string cell; std::getline(rest, cell, '\t');) cells.push_back(cell);
  return cells;
}

/// The names of the 14 figures: the titles of the columns behind the row's number and name. Another
/// number of columns fails the test.
inline std::vector<std::string> figureNames() {
  std::ifstream file(std::string(TESTDATA_DIR) + "/figures_of_standards.tsv");
  std::string titles;
  std::getline(file, titles);
  std::vector<std::string> names = cellsOf(titles);
  EXPECT_EQ(names.size(), 2U + 14U);
  names.erase(names.begin(), names.begin() + std::min<ptrdiff_t>(2, std::ssize(names)));
  return names;
}

/// The lines of the listing in the file `name`, without its column titles. A listing that cannot be
/// read, or is empty, fails the test.
inline std::vector<std::string> readListing(const std::string& name) {
  std::ifstream file(std::string(TESTDATA_DIR) + "/" + name);
  std::vector<std::string> lines;
  std::string line;
  std::getline(file, line);
  while (std::getline(file, line)) lines.push_back(line);
  EXPECT_FALSE(lines.empty()) << name;
  return lines;
}

#include "bench/example.h"

#include <fstream>
#include <regex>
#include <sstream>

namespace {

constexpr const char* EXAMPLE = "examples/frame-synchroniser.ostrel";

}  // namespace

std::string exampleText() {
  std::ostringstream text;
  text << std::ifstream(EXAMPLE).rdbuf();
  return text.str();
}

std::string examples(int64_t count) {
  const std::string text = exampleText();
  const std::regex definition("(^|\\n)([a-z_0-9]+) (rw|ro|rostrict|wo|index) \\{");
  std::string names;
  for (std::sregex_iterator i(text.begin(), text.end(), definition), end; i != end; ++i) {
    names += (names.empty() ? "" : "|") + (*i)[2].str();
  }
  const std::regex name("\\b(" + names + ")\\b");
  std::string all;
  for (int64_t i = 0; i < count; ++i) {
    all += std::regex_replace(text, name, "$1_" + std::to_string(i));
  }
  return all;
}

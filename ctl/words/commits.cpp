#include "ctl/words/commits.h"

#include <ctime>
#include <nlohmann/json.hpp>

#include "ctl/text/quoted.h"

std::string timeText(uint64_t microseconds) {
  const auto seconds = static_cast<std::time_t>(microseconds / 1000000);
  std::tm local = {};
  localtime_r(&seconds, &local);
  char text[64];
  const size_t length = std::strftime(text, sizeof text, "%F %T", &local);
  return {text, length};
}

std::string changeLine(const Style& style, const Change& change) {
  return style.name(quotedWord(change.name)) + ": " + quotedWord(change.before) + " -> " +
         quotedWord(change.after);
}

Json changeJson(const Change& change) {
  return {{"name", change.name}, {"before", change.before}, {"after", change.after}};
}

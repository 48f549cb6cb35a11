#include "check/named_values.h"

std::string joinedValues(const NamedValues& values) {
  std::string joined;
  for (const auto& [name, value] : values) {
    if (!joined.empty()) joined += ' ';
    const bool isQuoted = value.empty() || value.find_first_of(" \t\n") != std::string::npos;
    const char* const quote = isQuoted ? "\"" : "";
    joined.append(name).append("=").append(quote).append(value).append(quote);
  }
  return joined;
}

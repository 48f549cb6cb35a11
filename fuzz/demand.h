// Demands: what a fuzz target holds the code to.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <string>
#include <string_view>

/// Ends the program. `what`, texts in a row, goes to standard error, whoever has taken the stream
/// of that name.
template <typename... Texts>
[[noreturn]] void endWith(const Texts&... what) {
  std::string message;
  for (const std::string_view text : {std::string_view(what)...}) message.append(text);
  message.append("\n");
  // The program ends here, whether or not somebody reads why.
  static_cast<void>(!write(STDERR_FILENO, message.data(), message.size()));
  std::abort();
}

/// Ends the program with `what` where a promise does not hold. The texts are joined only then.
template <typename... Texts>
void demand(bool holds, const Texts&... what) {
  if (!holds) endWith(what...);
}

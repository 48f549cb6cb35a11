// Traces: what a target makes of its input, for whoever reduces a find.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

/// Whether the environment has FUZZ_TRACE.
inline bool isTracing() {
  static const bool tracing = getenv("FUZZ_TRACE") != nullptr;
  return tracing;
}

/// Prints `what`, texts in a row, as a line to standard error while tracing.
template <typename... Texts>
void trace(const Texts&... what) {
  if (!isTracing()) return;
  std::string line;
  for (const std::string_view text : {std::string_view(what)...}) line.append(text);
  fprintf(stderr, "%s\n", line.c_str());
}

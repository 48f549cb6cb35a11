// Printed texts, for tests: everything that a function writes to a stream.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// What `print`, a function of a FILE*, writes to the stream that it is given. The stream is in
/// memory and closed afterwards.
template <typename Print>
std::string printed(Print print) {
  char* data = nullptr;
  size_t size = 0;
  FILE* const out = open_memstream(&data, &size);
  print(out);
  fclose(out);
  std::string text(data, size);
  free(data);
  return text;
}

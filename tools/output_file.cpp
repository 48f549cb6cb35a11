#include "tools/output_file.h"

#include <cerrno>
#include <cstdio>

namespace {

bool write(const std::string& text, std::FILE* file) {
  return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

}  // namespace

int writeOutputFile(const std::string& name, const std::string& text) {
  if (name == "-") return write(text, stdout) && std::fflush(stdout) == 0 ? 0 : errno;
  std::FILE* const file = std::fopen(name.c_str(), "wb");
  if (file == nullptr) return errno;
  const int error = write(text, file) ? 0 : errno;
  if (std::fclose(file) != 0 && error == 0) return errno;
  return error;
}

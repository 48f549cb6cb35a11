#include "tools/input_file.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <string_view>

namespace {

int readAll(std::FILE* file, std::string& text) {
  char buffer[65536];
  for (size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, file)) > 0;) {
    text.append(buffer, count);
  }
  return std::ferror(file) != 0 ? errno : 0;
}

struct Close {
  // A file that was only read has nothing left to fail.
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};

}  // namespace

int readInputFile(const char* name, std::string& text) {
  if (std::string_view(name) == "-") return readAll(stdin, text);
  const std::unique_ptr<std::FILE, Close> file(std::fopen(name, "rb"));
  if (file == nullptr) return errno;
  return readAll(file.get(), text);
}

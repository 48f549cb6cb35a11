#include "tools/output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace {

bool write(const std::string& text, std::FILE* file) {
  return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

}  // namespace

int whyNotWritable(const std::string& name) {
  if (name == "-") return 0;
  struct stat status = {};
  if (stat(name.c_str(), &status) == 0) {
    if (S_ISDIR(status.st_mode)) return EISDIR;
    return access(name.c_str(), W_OK) == 0 ? 0 : errno;
  }
  if (errno != ENOENT) return errno;
  const std::filesystem::path directory = std::filesystem::path(name).parent_path();
  return access(directory.empty() ? "." : directory.c_str(), W_OK | X_OK) == 0 ? 0 : errno;
}

int writeOutputFile(const std::string& name, const std::string& text) {
  if (name == "-") return write(text, stdout) && std::fflush(stdout) == 0 ? 0 : errno;
  std::FILE* const file = std::fopen(name.c_str(), "wb");
  if (file == nullptr) return errno;
  const int error = write(text, file) ? 0 : errno;
  if (std::fclose(file) != 0 && error == 0) return errno;
  return error;
}

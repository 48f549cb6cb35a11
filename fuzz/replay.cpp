// Runs a fuzz target over files instead of under libFuzzer: each argument is a file, or a folder
// of files. Prints the name of the file on which the target ends the program.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fuzz/fuzz_target.h"

namespace {

namespace fs = std::filesystem;

std::string currentFile;

void tellFile(int) {
  static_cast<void>(!write(STDERR_FILENO, currentFile.data(), currentFile.size()));
}

std::vector<std::string> filesOf(const std::string& path) {
  if (!fs::is_directory(path)) return {path};
  std::vector<std::string> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
    files.push_back(entry.path().string());
  }
  std::sort(files.begin(), files.end());
  return files;
}

// Returns whether the file could be read.
bool replay(const std::string& path) {
  currentFile = "on " + path + "\n";
  std::ifstream file(path, std::ios::binary);
  const std::string bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) return false;
  LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  signal(SIGABRT, tellFile);
  size_t count = 0;
  for (int i = 1; i < argc; ++i) {
    for (const std::string& path : filesOf(argv[i])) {
      if (!replay(path)) {
        fprintf(stderr, "cannot read %s\n", path.c_str());
        return 1;
      }
      ++count;
    }
  }
  printf("%zu inputs\n", count);
  return count > 0 ? 0 : 1;  // an empty corpus would test nothing
}

#include "tests/harness/temp_dir.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <system_error>

TempDir::TempDir() {
  std::string name = std::filesystem::temp_directory_path() / "ostrel-test-XXXXXX";
  if (mkdtemp(name.data()) == nullptr) {
    perror("mkdtemp");
    abort();
  }
  path_ = name;
}

TempDir::~TempDir() {
  std::error_code ignored;  // What cannot be removed stays in the system's own temporary directory.
  std::filesystem::remove_all(path_, ignored);
}

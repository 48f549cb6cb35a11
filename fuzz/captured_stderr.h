// Captured stderr: what the code prints to the stream of that name, as a text.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

/// Takes the place of `stderr` while it lives. The descriptor stays as it is: reports of the
/// sanitizers and of demand() come out.
class CapturedStderr {
 public:
  CapturedStderr() : original_(stderr) {
    FILE* const stream = open_memstream(&text_, &size_);
    if (stream != nullptr) stderr = stream;
  }
  ~CapturedStderr() {
    restore();
    free(text_);
  }
  CapturedStderr(const CapturedStderr&) = delete;
  CapturedStderr& operator=(const CapturedStderr&) = delete;

  /// Gives the stream back. Returns what was printed.
  std::string restore() {
    if (stderr != original_) {
      fclose(stderr);
      stderr = original_;
    }
    return text_ == nullptr ? std::string() : std::string(text_, size_);
  }

 private:
  FILE* original_;
  char* text_ = nullptr;
  size_t size_ = 0;
};

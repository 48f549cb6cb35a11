// ostrel-check: what is wrong with a definition text, before the device has it.
#include <cstdio>
#include <string>

#include "check/checker.h"
#include "check/report_text.h"
#include "vid_std.h"

int main(int argc, char** argv) {
  initVidStdTables();
  for (int i = 1; i < argc; ++i) {
    std::FILE* const file = std::fopen(argv[i], "r");
    if (file == nullptr) return 2;
    std::string text;
    for (int c = 0; (c = std::fgetc(file)) != EOF;) text += static_cast<char>(c);
    static_cast<void>(std::fclose(file));
    const SourceText source(argv[i], text);
    writeText(source, checkText(source, {}), stdout);
  }
}

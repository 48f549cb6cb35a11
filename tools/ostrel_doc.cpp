// ostrel-doc: the documentation of a device, from its definition text.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>
#include <string>
#include <system_error>
#include <utility>

#include "doc/device_data.h"
#include "doc/evaluator.h"
#include "doc/json.h"
#include "doc/make_model.h"
#include "doc/markdown.h"
#include "doc/page.h"
#include "doc/picture.h"
#include "doc/script_json.h"
#include "doc/standard_table.h"
#include "play/engine_device.h"
#include "tools/built_text.h"
#include "tools/doc_arguments.h"
#include "tools/input_file.h"
#include "vid_std.h"

namespace {

constexpr int STATUS_UNDESCRIBED = 1;
constexpr int STATUS_FAILED = 2;

int fail(const std::string& message) {
  std::fprintf(stderr, "ostrel-doc: %s\n", message.c_str());
  return STATUS_FAILED;
}

// The last part of a file's name, without its extension.
std::string titleOf(const std::string& file) {
  const std::string name = std::filesystem::path(file).stem();
  return file == "-" || name.empty() ? "Device" : name;
}

// Writes the documentation to where the command line asks for it. Returns the status.
int write(const DocArguments& arguments, const std::string& text) {
  if (arguments.directory.empty()) {
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (std::ferror(stdout) == 0 && std::fflush(stdout) == 0) return 0;
    return fail(std::string("cannot write: ") + std::strerror(errno));
  }
  constexpr const char* NAMES[] = {"index.html", "index.md", "index.json"};
  std::error_code error;
  std::filesystem::create_directories(arguments.directory, error);
  if (error) return fail("cannot make " + arguments.directory + ": " + error.message());
  const std::string file = std::filesystem::path(arguments.directory) / NAMES[arguments.format];
  std::FILE* const out = std::fopen(file.c_str(), "w");
  if (out == nullptr) return fail("cannot write " + file + ": " + std::strerror(errno));
  const bool isWritten = std::fwrite(text.data(), 1, text.size(), out) == text.size();
  if (std::fclose(out) == 0 && isWritten) return 0;
  return fail("cannot write " + file + ": " + std::strerror(errno));
}

// Lists the parameters without a description. Returns the status.
int check(const DocModel& model) {
  int status = 0;
  for (const DocParameter& parameter : model.parameters) {
    if (!parameter.description.empty()) continue;
    std::printf("%s:%u: \"%s\" has no description; write comment lines directly above it\n",
                model.file.c_str(), parameter.line, parameter.name.c_str());
    status = STATUS_UNDESCRIBED;
  }
  if (std::ferror(stdout) == 0 && std::fflush(stdout) == 0) return status;
  return fail(std::string("cannot write: ") + std::strerror(errno));
}

// What follows a video standard is worked out by a device of its own.
void addStandards(const DocArguments& arguments, const SourceText& source, DocModel& model) {
  const PlayConstants constants(arguments.constants.begin(), arguments.constants.end());
  const std::unique_ptr<Device> device = startEngineDevice(source.text(), constants);
  if (device != nullptr) model.standards = standardsOf(model, *device);
}

int document(const DocArguments& arguments, const DocModel& model, Database& database) {
  if (arguments.format == DOC_JSON) return write(arguments, jsonText(model));
  if (arguments.format == DOC_MARKDOWN) return write(arguments, markdownText(model));
  PageParts parts = {.picture = {},
                     .deviceData = scriptJson(deviceData(database)),
                     .evaluator = std::string(evaluatorScript())};
  if (arguments.hasPicture) {
    DocPicture picture = makePicture(model);
    if (!picture.failure.empty()) {
      return fail("cannot draw the picture: " + picture.failure + ", or give --no-picture");
    }
    parts.picture = std::move(picture.html);
  }
  return write(arguments, pageText(model, parts));
}

int run(int argc, char** argv) {
  const DocArguments arguments = parseDocArguments(argc, argv);
  initVidStdTables();
  std::string definitions;
  const int error = readInputFile(arguments.definitions.c_str(), definitions);
  if (error != 0) return fail("cannot read " + arguments.definitions + ": " + std::strerror(error));

  const std::string name = arguments.definitions == "-" ? "<stdin>" : arguments.definitions;
  const std::unique_ptr<BuiltText> built =
      buildText(name, std::move(definitions), arguments.constants);
  if (built == nullptr) return STATUS_FAILED;
  const std::string title =
      arguments.title.empty() ? titleOf(arguments.definitions) : arguments.title;
  DocModel model = makeModel(*built->source, built->text, built->variant, title);
  if (arguments.onlyChecks) return check(model);
  addStandards(arguments, *built->source, model);
  return document(arguments, model, *built->variant.database);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::bad_alloc&) {
    return fail("memory is exhausted");
  }
}

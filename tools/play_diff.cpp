#include "tools/play_diff.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "check/printable.h"
#include "compare/definitions.h"
#include "compare/saved_values.h"
#include "compare/situations.h"
#include "doc/make_model.h"
#include "play/engine_device.h"
#include "play/session_words.h"
#include "tools/built_text.h"
#include "tools/input_file.h"

namespace {

constexpr int STATUS_INCOMPATIBLE = 1;
constexpr int STATUS_FAILED = 2;

int complain(const std::string& text) {
  std::fprintf(stderr, "ostrel-play: %s\n", text.c_str());
  return STATUS_FAILED;
}

// A text under one choice of constants.
struct ModelledText {
  DocModel model;
  StartDevice start;
};

// Returns null after a report of what is wrong with the text.
std::unique_ptr<ModelledText> build(const std::string& name, const std::string& text,
                                    const NamedValues& constants) {
  const std::unique_ptr<BuiltText> built = buildText(name, text, constants);
  if (built == nullptr) return nullptr;
  return std::make_unique<ModelledText>(
      ModelledText{makeModel(*built->source, built->text, built->variant, name),
                   [&text](const PlayConstants& given) { return startBuiltDevice(text, given); }});
}

// A difference, and the variants that show it.
struct FoundDifference {
  Difference difference;
  std::vector<NamedValues> variants = {};
};

class DiffRun {
 public:
  DiffRun(const PlayArguments& arguments, const std::string& old)
      : arguments_(arguments), old_(old), variants_(variantsOf(arguments.choices)) {}

  int run() {
    if (const int status = readFiles(); status != 0) return status;
    for (const NamedValues& variant : variants_) {
      if (!compare(variant)) return STATUS_FAILED;
    }
    return report();
  }

 private:
  int readFiles() {
    int error = readInputFile(nowName().c_str(), now_);
    if (error != 0) return complain("cannot read " + nowName() + ": " + std::strerror(error));
    const std::string& values = arguments_.valuesFile;
    if (values.empty()) return 0;
    std::string text;
    error = readInputFile(values.c_str(), text);
    if (error != 0) return complain("cannot read " + values + ": " + std::strerror(error));
    const std::vector<SavedError> errors = readSavedValues(text, saved_);
    for (const SavedError& wrong : errors) {
      std::fprintf(stderr, "%s:%u: %s\n", values.c_str(), wrong.line, wrong.text.c_str());
    }
    return errors.empty() ? 0 : STATUS_FAILED;
  }

  // Returns whether both texts can be built.
  bool compare(const NamedValues& variant) {
    const auto old = build(arguments_.definitions, old_, variant);
    const auto now = build(nowName(), now_, variant);
    if (old == nullptr || now == nullptr) return false;
    const PlayConstants constants(variant.begin(), variant.end());
    Differences differences;
    compareDefinitions(old->model, now->model, differences);
    compareSituations({old_, old->model, old->start}, {now_, now->model, now->start}, constants, {},
                      differences);
    compareSavedValues(old->start, now->start, constants, saved_, differences);
    for (Difference& difference : differences) keep(std::move(difference), variant);
    return true;
  }

  void keep(Difference difference, const NamedValues& variant) {
    const auto same = std::ranges::find_if(found_, [&](const FoundDifference& other) {
      return other.difference.name == difference.name && other.difference.text == difference.text &&
             other.difference.line == difference.line;
    });
    if (same == found_.end()) {
      found_.push_back({std::move(difference), {variant}});
    } else {
      same->variants.push_back(variant);
    }
  }

  int report() {
    std::ranges::stable_sort(found_, [](const FoundDifference& a, const FoundDifference& b) {
      const auto key = [](const Difference& one) {
        return std::make_tuple(one.place != DIFFERENCE_IN_OLD, one.place, one.line);
      };
      return key(a.difference) < key(b.difference);
    });
    size_t incompatible = 0;
    for (const FoundDifference& found : found_) {
      if (found.difference.isIncompatible) ++incompatible;
      if (found.difference.isIncompatible || !arguments_.isQuiet) print(found);
    }
    if (!arguments_.isQuiet) {
      std::printf("%zu incompatible, %zu other changes\n", incompatible,
                  found_.size() - incompatible);
    }
    if (std::ferror(stdout) != 0 || std::fflush(stdout) != 0) {
      return complain(std::string("cannot write: ") + std::strerror(errno));
    }
    return incompatible == 0 ? 0 : STATUS_INCOMPATIBLE;
  }

  void print(const FoundDifference& found) const {
    const Difference& difference = found.difference;
    const std::string& file = difference.place == DIFFERENCE_IN_NEW   ? nowName()
                              : difference.place == DIFFERENCE_IN_OLD ? arguments_.definitions
                                                                      : arguments_.valuesFile;
    std::string text = spelledWord(difference.name) + difference.text;
    if (found.variants.size() < variants_.size()) {
      text += ", where";
      for (const auto& [name, value] : found.variants.front()) {
        text += " " + spelledChange(std::string(name).append("=").append(value));
      }
    }
    std::printf("%s:%u: %s: %s\n", file.c_str(), difference.line,
                difference.isIncompatible ? "incompatible" : "change", printable(text).c_str());
    if (!difference.reason.empty()) std::printf("  %s\n", printable(difference.reason).c_str());
  }

  [[nodiscard]] const std::string& nowName() const { return arguments_.sessions.front(); }

  const PlayArguments& arguments_;
  const std::string& old_;
  const std::vector<NamedValues> variants_;
  std::string now_;
  std::vector<SavedValue> saved_;
  std::vector<FoundDifference> found_;
};

}  // namespace

int diffPlay(const PlayArguments& arguments, const std::string& old) {
  return DiffRun(arguments, old).run();
}

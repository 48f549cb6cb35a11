#include "compare/saved_values.h"

#include <map>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "deflang/text/text_pieces.h"
#include "play/recipe_client.h"
#include "play/session_words.h"
#include "sw/parm/parm_name.h"

namespace {

// What has become of a value.
struct Kept {
  bool isKnown = false;  // the device has such a parameter
  bool exists = false;   // and now such an instance
  bool isTaken = false;  // the value is one that set would take
  std::string value = {};
};

std::vector<Kept> keptBy(const StartDevice& start, const PlayConstants& constants,
                         const std::vector<SavedValue>& values) {
  std::vector<Kept> result(values.size());
  const std::unique_ptr<Device> device = start(constants);
  if (device == nullptr) return result;
  std::optional<KnownDevice> known = device->known();
  if (!known) return result;
  for (const SavedValue& value : values) known->lastValues[value.name] = value.value;
  const KnownDevice names = *known;
  static_cast<void>(bringUpDevice(*device, *std::move(known)));
  const uint32_t id = device->call({"start"}).transaction;
  for (size_t i = 0; i < values.size(); ++i) {
    const std::string& name = values[i].name;
    Kept& kept = result[i];
    kept.isKnown = names.parms.contains(std::string(baseName(name)));
    if (!kept.isKnown) continue;
    kept.exists = device->call({"get_range", id, {name}}).error.empty();
    kept.isTaken = device->call({"is_valid", id, {name}, {values[i].value}}).isValid;
    const Answer held = device->call({"get", id, {name}});
    if (!held.texts.empty()) kept.value = held.texts.front();
  }
  return result;
}

std::string sentence(const SavedValue& saved, const Kept& now) {
  const std::string start = ": the saved " + spelledWord(saved.value) + " ";
  if (!now.isKnown) return start + "has no parameter any more";
  if (!now.exists) return start + "has no instance";
  if (!now.isTaken) return start + "is refused; the value is " + spelledWord(now.value);
  return start + "becomes " + spelledWord(now.value);
}

// Takes "name=value" apart; nullopt where it is no such line.
std::optional<std::pair<std::string, std::string>> partsOf(std::string_view line,
                                                           std::string& error) {
  const size_t sign = line.find('=');
  if (sign == std::string_view::npos || sign == 0) {
    error = "write name=value";
    return {};
  }
  const std::string_view value = line.substr(sign + 1);
  std::string name(line.substr(0, sign));
  if (name.ends_with(' ') || name.ends_with('\t') || value.starts_with(' ')) {
    error = "write name=value, without blanks around the sign";
    return {};
  }
  if (!value.starts_with('"')) return {{std::move(name), std::string(value)}};
  std::vector<SessionWord> words;
  if (const std::optional<WordError> wrong = readSessionWords(value, words)) {
    error = wrong->text;
    return {};
  }
  if (words.size() != 1) {
    error = "there is something behind the value";
    return {};
  }
  return {{std::move(name), words.front().text()}};
}

}  // namespace

std::vector<SavedError> readSavedValues(const std::string& text, std::vector<SavedValue>& values) {
  std::vector<SavedError> errors;
  uint32_t number = 0;
  std::string_view rest = text;
  if (rest.starts_with(BYTE_ORDER_MARK)) rest.remove_prefix(BYTE_ORDER_MARK.size());
  while (!rest.empty()) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    ++number;
    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.empty() || line.starts_with('#')) continue;
    std::string error;
    auto parts = partsOf(line, error);
    if (parts) {
      values.push_back({number, std::move(parts->first), std::move(parts->second)});
    } else {
      errors.push_back({number, std::move(error)});
    }
  }
  return errors;
}

void compareSavedValues(const StartDevice& old, const StartDevice& now,
                        const PlayConstants& constants, const std::vector<SavedValue>& values,
                        Differences& differences) {
  const std::vector<Kept> before = keptBy(old, constants, values);
  const std::vector<Kept> after = keptBy(now, constants, values);
  for (size_t i = 0; i < values.size(); ++i) {
    const SavedValue& saved = values[i];
    if (after[i].isKnown && after[i].value == saved.value) continue;
    if (before[i].value != saved.value) {
      const char* const text = before[i].isKnown
                                   ? ": a device of the old text does not keep the saved "
                                   : ": the old text has no parameter for the saved ";
      differences.push_back(
          {false, DIFFERENCE_IN_VALUES, saved.line, saved.name, text + spelledWord(saved.value)});
      continue;
    }
    differences.push_back(
        {true, DIFFERENCE_IN_VALUES, saved.line, saved.name, sentence(saved, after[i])});
  }
}

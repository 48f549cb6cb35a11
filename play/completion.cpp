#include "play/completion.h"

#include <algorithm>

#include "play/operation_words.h"
#include "play/session_words.h"

namespace {

using Texts = std::vector<std::string>;

// A transaction that ends with its user.
class ShortTransaction {
 public:
  explicit ShortTransaction(Device& device)
      : device_(device), id_(device.call({"start"}).transaction) {}
  ~ShortTransaction() { static_cast<void>(device_.call({"end", id_})); }
  ShortTransaction(const ShortTransaction&) = delete;
  ShortTransaction& operator=(const ShortTransaction&) = delete;
  Answer ask(std::string_view method, const std::string& name) {
    return device_.call({method, id_, {name}});
  }

 private:
  Device& device_;
  uint32_t id_;
};

Texts operationNames() {
  Texts names = {"for", "include"};
  for (const OperationWord& word : operationWords()) names.emplace_back(word.word);
  return names;
}

Texts valuesFor(Device& device, const std::string& name) {
  const Answer answer = ShortTransaction(device).ask("get_range", name);
  if (answer.ranges.empty() || countValues(answer.ranges.front()) > MAX_COMPLETIONS) return {};
  return valuesOf(answer.ranges.front());
}

// All instances that there may ever be, of those parameters whose names can be meant.
Texts instanceNames(const KnownDevice& known, std::string_view start) {
  Texts all;
  for (const auto& [parm, indices] : known.parms) {
    const bool isMeant = parm.starts_with(start) || start.starts_with(parm);
    if (!isMeant) continue;
    Texts names = {parm};
    for (const std::string& index : indices) {
      names = crossed(names, known.indices.at(index));
      if (names.size() > MAX_COMPLETIONS) names.clear();
    }
    all.insert(all.end(), names.begin(), names.end());
  }
  return all;
}

Texts namesFor(Device& device, const OperationWord& word, std::string_view start) {
  const std::optional<KnownDevice> known = device.known();
  Texts names;
  if (!known) return names;
  if (word.word == "index range") {
    for (const auto& [index, values] : known->indices) names.push_back(index);
    return names;
  }
  if (word.word == "indices" || word.word == "deps") {
    for (const auto& [parm, indices] : known->parms) names.push_back(parm);
  }
  const Texts instances = instanceNames(*known, start);
  names.insert(names.end(), instances.begin(), instances.end());
  return names;
}

Texts argumentsFor(Device& device, const OperationWord& word, const Texts& before,
                   std::string_view start) {
  const bool isValue = before.size() % 2 == 1;
  switch (word.arguments) {
    case ARGUMENTS_NAME:
      return before.empty() ? namesFor(device, word, start) : Texts();
    case ARGUMENTS_NAMES:
      return namesFor(device, word, start);
    case ARGUMENTS_PAIR:
    case ARGUMENTS_QUESTION:
      if (before.size() > 1) return {};
      [[fallthrough]];
    case ARGUMENTS_PAIRS:
      return isValue ? valuesFor(device, before.back()) : namesFor(device, word, start);
    default:
      return {};
  }
}

Texts allFor(Device& device, std::string_view before, std::string_view start) {
  std::vector<SessionWord> words;
  if (readSessionWords(before, words)) return {};
  Texts texts;
  for (const SessionWord& word : words) texts.push_back(word.text());
  if (!words.empty() && words.front().endsWithColon()) texts.erase(texts.begin());
  if (texts.empty()) return operationNames();
  const bool isIndex = texts.front() == "index";
  if (isIndex && texts.size() == 1) return {"range"};
  const size_t ofOperation = isIndex ? 2 : 1;
  const OperationWord* const word =
      findOperationWord(isIndex ? texts[0] + " " + texts[1] : texts[0]);
  if (word == nullptr) return {};
  texts.erase(texts.begin(), texts.begin() + static_cast<ptrdiff_t>(ofOperation));
  return argumentsFor(device, *word, texts, start);
}

}  // namespace

Texts completions(Device& device, std::string_view before, std::string_view start) {
  Texts words;
  for (const std::string& text : allFor(device, before, start)) {
    // An operation of two words is spelled as two.
    std::string word = findOperationWord(text) != nullptr ? text : spelledWord(text);
    if (word.starts_with(start)) words.push_back(std::move(word));
  }
  std::ranges::sort(words);
  words.erase(std::unique(words.begin(), words.end()), words.end());
  if (words.size() > MAX_COMPLETIONS) words.resize(MAX_COMPLETIONS);
  return words;
}

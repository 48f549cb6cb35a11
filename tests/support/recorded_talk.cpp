#include "tests/support/recorded_talk.h"

#include <glib.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <random>
#include <span>

#include "doc/device_data.h"
#include "doc/script_json.h"
#include "play/engine_device.h"
#include "play/recipe_client.h"
#include "play/session_words.h"
#include "sw/parm/parm_name.h"
#include "tests/support/random_texts.h"

namespace {

using Json = nlohmann::ordered_json;
using Texts = std::vector<std::string>;

// As it is sent.
std::string mended(const std::string& text) {
  char* const valid = g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()));
  std::string result = valid;
  g_free(valid);
  return result;
}

// Names of no instance of their own, or of none at all, made of the name of an instance.
Texts oddNames(const std::string& name) {
  const std::string base(baseName(name));
  return {"",
          "nothing",
          "i",
          "sw::this",
          "CHANNELS",
          "MODEL",
          name + "[1]",
          base,
          name + "x",
          base + "[9]",
          base + "[0x1]",
          base + "[",
          base + "[]",
          base + "[1]y[a]z",
          "\xC3\xA9" + name};
}

bool beginsAny(std::span<const std::string> lines, std::initializer_list<const char*> starts) {
  return std::any_of(lines.begin(), lines.end(), [&](const std::string& line) {
    return std::any_of(starts.begin(), starts.end(),
                       [&](const char* start) { return line.starts_with(start); });
  });
}

// The default among the lines that explain an instance.
std::string defaultAmong(const Texts& lines) {
  const std::string start = "has the default ";
  for (const std::string& line : lines) {
    if (!line.starts_with(start)) continue;
    std::vector<SessionWord> words;
    static_cast<void>(readSessionWords(mended(line), words));
    words[3].dropColon();
    return words[3].text();
  }
  return "";
}

std::string rangeOf(const Answer& answer) {
  if (!answer.error.empty()) return answer.error;
  std::string text;
  for (const auto& [low, high] : answer.ranges.front().spans) {
    text += std::to_string(low) + ".." + std::to_string(high) + " ";
  }
  for (const std::string& allowed : answer.ranges.front().texts) text += "\"" + allowed + "\" ";
  return text;
}

class Recorder {
 public:
  Recorder(const TalkSubject& subject, uint32_t seed)
      : subject_(subject),
        random_(seed),
        device_(startEngineDevice(subject.text, subject.constants)),
        id_(device_->call({"start"}).transaction) {
    addNames();
  }

  RecordedTalk record(const Json& data, size_t steps) {
    Json list = Json::array();
    for (size_t i = 0; i < steps; ++i) list.push_back(below(12) == 0 ? bringUp() : write());
    const Json talk = {{"what", subject_.what},
                       {"text", subject_.text},
                       {"data", data},
                       {"names", names_},
                       {"steps", std::move(list)}};
    return {scriptJson(talk), steps * names_.size()};
  }

 private:
  size_t below(size_t end) { return random_() % end; }
  const std::string& oneOf(const Texts& texts) { return texts[below(texts.size())]; }

  void addNames() {
    const std::optional<KnownDevice> known = device_->known();
    for (const auto& [parm, indices] : known->parms) {
      Texts names = {parm};
      for (const std::string& index : indices) names = crossed(names, known->indices.at(index));
      std::transform(names.begin(), names.end(), std::back_inserter(names_), mended);
    }
    instances_ = subject_.names.empty() ? names_ : subject_.names;
    odd_ = oddNames(instances_.empty() ? "p" : oneOf(instances_));
    names_.insert(names_.end(), odd_.begin(), odd_.end());
    states_.resize(names_.size());
  }

  Json bringUp() {
    const BroughtUp result = bringUpDevice(*device_, *device_->known());
    Texts changes;
    for (const auto& [name, value] : result.changes) {
      changes.push_back(std::string(name).append("=").append(value));
    }
    Texts restless;
    std::ranges::transform(result.restless, std::back_inserter(restless), mended);
    Json step = {{"changes", changes}, {"restless", restless}};
    step["states"] = changedStates();
    return step;
  }

  // A few writes and their commit. The first that is refused ends them, and nothing is committed.
  Json write() {
    Json writes = Json::array();
    std::string refused;
    for (size_t count = 1 + below(3); count > 0 && refused.empty(); --count) {
      const bool isReset = below(4) == 0;
      const bool isStatus = below(3) == 0;
      Call call = {isReset    ? (isStatus ? "reset_status" : "reset")
                   : isStatus ? "set_status"
                              : "set",
                   id_,
                   {oneOf(below(12) == 0 || instances_.empty() ? odd_ : instances_)}};
      if (!isReset) call.values = {valueFor(call.names.front())};
      refused = device_->call(call).error;
      writes.push_back(
          {call.names.front(), isReset ? Json() : Json(call.values.front()), isStatus});
    }
    Answer answer;
    if (refused.empty()) {
      answer = device_->call({"commit", id_});
      refused = answer.error;
    } else {
      static_cast<void>(device_->call({"end", id_}));
      id_ = device_->call({"start"}).transaction;
    }
    Json step = {{"writes", std::move(writes)}, {"changes", answer.changes}};
    if (!refused.empty()) step["refused"] = refused;
    step["states"] = changedStates();
    return step;
  }

  // One of the subject's, or at an end of the present range.
  std::string valueFor(const std::string& name) {
    const Answer answer = device_->call({"get_range", id_, {name}});
    if (below(2) == 0 || !answer.error.empty()) return oneOf(subject_.values);
    Texts values = answer.ranges.front().texts;
    for (const auto& [low, high] : answer.ranges.front().spans) {
      for (const int64_t number : {int64_t{low}, int64_t{high}, int64_t{high} + 1}) {
        values.push_back(std::to_string(number));
      }
    }
    return values.empty() ? oneOf(subject_.values) : oneOf(values);
  }

  // Pairs of the number of a name and what it is now.
  Json changedStates() {
    Json changed = Json::array();
    for (size_t i = 0; i < names_.size(); ++i) {
      std::string state = stateOf(names_[i]);
      if (state == states_[i]) continue;
      states_[i] = state;
      changed.push_back(i);
      changed.push_back(std::move(state));
    }
    return changed;
  }

  std::string stateOf(const std::string& name) {
    const Texts lines = device_->call({"why", id_, {name}}).notes;
    const bool isInstance = !lines.front().starts_with("there is no such");
    // The first line tells the value, but for a name that is never looked up.
    const std::span rest = std::span(lines).subspan(name == THIS_VALUE ? 0 : 1);
    const bool exists = isInstance && !beginsAny(rest, {"does not exist", "is not available"});
    const bool isReadOnly = isInstance && beginsAny(rest, {"is read-only"});
    return device_->call({"get", id_, {name}}).texts.front() + "|" +
           (exists ? isReadOnly ? "exists" : "writable" : "absent") + "|" + defaultAmong(lines) +
           "|" + rangeOf(device_->call({"get_range", id_, {name}}));
  }

  const TalkSubject& subject_;
  std::mt19937 random_;
  std::unique_ptr<Device> device_;
  uint32_t id_;
  Texts names_;      // all that are looked at
  Texts instances_;  // those of them that are mostly written to
  Texts odd_;        // those that are not all names of instances
  Texts states_;     // by name
};

}  // namespace

RecordedTalk recordTalk(const TalkSubject& subject, uint32_t seed, size_t steps) {
  Database database;
  for (const auto& [name, value] : subject.constants) {
    EXPECT_EQ(database.defineConstant(name, value), 0);
  }
  if (defineOrRefuse(database, subject.text) != 0) return {};
  return Recorder(subject, seed).record(deviceData(database), steps);
}

#include "tests/soak/load.h"

#include <array>
#include <map>
#include <set>
#include <utility>

namespace {

constexpr size_t MOST_OPEN = 3;
constexpr size_t MOST_NAMES = 5;

const std::vector<std::string> CHANNELS = {"1", "2", "3", "4"};
const std::vector<std::string> SIDES = {"left", "right"};

// The values for each parameter: inside and outside its ranges, on both sides of their ends, by
// other spellings of numbers, and, where any text will do, by texts that are hard to carry.
const std::map<std::string, std::vector<std::string>>& valuesOfAll() {
  static const std::map<std::string, std::vector<std::string>> VALUES = {
      {"mode", {"1080i/50", "720p/50", "625i/50", "1080p/50", "pal", "525i/59.94"}},
      {"channels", {"1", "2", "3", "4", "4", "4", "4", "4", "4", "4", "0x2", "5", "0"}},
      {"sound", {"mono", "mono", "stereo", "stereo", "stereo", "off", "0", "loud"}},
      {"locked", {"0", "off", "0", "1", "on", "2"}},
      {"position", {"0", "719", "720", "1279", "1280", "1919", "1920", "-1", "centre", "07", ""}},
      {"blanking", {"0", "10", "700", "1500", "9999", "wide"}},
      {"lines", {"576", "1", "5000"}},
      {"crop_top", {"0", "10", "300", "575", "576", "700", "1079", "-5", "12lines"}},
      {"crop_bottom", {"0", "10", "300", "575", "576", "700", "1079", "-5", ""}},
      {"fine", {"0", "0", "1", "19", "20", "21"}},
      {"delay", {"0", "5", "49", "50", "51", "99", "100", "101"}},
      {"source",
       {"", "none", "1080i/50", "720p/50", "720p", "625i/50 wide", "1920x1080/50/P", "1080p/50"}},
      {"wipe", {"0", "1", "5", "6", "99", "100", "200", "375", "376", "562", "1080", "star"}},
      {"gain", {"0", "40", "41", "50", "51", "59", "60", "100", "101", "unity", " 7", "7 "}},
      {"balance", {"0", "10", "20", "21", "left"}},
      {"meter", {"0", "50"}},
      {"mono_only", {"0", "9", "10", ""}},
      {"temp", {"0", "80", "81", "120", "121"}},
      {"alarm", {"0", "1", "2"}},
      {"fan", {"0", "49", "50", "100", "101", "fast"}},
      {"fire", {"idle", "now", "later"}},
      {"a", {"1", "10", "50", "100", "0", "101"}},
      {"b", {"1", "30", "60", "61", "100", "150", "0x20", "-2147483648"}},
      {"c", {"0", "60", "61", "100", "150", "auto", "manual", "", "2147483647"}},
      {"d", {"0", "1", "auto1"}},
      {"label", {"", "camera 1", "0x10", "a=b", "it's \"5\" \\", "\xc3\xa4\xe2\x82\xac", "[1]"}},
      {"title", {"n", "ncamera 1"}},
      {"low", {"0", "9", "10", "50", "100", "101"}},
      {"high", {"0", "9", "10", "50", "100", "101"}},
      {"window", {"0", "9", "10", "60", "150", "200", "201", ""}},
      {"page", {"0", "1", "2", "0", "1", "2", "0", "1", "2", "3", "4"}},
      {"bank", {"1", "8", "9", "20", "32", "40", "41", "64", "65"}},
      {"never", {"1", "5"}},
  };
  return VALUES;
}

// The name, once for each of the values in brackets.
std::vector<std::string> withEach(const std::vector<std::string>& names,
                                  const std::vector<std::string>& values) {
  std::vector<std::string> longer;
  for (const std::string& name : names) {
    for (const std::string& value : values) {
      longer.push_back(std::string(name).append("[").append(value).append("]"));
    }
  }
  return longer;
}

std::vector<std::string> instancesOf(const std::string& base) {
  static const std::set<std::string> PER_CHANNEL = {"position", "crop_top", "crop_bottom",
                                                    "delay",    "gain",     "meter"};
  static const std::set<std::string> PER_SIDE = {"balance", "gain", "meter"};
  std::vector<std::string> names = {base};
  if (PER_CHANNEL.contains(base)) names = withEach(names, CHANNELS);
  return PER_SIDE.contains(base) ? withEach(names, SIDES) : names;
}

// Names that are wrong in every way, none of which the daemon keeps anything for.
const std::vector<std::string> WRONG_NAMES = {
    "nosuch",        "nosuch[1]",        "",         "channel",     "MODEL",      "gain", "gain[1]",
    "gain[9][left]", "gain[1][left][1]", "label[1]", "position[0]", "balance[up]"};

struct Weight {
  const char* method;
  uint32_t weight;
};
constexpr std::array WEIGHTS = {Weight{"get", 10},
                                Weight{"get_bulk", 4},
                                Weight{"is_valid", 3},
                                Weight{"check_set", 4},
                                Weight{"set", 18},
                                Weight{"set_status", 4},
                                Weight{"set_bulk", 4},
                                Weight{"set_status_bulk", 1},
                                Weight{"reset", 3},
                                Weight{"reset_status", 1},
                                Weight{"reset_bulk", 1},
                                Weight{"reset_status_bulk", 1},
                                Weight{"commit", 8},
                                Weight{"end", 3},
                                Weight{"start", 3},
                                Weight{"single_get", 5},
                                Weight{"single_get_bulk", 2},
                                Weight{"single_is_valid", 1},
                                Weight{"single_check_set", 1},
                                Weight{"single_set", 4},
                                Weight{"single_set_status", 2},
                                Weight{"single_set_bulk", 1},
                                Weight{"single_set_status_bulk", 1},
                                Weight{"single_reset", 1},
                                Weight{"single_reset_status", 1},
                                Weight{"single_reset_bulk", 1},
                                Weight{"single_reset_status_bulk", 1},
                                Weight{"get_deps", 3},
                                Weight{"get_range", 10},
                                Weight{"get_range_bulk", 2},
                                Weight{"get_parm_idx", 2},
                                Weight{"get_idx_range", 3}};

const char* methodAt(uint32_t place) {
  for (const Weight& weight : WEIGHTS) {
    if (place < weight.weight) return weight.method;
    place -= weight.weight;
  }
  return WEIGHTS.front().method;
}

constexpr uint32_t totalWeight() {
  uint32_t total = 0;
  for (const Weight& weight : WEIGHTS) total += weight.weight;
  return total;
}

}  // namespace

std::vector<std::string> allNames() {
  std::vector<std::string> names;
  for (const auto& [base, values] : valuesOfAll()) {
    for (std::string& name : instancesOf(base)) names.push_back(std::move(name));
  }
  return names;
}

Call bringUp() { return {.method = "single_reset_status_bulk", .names = allNames()}; }

Call readAll() {
  Call call = {.method = "single_get_bulk", .names = allNames()};
  call.count = static_cast<uint32_t>(call.names.size());
  return call;
}

uint32_t Load::below(size_t count) { return static_cast<uint32_t>(random_() % count); }

template <typename List>
const auto& Load::oneOf(const List& list) {
  return list[below(list.size())];
}

std::string Load::name() {
  static const std::vector<std::string> NAMES = allNames();
  return below(50) == 0 ? oneOf(WRONG_NAMES) : oneOf(NAMES);
}

std::string Load::value(const std::string& name) {
  const auto found = valuesOfAll().find(name.substr(0, name.find('[')));
  return found == valuesOfAll().end() ? "1" : oneOf(found->second);
}

// Now and then one that there is not.
uint32_t Load::transaction() { return open_.empty() || below(100) == 0 ? ended_ : oneOf(open_); }

std::vector<std::string> Load::someNames() {
  std::vector<std::string> names(1 + below(MOST_NAMES));
  for (std::string& each : names) each = name();
  return names;
}

Call Load::withValues(Call call) {
  for (const std::string& each : call.names) call.values.push_back(value(each));
  return call;
}

Call Load::named(const std::string& method) {
  Call call = {.method = method, .id = transaction()};
  call.names = method.ends_with("_bulk") ? someNames() : std::vector<std::string>{name()};
  if (method == "get_deps" && below(3) == 0) {
    call.names[0] = call.names[0].substr(0, call.names[0].find('['));
  }
  if (method == "get_idx_range") {
    call.names[0] = below(20) == 0 ? "nosuch" : below(2) == 0 ? "channel" : "side";
  }
  // One more or one less than there are.
  call.count = static_cast<uint32_t>(call.names.size() + below(3)) - 1;
  return call;
}

std::optional<Call> Load::next() {
  if (isStarting_) return std::nullopt;
  const std::string method = open_.empty() ? "start" : methodAt(below(totalWeight()));
  if (method == "start" && open_.size() < MOST_OPEN) {
    isStarting_ = true;
    return Call{.method = method};
  }
  if (method == "start" || method == "commit" || method == "end") {
    Call call = {.method = method == "start" ? "commit" : method, .id = transaction()};
    if (method == "end" && std::erase(open_, call.id) != 0) ended_ = call.id;
    return call;
  }
  const Call call = named(method);
  const bool takesValues =
      method.find("set") != std::string::npos && method.find("reset") == std::string::npos;
  return takesValues || method.ends_with("is_valid") ? withValues(call) : call;
}

void Load::started(uint32_t id) {
  open_.push_back(id);
  isStarting_ = false;
}

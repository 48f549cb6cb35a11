#include "tests/soak/device.h"

#include <cstdint>
#include <cstdlib>
#include <utility>

const char* const CONSTANT_NAME = "MODEL";
const char* const CONSTANT_VALUE = "pro";

namespace {

constexpr int NO_UPPER_END = -4;
constexpr int NO_VALUE = -2;
constexpr int UPSIDE_DOWN = -5;

struct Standard {
  std::string name;
  int samples;  ///< of an active line
  int lines;    ///< active, of a frame
  int frames;   ///< per second
  std::optional<int> allLines;
};

// The one that the value begins with.
std::optional<Standard> standardOf(const std::string& value) {
  static const std::vector<Standard> STANDARDS = {
      {"1080i/50", 1920, 1080, 25, 1125},
      {"1080p/50", 1920, 1080, 50, 1125},
      {"720p/50", 1280, 720, 50, 750},
      {"625i/50", 720, 576, 25, 625},
      {"1920x1080/50/P", 1920, 1080, 50, std::nullopt},
  };
  for (const Standard& standard : STANDARDS) {
    if (value.starts_with(standard.name)) return standard;
  }
  return std::nullopt;
}

// What a name counts as in arithmetic.
int number(const See& see, const std::string& name) {
  const std::string value = see(name);
  return static_cast<int>(std::strtol(value.c_str(), nullptr, 0));
}

Statement computed(int low, int high) {
  if (low > high) return {true, UPSIDE_DOWN};
  return {true, 0, {{{low, high}}, {}}};
}

// A range of one value: two numbers are added, else texts are joined, a number as its decimal text.
Statement sum(const std::string& left, const std::string& right) {
  const std::optional<int> leftNumber = numberOf(left);
  const std::optional<int> rightNumber = numberOf(right);
  if (leftNumber && rightNumber) {
    // In 32 bits, which wrap around.
    const int number = static_cast<int>(int64_t{*leftNumber} + *rightNumber);
    return computed(number, number);
  }
  return {true,
          0,
          {{},
           {(leftNumber ? std::to_string(*leftNumber) : left) +
            (rightNumber ? std::to_string(*rightNumber) : right)}}};
}

Statement fixed(Range range) { return {false, 0, std::move(range)}; }

std::function<std::string(const See&)> always(const std::string& value) {
  return [value](const See&) { return value; };
}

// A range from 0 to what `upper` computes from the mode's standard.
template <typename Upper>
std::vector<Statement> upTo(const See& see, const Upper& upper) {
  const std::optional<Standard> standard = standardOf(see("mode"));
  return {standard ? computed(0, upper(*standard)) : Statement{true, NO_UPPER_END}};
}

std::string joined(const std::string& name, const Indices& at) {
  std::string full = name;
  for (const std::string& value : at) full += "[" + value + "]";
  return full;
}

// One of a mutual pair.
Parm crop(const std::string& other) {
  return {.indices = {"channel"},
          .level = 2,
          .names = {"lines", "channels", other},
          .deps = other + "[channel] channels lines mode",
          .kind = WITH_RUN_TIME,
          .statements = [other](const See& see, const Indices& at) -> std::vector<Statement> {
            return {computed(0, number(see, "lines") - 1 - number(see, joined(other, at)))};
          }};
}

void addRoots(std::map<std::string, Parm>& parms) {
  parms["mode"] = {.constant = {{}, {"1080i/50", "720p/50", "625i/50", "1080p/50"}},
                   .translations = {{"pal", "625i/50"}},
                   .fallback = always("1080i/50")};
  parms["channels"] = {.constant = {{{1, 4}}, {}}, .fallback = always("4")};
  parms["sound"] = {.constant = {{}, {"mono", "stereo", "off"}},
                    .translations = {{"0", "off"}},
                    .fallback = always("stereo")};
  parms["locked"] = {.constant = {{{0, 1}}, {}},
                     .translations = {{"off", "0"}, {"on", "1"}},
                     .fallback = always("0")};
}

void addVideo(std::map<std::string, Parm>& parms) {
  parms["position"] = {
      .indices = {"channel"},
      .level = 1,
      .names = {"mode", "locked", "channels"},
      .deps = "channel channels locked mode",
      .kind = WITH_RUN_TIME,
      .translations = {{"centre", "middle"}, {"middle", "100"}},
      .statements =
          [](const See& see, const Indices&) {
            return upTo(see, [](const Standard& standard) { return standard.samples - 1; });
          },
      .fallback = [](const See& see) -> std::string {
        const std::optional<Standard> standard = standardOf(see("mode"));
        return standard ? std::to_string(standard->samples / 2) : "";
      },
      .locked = [](const See& see,
                   const Indices& at) { return number(see, "locked") == 1 && at[0] == "2"; }};
  parms["blanking"] = {.level = 2,
                       .names = {"position"},
                       .deps = "channel channels locked mode position[1]",
                       .kind = WITH_RUN_TIME,
                       .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                         // A text, as long as it is not translated yet, is no end of a span.
                         const std::optional<int> position = numberOf(see("position[1]"));
                         return {position ? computed(0, *position) : Statement{true, NO_UPPER_END}};
                       },
                       .fallback = always("10")};
  parms["lines"] = {
      .access = ACCESS_RO,
      .level = 1,
      .names = {"mode"},
      .deps = "mode",
      .kind = WITH_RUN_TIME,
      .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
        const std::optional<Standard> standard = standardOf(see("mode"));
        return {standard ? computed(standard->lines, standard->lines) : Statement{true, NO_VALUE}};
      }};
  parms["crop_top"] = crop("crop_bottom");
  parms["crop_top"].fallback = always("0");
  parms["crop_bottom"] = crop("crop_top");
}

void addDelay(std::map<std::string, Parm>& parms) {
  parms["fine"] = {.constant = {{{0, 20}}, {}}, .fallback = always("0")};
  parms["delay"] = {.indices = {"channel"},
                    .level = 1,
                    .names = {"mode", "fine", "channels"},
                    .deps = "channels fine mode",
                    .kind = WITH_RUN_TIME,
                    .statements =
                        [](const See& see, const Indices&) {
                          return upTo(see,
                                      [](const Standard& standard) { return standard.frames * 2; });
                        },
                    .documented = [](const See& see) -> std::optional<Range> {
                      switch (number(see, "fine")) {
                        case 0:
                          return Range{{{0, 0}, {10, 10}, {20, 20}}, {}};
                        case 20:
                          return Range{};
                        default:
                          return std::nullopt;
                      }
                    },
                    .fallback = [](const See& see) -> std::string {
                      const int fine = number(see, "fine");
                      return fine != 0 ? std::to_string(fine * 2) : "5";
                    }};
}

std::vector<Statement> wipeStatements(const See& see, const Indices& /*at*/) {
  const std::optional<Standard> standard = standardOf(see("source"));
  if (!standard) return {};
  std::vector<Statement> statements;
  if (standard->frames > 25) {
    statements.push_back(standard->allLines ? computed(0, *standard->allLines / 2)
                                            : Statement{true, NO_UPPER_END});
  }
  statements.push_back({true, 0, {{{2, 5}, {200, standard->lines}}, {}}});
  return statements;
}

void addSource(std::map<std::string, Parm>& parms) {
  parms["source"] = {};
  parms["wipe"] = {.level = 1,
                   .names = {"source"},
                   .deps = "source",
                   .constant = {{{0, 99}}, {}},
                   .kind = WITH_RUN_TIME,
                   .statements = wipeStatements,
                   .fallback = always("7")};
}

std::vector<Statement> gainStatements(const See& see, const Indices& /*at*/) {
  const std::string sound = see("sound");
  if (sound == "stereo") return {fixed({{{0, 40}, {60, 100}}, {}})};
  if (sound == "mono") return {fixed({{{0, 50}}, {}})};
  return {};
}

void addSound(std::map<std::string, Parm>& parms) {
  parms["gain"] = {
      .indices = {"channel", "side"},
      .level = 1,
      .names = {"sound", "locked", "channels"},
      .deps = "channels locked sound",
      .constant = {{{0, 100}}, {}},
      .kind = WITH_CONDITIONS,
      .translations = {{"unity", "50"}},
      .statements = gainStatements,
      .fallback = [](const See& see) { return see("sound") == "mono" ? "25" : "70"; },
      .locked = [](const See& see, const Indices&) { return number(see, "locked") == 1; }};
  parms["balance"] = {.indices = {"side"},
                      .level = 1,
                      .names = {"sound"},
                      .deps = "sound",
                      .constant = {{{0, 20}}, {}},
                      .fallback = always("10")};
  parms["meter"] = {.access = ACCESS_RO,
                    .indices = {"channel", "side"},
                    .level = 2,
                    .names = {"gain", "balance", "sound", "channels"},
                    .deps = "balance[side] channels gain[channel][side] locked sound",
                    .kind = WITH_RUN_TIME,
                    .statements = [](const See& see, const Indices& at) -> std::vector<Statement> {
                      return {sum(see(joined("gain", at)), see(joined("balance", {at[1]})))};
                    }};
  parms["mono_only"] = {.level = 1,
                        .names = {"sound"},
                        .deps = "sound",
                        .constant = {{{0, 9}}, {}},
                        .fallback = always("3"),
                        .exists = [](const See& see) { return see("sound") == "mono"; }};
}

void addStatus(std::map<std::string, Parm>& parms) {
  parms["temp"] = {.access = ACCESS_RO, .constant = {{{0, 120}}, {}}, .fallback = always("20")};
  parms["alarm"] = {.access = ACCESS_ROSTRICT,
                    .level = 1,
                    .names = {"temp"},
                    .deps = "temp",
                    .kind = WITH_CONDITIONS,
                    .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                      const int alarm = number(see, "temp") > 80 ? 1 : 0;
                      return {fixed({{{alarm, alarm}}, {}})};
                    }};
  parms["fan"] = {.level = 2,
                  .names = {"alarm"},
                  .deps = "alarm temp",
                  .kind = WITH_CONDITIONS,
                  .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                    switch (number(see, "alarm")) {
                      case 0:
                        return {fixed({{{0, 100}}, {}})};
                      case 1:
                        return {fixed({{{50, 100}}, {}})};
                      default:
                        return {};
                    }
                  },
                  .fallback = always("30")};
  parms["fire"] = {
      .access = ACCESS_WO, .constant = {{}, {"idle", "now"}}, .fallback = always("idle")};
}

std::vector<Statement> chainStatements(const See& see, const Indices& /*at*/) {
  const int b = number(see, "b");
  if (b > 60) return {computed(0, b)};
  return {{true, 0, {{{100, 100 + number(see, "a")}}, {"auto"}}}};
}

void addChain(std::map<std::string, Parm>& parms) {
  parms["a"] = {.constant = {{{1, 100}}, {}}, .fallback = always("10")};
  parms["b"] = {.level = 1,
                .names = {"a"},
                .deps = "a",
                .kind = WITH_RUN_TIME,
                .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                  const int a = number(see, "a");
                  return {computed(a, a + 50)};
                }};
  parms["c"] = {.level = 2,
                .names = {"a", "b"},
                .deps = "a b",
                .kind = WITH_RUN_TIME,
                .statements = chainStatements};
  parms["d"] = {.level = 3,
                .names = {"c"},
                .deps = "a b c",
                .kind = WITH_RUN_TIME,
                .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                  return {sum(see("c"), "1")};
                }};
  parms["label"] = {};
  parms["title"] = {
      .access = ACCESS_RO,
      .level = 1,
      .names = {"label"},
      .deps = "label",
      .kind = WITH_RUN_TIME,
      .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
        // A number is joined as its decimal text, and the empty text is the number 0.
        const std::string label = see("label");
        const std::optional<int> isNumber = numberOf(label);
        return {{true, 0, {{}, {"n" + (isNumber ? std::to_string(*isNumber) : label)}}}};
      }};
}

void addOddities(std::map<std::string, Parm>& parms) {
  parms["low"] = {.constant = {{{0, 100}}, {}}, .fallback = always("20")};
  parms["high"] = {.constant = {{{0, 100}}, {}}, .fallback = always("80")};
  parms["window"] = {.level = 1,
                     .names = {"low", "high"},
                     .deps = "high low",
                     .constant = {{{0, 200}}, {}},
                     .kind = WITH_RUN_TIME,
                     .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                       if (number(see, "low") < 10) return {};
                       return {computed(number(see, "low"), number(see, "high"))};
                     },
                     .fallback = always("150")};
  parms["page"] = {.constant = {{{0, 3}}, {}}, .fallback = always("0")};
  parms["bank"] = {.level = 1,
                   .names = {"page"},
                   .deps = "page",
                   .constant = {{{1, 8}, {32, 64}}, {}},
                   .kind = WITH_CONDITIONS,
                   .statements = [](const See& see, const Indices&) -> std::vector<Statement> {
                     if (number(see, "page") == 3) return {fixed({{{20, 30}}, {}})};
                     return {fixed({{{1, 8}, {32, 40}}, {}})};
                   },
                   .fallback = always("1")};
  parms["never"] = {.constant = {{{0, 9}}, {}}, .fallback = always("1"), .exists = [](const See&) {
                      return false;
                    }};
}

}  // namespace

const std::map<std::string, Parm>& device() {
  static const std::map<std::string, Parm> parms = [] {
    std::map<std::string, Parm> all;
    addRoots(all);
    addVideo(all);
    addDelay(all);
    addSource(all);
    addSound(all);
    addStatus(all);
    addChain(all);
    addOddities(all);
    return all;
  }();
  return parms;
}

Range constantValues(const std::string& index) {
  return index == "channel" ? Range{{{1, 4}}, {}} : Range{{}, {"left", "right"}};
}

std::optional<Range> presentValues(const std::string& index, const See& see) {
  if (index == "channel") {
    const int channels = number(see, "channels");
    return Range{{{1, channels == 0 ? 4 : channels}}, {}};
  }
  const std::string sound = see("sound");
  if (sound == "off") return std::nullopt;
  return sound == "mono" ? Range{{}, {"left"}} : constantValues(index);
}

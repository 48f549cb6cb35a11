#include "deflang/vid_std_name.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view PREFIX = "vidStd::";
constexpr std::string_view SEPARATOR = "::";
constexpr std::array<std::string_view, 14> FIGURES = {"spal",   "alpf", "sptl", "tlpf", "fr",
                                                      "clkDiv", "f0",   "f1",   "f0v0", "f0v1",
                                                      "f1v0",   "f1v1", "f0sw", "f1sw"};

}  // namespace

std::optional<VidStdName> splitVidStdName(std::string_view name) {
  if (!name.starts_with(PREFIX)) {
    return std::nullopt;
  }
  name.remove_prefix(PREFIX.size());
  const size_t end = name.find(SEPARATOR);
  if (end == std::string_view::npos) {
    return std::nullopt;
  }
  const std::string_view figure = name.substr(end + SEPARATOR.size());
  if (std::find(FIGURES.begin(), FIGURES.end(), figure) == FIGURES.end()) {
    return std::nullopt;
  }
  return VidStdName{name.substr(0, end), figure};
}

std::string_view referencedName(std::string_view name) {
  const std::optional<VidStdName> figure = splitVidStdName(name);
  return figure ? figure->parameter : name;
}
